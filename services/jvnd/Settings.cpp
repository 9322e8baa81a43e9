#include "services/jvnd/Settings.h"

#include "keymap/default_keymap.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSScanner.h"

#include <algorithm>
#include <charconv>

namespace jvnd {

namespace {

constexpr std::uint16_t firstUsage = 4; // those below are no keys but the keyboard's own errors
constexpr std::uint16_t lastUsage = 0xE7;
constexpr std::int64_t lastInput = 21;
constexpr std::size_t mostBindings = 256;

// As the page reads it: the low 24 bits of a hexadecimal number.
Color colorOf(const std::string& text) {
    std::uint32_t value = 0;
    NSScanner::scannerWithString(text)->scanHexInt(&value);
    const auto byte = [value](int shift) { return static_cast<std::uint8_t>(value >> shift & 0xFF); };
    return {byte(16), byte(8), byte(0)};
}

// A key code is written in one way only, or the page would not find it again.
std::optional<std::uint16_t> usageOf(const std::string& key) {
    std::uint16_t usage = 0;
    const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), usage);
    const bool isNumber = error == std::errc() && end == key.data() + key.size() && key.front() != '0';
    return isNumber && usage >= firstUsage && usage <= lastUsage ? std::optional(usage) : std::nullopt;
}

std::vector<Settings::Binding> keymapOf(const NSDictionary& keymap, std::string& complaint) {
    std::vector<Settings::Binding> bindings;
    std::size_t leftOut = 0;
    keymap.enumerate([&](const std::string& key, const id& value) {
        const auto usage = usageOf(key);
        const auto input = value.integerValue();
        if (usage && input >= 1 && input <= lastInput && bindings.size() < mostBindings)
            bindings.push_back({*usage, static_cast<std::uint8_t>(input)});
        else
            ++leftOut;
        return true;
    });
    if (leftOut > 0) complaint = "keymap: " + std::to_string(leftOut) + " entries that are none are left out";
    std::sort(bindings.begin(), bindings.end(), [](auto a, auto b) { return a.usage < b.usage; });
    return bindings;
}

} // namespace

Settings readSettings(const NSDictionary* values, std::string& complaint) {
    static const auto nothing = NSDictionary::dictionary();
    if (!values) values = nothing.get();

    Settings settings;
    settings.controllerType = values->objectForKey("controller_type").integerValue();
    settings.connectionMode = values->objectForKey("connection_mode").integerValue();
    if (const auto* const color = values->objectForKey("JVNLEDColorKey").string()) settings.color = colorOf(*color);
    settings.isAmbient = values->objectForKey("JVNAmbientColorKey").boolValue();
    settings.forcesExtended = values->objectForKey("JVNForceExtendedGamepad").boolValue();
    if (const auto data = values->objectForKey("PS4BluetoothAddress").object<NSData>())
        settings.address = bluetooth::Address::fromBytes(data->bytes());
    auto keymap = values->objectForKey("JVNKeyboardKeymapKey").object<NSDictionary>();
    if (!keymap) keymap = defaultKeymap();
    settings.keymap = keymapOf(*keymap, complaint);
    return settings;
}

} // namespace jvnd
