#include "desktop/appearance/portal_settings.h"

#include "desktop/appearance/font_description.h"
#include "platform/foundation/NSArray.h"

#include <cmath>

namespace seat {
namespace {

// nil when it is not said.
id setting(const NSDictionary& spaces, const char* space, const char* name) {
    const auto* const values = spaces.objectForKey(space).objectPointer<NSDictionary>();
    return values ? values->objectForKey(name) : id();
}

// Three components from 0 to 1; anything else means that there is no accent.
std::optional<CGColor> accentOf(const id& value) {
    const auto* const parts = value.objectPointer<NSArray>();
    if (!parts || parts->count() != 3) return std::nullopt;
    double components[3] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto* const number = parts->objectAtIndex(i).number();
        if (!number) return std::nullopt;
        components[i] = number->doubleValue();
        if (!(components[i] >= 0 && components[i] <= 1)) return std::nullopt;
    }
    return CGColor{components[0], components[1], components[2], 1};
}

// The factor for people who see less well, times what the font itself is larger than usual.
void applyTextSettings(const NSDictionary& spaces, DesktopLook& look) {
    constexpr const char* space = portalSettingsSpaces[2];
    const id factor = setting(spaces, space, "text-scaling-factor");
    const id font = setting(spaces, space, "font-name");
    if (!factor.number() && !font.string()) return;
    FontDescription description;
    if (font.string()) description = parseFontDescription(*font.string());
    const double given = factor.number() ? factor.number()->doubleValue() : 1;
    look.textScale = (given > 0 && std::isfinite(given) ? given : 1) * textScaleForPointSize(description.pointSize);
    if (!description.family.empty()) look.fontFamily = description.family;
}

} // namespace

void applyPortalSettings(const NSDictionary& spaces, DesktopLook& desktopLook) {
    auto& look = desktopLook.colors;
    constexpr const char* appearanceSpace = portalSettingsSpaces[0];
    if (const id scheme = setting(spaces, appearanceSpace, "color-scheme"); scheme.number()) {
        if (scheme.integerValue() == 1) look.isDark = true;
        if (scheme.integerValue() == 2) look.isDark = false;
    }
    if (const id contrast = setting(spaces, appearanceSpace, "contrast"); contrast.number())
        look.hasHighContrast = contrast.integerValue() == 1;
    if (const id high = setting(spaces, portalSettingsSpaces[1], "high-contrast"); high.number() && high.boolValue())
        look.hasHighContrast = true;
    if (const id accent = setting(spaces, appearanceSpace, "accent-color")) look.accent = accentOf(accent);
    applyTextSettings(spaces, desktopLook);
}

} // namespace seat
