// What opening and saving a keymap costs at its largest, and at its usual size; what it costs to refuse a file of four
// megabytes whose fault comes last.

#include "kit/foundation/property_list.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/id.h"

#include <benchmark/benchmark.h>
#include <expat.h>
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
    for (auto _ : state) benchmark::DoNotOptimize(seat::writeBinaryPropertyList(value, refusal));
}
BENCHMARK(writeKeymap)->Arg(11)->Arg(256)->Arg(65'536)->Unit(benchmark::kMicrosecond);

void readBinaryKeymap(benchmark::State& state) {
    std::string refusal;
    const auto data = seat::writeBinaryPropertyList(keymap(state.range(0)), refusal);
    for (auto _ : state) benchmark::DoNotOptimize(seat::readPropertyList(data->bytes(), nullptr, refusal));
}
BENCHMARK(readBinaryKeymap)->Arg(11)->Arg(256)->Arg(65'536)->Unit(benchmark::kMicrosecond);

void readXMLKeymap(benchmark::State& state) {
    std::string text = "<plist version=\"1.0\"><dict><key>JVNKeyboardKeymapKey</key><dict>\n";
    for (std::int64_t i = 0; i < state.range(0); ++i)
        text += "\t<key>" + std::to_string(i) + "</key>\n\t<integer>" + std::to_string(i % 21 + 1) + "</integer>\n";
    text += "</dict></dict></plist>\n";
    const auto data = NSData::dataWithVector({text.begin(), text.end()});
    std::string refusal;
    for (auto _ : state) benchmark::DoNotOptimize(seat::readPropertyList(data->bytes(), nullptr, refusal));
}
BENCHMARK(readXMLKeymap)->Arg(11)->Arg(256)->Arg(65'536)->Unit(benchmark::kMicrosecond);

// Nearly as large as a file may be, up to the place of the fault.
std::string largeDictionary() {
    std::string text = "<plist version=\"1.0\"><dict>\n";
    for (int i = 0; text.size() + 200 < seat::propertyListMaximumLength; ++i)
        text += "\t<key>somewhat long " + std::to_string(i) + "</key>\n\t<string>value " + std::to_string(i) +
                "</string>\n";
    return text;
}

void refuse(benchmark::State& state, const std::string& text) {
    const auto data = NSData::dataWithVector({text.begin(), text.end()});
    std::string refusal;
    for ([[maybe_unused]] auto _ : state)
        if (seat::readPropertyList(data->bytes(), nullptr, refusal)) state.SkipWithError("was read");
}

void refuseMismatchedTag(benchmark::State& state) {
    refuse(state, largeDictionary() + "<key>x</key><string>y</strin></dict></plist>");
}
BENCHMARK(refuseMismatchedTag)->Unit(benchmark::kMillisecond);

void refuseKeyThatComesTwice(benchmark::State& state) {
    refuse(state, largeDictionary() + "<key>somewhat long 7</key><true/></dict></plist>");
}
BENCHMARK(refuseKeyThatComesTwice)->Unit(benchmark::kMillisecond);

void refuseBadBase64(benchmark::State& state) {
    std::string text = "<plist version=\"1.0\"><data>";
    while (text.size() + 200 < seat::propertyListMaximumLength)
        text += "QUJDREVGR0hJSktMTU5PUFFSU1RVVldYWVphYmNkZWZnaGlqa2xtbm9w\n";
    refuse(state, text + "*</data></plist>");
}
BENCHMARK(refuseBadBase64)->Unit(benchmark::kMillisecond);

// What the tokeniser alone takes for the same, with nobody listening.
void tokeniserAlone(benchmark::State& state) {
    const std::string text = largeDictionary() + "<key>x</key><string>y</strin></dict></plist>";
    for ([[maybe_unused]] auto _ : state) {
        const XML_Parser parser = XML_ParserCreate("UTF-8");
        benchmark::DoNotOptimize(XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE));
        XML_ParserFree(parser);
    }
}
BENCHMARK(tokeniserAlone)->Unit(benchmark::kMillisecond);

} // namespace
