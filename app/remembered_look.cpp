#include "app/remembered_look.h"

#include "kit/seat.h"
#include "platform/log.h"
#include "system/files/atomic_file.h"
#include "system/files/root.h"

#include <cmath>
#include <locale>
#include <sstream>
#include <unistd.h>

namespace {

constexpr std::size_t mostLookBytes = 4096;

std::string lookFile() { return seat::root() + "/.look"; }

bool isUnit(double component) { return component >= 0 && component <= 1; }

// "dark contrast text-scale accent|- font": "1 0 1.25 0.6,0.2,0.7 Noto Sans".
std::string lookText(const seat::DesktopLook& look) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << look.colors.isDark << ' ' << look.colors.hasHighContrast << ' ' << look.textScale << ' ';
    if (const auto& accent = look.colors.accent)
        text << accent->red << ',' << accent->green << ',' << accent->blue;
    else
        text << '-';
    text << ' ' << look.fontFamily << '\n';
    return text.str();
}

std::optional<seat::DesktopLook> lookOf(const std::string& text) {
    std::istringstream words(text);
    words.imbue(std::locale::classic());
    seat::DesktopLook look;
    std::string accent;
    if (!(words >> look.colors.isDark >> look.colors.hasHighContrast >> look.textScale >> accent)) return std::nullopt;
    if (!std::isfinite(look.textScale) || look.textScale <= 0) return std::nullopt;
    if (accent != "-") {
        CGColor color{0, 0, 0, 1};
        char comma = 0;
        std::istringstream parts(accent);
        parts.imbue(std::locale::classic());
        if (!(parts >> color.red >> comma >> color.green >> comma >> color.blue) || !isUnit(color.red) ||
            !isUnit(color.green) || !isUnit(color.blue))
            return std::nullopt;
        look.colors.accent = color;
    }
    std::getline(words >> std::ws, look.fontFamily);
    return look;
}

} // namespace

std::optional<seat::DesktopLook> app::rememberedLook() {
    std::shared_ptr<NSError> error;
    const auto data = seat::readFile(lookFile(), mostLookBytes, &error);
    if (!data) {
        if (error->code() != ENOENT) NSLog("%s", error->localizedDescription().c_str());
        return std::nullopt;
    }
    const auto bytes = data->bytes();
    return lookOf(std::string(bytes.begin(), bytes.end()));
}

void app::rememberLook(const std::optional<seat::DesktopLook>& look) {
    const auto remembered = rememberedLook();
    if (!look) {
        if (remembered) unlink(lookFile().c_str());
        return;
    }
    const std::string text = lookText(*look);
    if (remembered && lookText(*remembered) == text) return;
    const auto failure =
        seat::writeFileAtomically(lookFile(), {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    if (failure) NSLog("keeping the desktop's look: %s", failure->localizedDescription().c_str());
}
