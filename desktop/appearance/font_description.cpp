#include "desktop/appearance/font_description.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace seat {

FontDescription parseFontDescription(const std::string& text) {
    FontDescription description;
    std::string rest = text;
    const auto trim = [&] {
        while (!rest.empty() && (rest.back() == ' ' || rest.back() == ',')) rest.pop_back();
    };
    trim();
    const std::size_t space = rest.find_last_of(" ,");
    const std::size_t start = space == std::string::npos ? 0 : space + 1;
    double size = 0;
    const auto [end, error] = std::from_chars(rest.data() + start, rest.data() + rest.size(), size);
    if (space != std::string::npos && error == std::errc() && end == rest.data() + rest.size() && std::isfinite(size) &&
        size > 0) {
        description.pointSize = size;
        rest.resize(start);
        trim();
    }
    std::ranges::replace(rest, ',', ' ');
    description.family = rest;
    return description;
}

double textScaleForPointSize(double pointSize) {
    constexpr double usual = 11;
    return std::max(1.0, pointSize / usual);
}

} // namespace seat
