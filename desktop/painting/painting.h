#pragma once

// Our values as the toolkit's.

#include "platform/quartz/CGAffineTransform.h"
#include "platform/quartz/CGColor.h"

#include <QColor>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <optional>

namespace seat {

// Nothing for a colour that paints nothing.
inline std::optional<QColor> toolkitColor(const CGColor& color, double alpha = 1) {
    if (std::isnan(color.red + color.green + color.blue + color.alpha + alpha)) return std::nullopt;
    const auto unit = [](double component) { return static_cast<float>(std::clamp(component, 0.0, 1.0)); };
    const float opacity = unit(unit(color.alpha) * alpha);
    if (opacity <= 0) return std::nullopt;
    return QColor::fromRgbF(unit(color.red), unit(color.green), unit(color.blue), opacity);
}

inline QTransform toolkitTransform(const CGAffineTransform& t) { return {t.a, t.b, t.c, t.d, t.tx, t.ty}; }

inline bool isFinite(const CGAffineTransform& t) { return std::isfinite(t.a + t.b + t.c + t.d + t.tx + t.ty); }

} // namespace seat
