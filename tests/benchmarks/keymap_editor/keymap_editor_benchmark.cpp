// The keymap editor: from its making to its first frame, from a key press to the repainted rows, and its file beside
// Python's own library. The argument is how many keys the keymap has.

#include "keymap/JVNKeymapViewController.h"

#include "kit/quartz/pixels.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIKeyEvent.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/SettingsHost.h"
#include "tests/support/cpu_time.h"

#include <QGuiApplication>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr const char* file = "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";
constexpr long defaultKeys = 11;
constexpr long manyKeys = 65'536;

// The application at scale 2 over a file as the page leaves it, with a raster to paint into.
class Stage {
public:
    explicit Stage(long keys) : app({375, 667}, 2) {
        const auto keymap = NSDictionary::dictionary();
        // Codes that no row has make each row look through all of them.
        for (long i = 0; i < keys; ++i)
            keymap->setObject_forKey(NSNumber::numberWithInteger(keys == defaultKeys ? i + 1 : i % 200 + 22),
                                     std::to_string(i + 4));
        const std::uint8_t address[6] = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66};
        app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(6)},
                                                          {"connection_mode", NSNumber::numberWithInteger(1)},
                                                          {"JVNAmbientColorKey", NSNumber::numberWithBool(false)},
                                                          {"JVNLEDColorKey", "004efd"},
                                                          {"PS4BluetoothAddress", NSData::dataWithBytes(address)},
                                                          {"JVNKeyboardKeymapKey", keymap}}));
        app.open(UIViewController::alloc()->init());
        frame();
    }
    ~Stage() { app.close(); }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    std::shared_ptr<JVNKeymapViewController> push() {
        auto editor = JVNKeymapViewController::alloc()->initWithKeymapPath(file);
        app.navigation()->pushViewController_animated(editor, false);
        editor->tableView()->reloadData();
        return editor;
    }
    // What the window does for each frame.
    void frame() {
        const auto damage = app.scene().prepareFrame();
        if (!damage.empty())
            app.scene().paint(
                {m_pixels.data(), width, height, width * static_cast<std::ptrdiff_t>(sizeof(std::uint32_t))}, damage);
    }

    testing_support::LoggedLines quiet;
    testing_support::SettingsHost app;

private:
    static constexpr int width = 750;
    static constexpr int height = 1334;
    std::vector<std::uint32_t> m_pixels = std::vector<std::uint32_t>(width * height);
};

void openToFirstFrame(benchmark::State& state) {
    Stage stage(state.range(0));
    for ([[maybe_unused]] auto _ : state) {
        const double start = testing_support::workedMilliseconds();
        const auto editor = stage.push();
        stage.frame();
        state.SetIterationTime((testing_support::workedMilliseconds() - start) / 1e3);
        stage.app.navigation()->popViewControllerAnimated(false);
        stage.frame();
    }
}
BENCHMARK(openToFirstFrame)->Arg(defaultKeys)->Arg(manyKeys)->Unit(benchmark::kMillisecond)->UseManualTime();

// The armed row takes a key that another row has: both are repainted, all along the fade; the first frame counts here.
void keyPressToRepaintedRows(benchmark::State& state) {
    Stage stage(state.range(0));
    const auto editor = stage.push();
    stage.frame();
    long row = 0;
    const auto application = UIApplication::sharedApplication();
    for ([[maybe_unused]] auto _ : state) {
        const auto path = NSIndexPath::indexPathForRow_inSection(row, 0);
        row = 1 - row;
        editor->tableView()->selectRowAtIndexPath_animated(path, false);
        editor->tableView_didSelectRowAtIndexPath(*editor->tableView(), path);
        for (int i = 0; i < 60; ++i) { // the last fade ends
            stage.app.clock().advance(1.0 / 60);
            stage.frame();
        }
        const double start = testing_support::workedMilliseconds();
        objc_msgSend(*application, "handleKeyUIEvent:", {UIKeyEvent::keyEvent(100, true)});
        stage.frame();
        state.SetIterationTime((testing_support::workedMilliseconds() - start) / 1e3);
    }
    stage.app.navigation()->popViewControllerAnimated(false);
}
BENCHMARK(keyPressToRepaintedRows)->Arg(defaultKeys)->Arg(manyKeys)->Unit(benchmark::kMillisecond)->UseManualTime();

struct PlistlibTimes {
    double load = 0;
    double save = 0;
};

PlistlibTimes plistlibTimes(const std::string& path) {
    PlistlibTimes times;
    const std::string command = "/usr/bin/python3 " PLISTLIB_TIMES " " + path;
    if (FILE* const pipe = ::popen(command.c_str(), "r")) {
        if (std::fscanf(pipe, "%lf %lf", &times.load, &times.save) != 2) times = {};
        ::pclose(pipe);
    }
    return times;
}

// The least of many: `work` is small enough for the clock itself to count, so several of it are one sample.
template <class Work> double leastMillisecondsOf(benchmark::State& state, long keys, Work&& work) {
    const int batch = keys == manyKeys ? 1 : 100;
    double least = 1e9;
    while (state.KeepRunningBatch(batch)) {
        const double start = testing_support::workedMilliseconds();
        for (int i = 0; i < batch; ++i) work();
        least = std::min(least, (testing_support::workedMilliseconds() - start) / batch);
    }
    return least;
}

void setTimesFaster(benchmark::State& state, double plistlibMicroseconds, double ourMilliseconds) {
    state.counters["plistlib_us"] = plistlibMicroseconds;
    state.counters["times_faster"] = plistlibMicroseconds / (ourMilliseconds * 1e3);
}

void load(benchmark::State& state) {
    const Stage stage(state.range(0));
    const double theirs = plistlibTimes(stage.app.preferencesFile()).load;
    const double ours = leastMillisecondsOf(state, state.range(0), [] {
        benchmark::DoNotOptimize(NSMutableDictionary::dictionaryWithContentsOfFile(file));
    });
    setTimesFaster(state, theirs, ours);
}
BENCHMARK(load)->Arg(defaultKeys)->Arg(manyKeys)->Unit(benchmark::kMicrosecond);

// To bytes, as both do it; what the disk takes to hold them is nobody's merit.
void save(benchmark::State& state) {
    const Stage stage(state.range(0));
    const double theirs = plistlibTimes(stage.app.preferencesFile()).save;
    const auto values = NSMutableDictionary::dictionaryWithContentsOfFile(file);
    const double ours = leastMillisecondsOf(state, state.range(0), [&values] {
        benchmark::DoNotOptimize(NSPropertyListSerialization::dataWithPropertyList_format_options_error(
            values, NSPropertyListBinaryFormat_v1_0, 0, nullptr));
    });
    setTimesFaster(state, theirs, ours);
}
BENCHMARK(save)->Arg(defaultKeys)->Arg(manyKeys)->Unit(benchmark::kMicrosecond);

// The editor's own, with the flush to the disk.
void leave(benchmark::State& state) {
    Stage stage(state.range(0));
    const auto editor = stage.push();
    for ([[maybe_unused]] auto _ : state) editor->viewDidDisappear(false);
}
BENCHMARK(leave)->Arg(defaultKeys)->Arg(manyKeys)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
