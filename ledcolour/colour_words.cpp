#include "ledcolour/colour_words.h"

#include "platform/foundation/NSLocalizedString.h"
#include "platform/uikit/UIColor.h"

#include <array>

namespace {

struct HueWord {
    double end; // degrees
    // Whole texts: in other languages shade and hue may be one word, or agree.
    const char* word;
    const char* dark;
    const char* pale;
};

constexpr std::array<HueWord, 9> hueWords{{
    {15, NSLocalizable("red"), NSLocalizable("dark red"), NSLocalizable("pale red")},
    {45, NSLocalizable("orange"), NSLocalizable("dark orange"), NSLocalizable("pale orange")},
    {70, NSLocalizable("yellow"), NSLocalizable("dark yellow"), NSLocalizable("pale yellow")},
    {165, NSLocalizable("green"), NSLocalizable("dark green"), NSLocalizable("pale green")},
    {200, NSLocalizable("turquoise"), NSLocalizable("dark turquoise"), NSLocalizable("pale turquoise")},
    {255, NSLocalizable("blue"), NSLocalizable("dark blue"), NSLocalizable("pale blue")},
    {290, NSLocalizable("violet"), NSLocalizable("dark violet"), NSLocalizable("pale violet")},
    {340, NSLocalizable("pink"), NSLocalizable("dark pink"), NSLocalizable("pale pink")},
    {361, NSLocalizable("red"), NSLocalizable("dark red"), NSLocalizable("pale red")},
}};

} // namespace

std::string JVNWordsForUIColor(const std::shared_ptr<UIColor>& color) {
    double hue = 0;
    double saturation = 0;
    double brightness = 0;
    if (!color || !color->getHue_saturation_brightness_alpha(&hue, &saturation, &brightness, nullptr)) return {};
    if (brightness < 0.1) return NSLocalizedString("black");
    if (saturation < 0.12) {
        if (brightness > 0.85) return NSLocalizedString("white");
        return brightness < 0.4 ? NSLocalizedString("dark gray") : NSLocalizedString("gray");
    }
    const HueWord* found = &hueWords.back();
    for (const auto& hueWord : hueWords) {
        found = &hueWord;
        if (hue * 360 < hueWord.end) break;
    }
    return NSLocalizedString(brightness < 0.55 ? found->dark : saturation < 0.5 ? found->pale : found->word);
}
