#include "services/jvninputd/lights.h"

#include "services/common/log.h"

#include "system/files/Descriptor.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace jvninputd {

namespace {

// Of one line; empty when it cannot be read.
std::string readAttribute(const std::string& path) {
    const seat::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 256> buffer;
    const ssize_t size = file ? ::read(file.get(), buffer.data(), buffer.size()) : -1;
    if (size <= 0) return {};
    const std::string_view all(buffer.data(), static_cast<std::size_t>(size));
    return std::string(all.substr(0, all.find('\n')));
}

bool writeAttribute(const std::string& path, const std::string& value) {
    const seat::Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (file && ::write(file.get(), value.data(), value.size()) == static_cast<ssize_t>(value.size())) return true;
    // The controller may be on its way out; one line says it once.
    if (errno != ENOENT && errno != ENODEV) services::log("setting a controller's light: %s", std::strerror(errno));
    return false;
}

unsigned brightest(const std::string& light) {
    const std::string digits = readAttribute(light + "/max_brightness");
    unsigned value = 255;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    const std::unique_ptr<::DIR, int (*)(::DIR*)> entries(::opendir(folder.c_str()), ::closedir);
    while (const ::dirent* entry = entries ? ::readdir(entries.get()) : nullptr)
        if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
    return names;
}

std::optional<std::uint8_t> partNamed(std::string_view name, Colour colour) {
    if (name == "red") return colour.red;
    if (name == "green") return colour.green;
    if (name == "blue") return colour.blue;
    return std::nullopt;
}

std::string scaled(std::uint8_t part, unsigned most) { return std::to_string((part * most + 127) / 255); }

// The parts of a light of several colours, in the order in which the driver wants them.
std::vector<std::string> partsOf(const std::string& light) {
    const std::string index = readAttribute(light + "/multi_index");
    std::vector<std::string> parts;
    for (std::size_t at = 0; at < index.size();) {
        const std::size_t end = std::min(index.find(' ', at), index.size());
        if (end > at) parts.push_back(index.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

enum class Shape { none, single, multicolour };

Shape shapeOf(const std::string& folder, const std::string& name) {
    if (!partsOf(folder + name).empty()) return Shape::multicolour;
    const std::size_t colon = name.rfind(':');
    return colon != std::string::npos && partNamed(name.substr(colon + 1), {}) ? Shape::single : Shape::none;
}

bool setMulticolour(const std::string& light, Colour colour) {
    const unsigned most = brightest(light);
    std::string intensities;
    for (const std::string& part : partsOf(light)) {
        if (!intensities.empty()) intensities += ' ';
        intensities += scaled(partNamed(part, colour).value_or(0), most);
    }
    return writeAttribute(light + "/multi_intensity", intensities) &&
           writeAttribute(light + "/brightness", std::to_string(most));
}

bool setSingle(const std::string& light, Colour colour) {
    const auto part = partNamed(light.substr(light.rfind(':') + 1), colour);
    return writeAttribute(light + "/brightness", scaled(part.value_or(0), brightest(light)));
}

} // namespace

bool hasLight(const std::string& deviceFolder) {
    const std::string folder = deviceFolder + "/leds/";
    for (const std::string& name : namesIn(folder))
        if (shapeOf(folder, name) != Shape::none) return true;
    return false;
}

bool setLight(const std::string& deviceFolder, Colour colour) {
    const std::string folder = deviceFolder + "/leds/";
    bool any = false;
    bool all = true;
    for (const std::string& name : namesIn(folder)) {
        const Shape shape = shapeOf(folder, name);
        if (shape == Shape::none) continue;
        any = true;
        all &= shape == Shape::multicolour ? setMulticolour(folder + name, colour) : setSingle(folder + name, colour);
    }
    return any && all;
}

} // namespace jvninputd
