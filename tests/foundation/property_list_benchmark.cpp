// What opening and saving a keymap costs at its largest, and at its usual size.

#include "host/foundation/property_list.h"
#include "platform/foundation.h"

#include <benchmark/benchmark.h>
#include <string>

namespace {

id keymap(std::int64_t entries) {
    const auto keys = NSMutableDictionary::dictionary();
    for (std::int64_t i = 0; i < entries; ++i)
        keys->setObject_forKey(NSNumber::numberWithUnsignedInt(static_cast<std::uint32_t>(i % 21 + 1)),
                               NSStringFromInteger(i));
    const auto settings = NSMutableDictionary::dictionary();
    settings->setObject_forKey(keys, "JVNKeyboardKeymapKey");
    return settings;
}

void writeKeymap(benchmark::State& state) {
    const id value = keymap(state.range(0));
    std::string refusal;
    for (auto _ : state) benchmark::DoNotOptimize(host::writeBinaryPropertyList(value, refusal));
}
BENCHMARK(writeKeymap)->Arg(11)->Arg(256)->Arg(65'536)->Unit(benchmark::kMicrosecond);

void readBinaryKeymap(benchmark::State& state) {
    std::string refusal;
    const auto data = host::writeBinaryPropertyList(keymap(state.range(0)), refusal);
    for (auto _ : state) benchmark::DoNotOptimize(host::readPropertyList(data->bytes(), nullptr, refusal));
}
BENCHMARK(readBinaryKeymap)->Arg(11)->Arg(256)->Arg(65'536)->Unit(benchmark::kMicrosecond);

void readXMLKeymap(benchmark::State& state) {
    std::string text = "<plist version=\"1.0\"><dict><key>JVNKeyboardKeymapKey</key><dict>\n";
    for (std::int64_t i = 0; i < state.range(0); ++i)
        text += "\t<key>" + std::to_string(i) + "</key>\n\t<integer>" + std::to_string(i % 21 + 1) + "</integer>\n";
    text += "</dict></dict></plist>\n";
    const auto data = NSData::dataWithVector({text.begin(), text.end()});
    std::string refusal;
    for (auto _ : state) benchmark::DoNotOptimize(host::readPropertyList(data->bytes(), nullptr, refusal));
}
BENCHMARK(readXMLKeymap)->Arg(11)->Arg(256)->Arg(65'536)->Unit(benchmark::kMicrosecond);

} // namespace
