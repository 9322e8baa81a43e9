#include "app/window_size.h"

#include "app/Options.h"
#include "kit/seat.h"
#include "platform/log.h"
#include "system/files/atomic_file.h"
#include "system/files/root.h"

#include <cmath>
#include <sstream>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t mostBytes = 4096;
constexpr std::size_t mostScreens = 8;

std::string path() { return seat::root() + "/.window-sizes"; }

// A line a screen, the latest first: "384 667 HDMI-1 1920x1080".
std::vector<std::pair<std::string, CGSize>> readSizes() {
    std::vector<std::pair<std::string, CGSize>> sizes;
    std::shared_ptr<NSError> error;
    const auto data = seat::readFile(path(), mostBytes, &error);
    if (!data) {
        if (error->code() != ENOENT) NSLog("%s", error->localizedDescription().c_str());
        return sizes;
    }
    const auto bytes = data->bytes();
    std::istringstream lines(std::string(bytes.begin(), bytes.end()));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        CGSize size;
        std::string screen;
        if (words >> size.width >> size.height && std::getline(words >> std::ws, screen) && app::isWindowSize(size))
            sizes.emplace_back(screen, size);
    }
    return sizes;
}

} // namespace

std::optional<CGSize> app::rememberedWindowSize(const std::string& screen) {
    for (const auto& [name, size] : readSizes())
        if (name == screen) return size;
    return std::nullopt;
}

void app::rememberWindowSize(const std::string& screen, CGSize size) {
    auto sizes = readSizes();
    std::erase_if(sizes, [&](const auto& entry) { return entry.first == screen; });
    sizes.insert(sizes.begin(), {screen, size});
    if (sizes.size() > mostScreens) sizes.resize(mostScreens);
    std::ostringstream text;
    for (const auto& [name, kept] : sizes)
        text << std::lround(kept.width) << ' ' << std::lround(kept.height) << ' ' << name << '\n';
    const std::string bytes = text.str();
    const auto failure =
        seat::writeFileAtomically(path(), {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    if (failure) NSLog("keeping the window's size: %s", failure->localizedDescription().c_str());
}
