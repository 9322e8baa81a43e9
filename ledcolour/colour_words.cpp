#include "ledcolour/colour_words.h"

#include "platform/uikit/UIColor.h"

#include <array>

namespace {

struct HueWord {
    double end; // degrees
    const char* word;
};

constexpr std::array<HueWord, 9> hueWords{{{15, "red"},
                                           {45, "orange"},
                                           {70, "yellow"},
                                           {165, "green"},
                                           {200, "turquoise"},
                                           {255, "blue"},
                                           {290, "violet"},
                                           {340, "pink"},
                                           {361, "red"}}};

} // namespace

std::string JVNWordsForUIColor(const std::shared_ptr<UIColor>& color) {
    double hue = 0;
    double saturation = 0;
    double brightness = 0;
    if (!color || !color->getHue_saturation_brightness_alpha(&hue, &saturation, &brightness, nullptr)) return {};
    if (brightness < 0.1) return "black";
    if (saturation < 0.12) return brightness > 0.85 ? "white" : brightness < 0.4 ? "dark gray" : "gray";
    const std::string shade = brightness < 0.55 ? "dark " : saturation < 0.5 ? "pale " : "";
    for (const auto& [end, word] : hueWords)
        if (hue * 360 < end) return shade + word;
    return shade + "red";
}
