// A settings write against the bare system calls that it cannot do without.

#include "kit/foundation/property_list.h"
#include "platform/foundation/NSDictionary.h"
#include "system/files/Descriptor.h"
#include "system/files/root.h"
#include "system/preferences/preferences_store.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/cpu_time.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

constexpr const char* domain = "com.quorrel.benchmark";

// Write, flush, rename, flush of the folder.
void bareSystemCalls(benchmark::State& state) {
    const testing_support::TemporaryFolder folder;
    const std::string bytes(600, 'x');
    const std::string temporary = folder.file("file.plist.temporary");
    const std::string file = folder.file("file.plist");
    for ([[maybe_unused]] auto _ : state) {
        const seat::Descriptor written(open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        benchmark::DoNotOptimize(write(written.get(), bytes.data(), bytes.size()));
        fsync(written.get());
        rename(temporary.c_str(), file.c_str());
        const seat::Descriptor directory(open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        fsync(directory.get());
    }
}
BENCHMARK(bareSystemCalls)->Unit(benchmark::kMicrosecond)->UseRealTime();

void settingsWrite(benchmark::State& state) {
    const testing_support::TemporaryFolder folder;
    seat::setRoot(folder.path());
    for (int i = 0; i < 20; ++i)
        seat::setPreferenceValue(domain, "key " + std::to_string(i), NSNumber::numberWithInteger(i));
    int value = 0;
    for ([[maybe_unused]] auto _ : state)
        seat::setPreferenceValue(domain, "controller_type", NSNumber::numberWithInteger(++value % 7));
    seat::setRoot({});
}
BENCHMARK(settingsWrite)->Unit(benchmark::kMicrosecond)->UseRealTime();

void settingsRead(benchmark::State& state) {
    const testing_support::TemporaryFolder folder;
    seat::setRoot(folder.path());
    for (int i = 0; i < 20; ++i)
        seat::setPreferenceValue(domain, "key " + std::to_string(i), NSNumber::numberWithInteger(i));
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(seat::preferenceValue(domain, "key 7"));
    seat::setRoot({});
}
BENCHMARK(settingsRead)->Unit(benchmark::kMicrosecond);

// What a switch costs the main thread in a file of 90,000 keys: the change, the rows of the page before it is stored
// and those of the page that is told of it.
void switchInManyKeys(benchmark::State& state) {
    const testing_support::TemporaryFolder folder;
    seat::setRoot(folder.path());
    const auto values = NSMutableDictionary::dictionary();
    for (int i = 0; i < 90'000; ++i) values->setObject_forKey(NSNumber::numberWithInteger(i), std::to_string(i));
    std::string refusal;
    const auto file = seat::writeBinaryPropertyList(id(values), refusal);
    const auto readRows = [] {
        for (int row = 0; row < 12; ++row) benchmark::DoNotOptimize(seat::preferenceValue(domain, std::to_string(row)));
    };
    seat::setPreferencesFile(domain, file->bytes());
    seat::awaitPendingPreferences(std::chrono::minutes(1));
    readRows();
    bool isOn = false;
    for ([[maybe_unused]] auto _ : state) {
        double start = testing_support::workedMilliseconds();
        isOn = !isOn;
        seat::setPreferenceValue(domain, "switch", NSNumber::numberWithBool(isOn));
        readRows();
        double worked = testing_support::workedMilliseconds() - start;
        seat::awaitPendingPreferences(std::chrono::minutes(1));
        start = testing_support::workedMilliseconds();
        readRows();
        worked += testing_support::workedMilliseconds() - start;
        state.SetIterationTime(worked / 1e3);
    }
    seat::setRoot({});
}
BENCHMARK(switchInManyKeys)->Unit(benchmark::kMillisecond)->Iterations(10)->UseManualTime();

} // namespace

BENCHMARK_MAIN();
