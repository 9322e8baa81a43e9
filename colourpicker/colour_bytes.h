#pragma once

#include <cstdint>
#include <memory>

class UIColor;

// A colour's components as drawn to a byte each: times 255, cut and not rounded, not clamped to a byte.
struct ColorBytes {
    std::int32_t red = 0;
    std::int32_t green = 0;
    std::int32_t blue = 0;
};

// All 0 for a colour without components, and for nil.
ColorBytes colorBytes(const std::shared_ptr<UIColor>& color);
