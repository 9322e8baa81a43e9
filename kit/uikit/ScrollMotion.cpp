#include "kit/uikit/ScrollMotion.h"

#include <algorithm>
#include <cmath>

namespace seat {

namespace {

constexpr double bandStiffness = 0.55;
constexpr double glideRate = -2.002;        // per second: speed is multiplied by exp(rate * t); 0.998 a millisecond
constexpr double restingSpeed = 12;         // points a second that nobody sees any more
constexpr double springRate = 12;           // per second
constexpr double restingDisplacement = 0.2; // points

} // namespace

double ScrollRange::clamp(double offset) const { return std::max(least, std::min(offset, most)); }

double rubberBanded(double offset, ScrollRange range) {
    const double inside = range.clamp(offset);
    const double beyond = std::abs(offset - inside);
    if (beyond == 0 || range.extent <= 0) return inside;
    const double shown = (1 - 1 / (beyond * bandStiffness / range.extent + 1)) * range.extent;
    return offset > inside ? inside + shown : inside - shown;
}

double unbanded(double shown, ScrollRange range) {
    const double inside = range.clamp(shown);
    const double fraction = range.extent > 0 ? std::min(std::abs(shown - inside) / range.extent, 0.99) : 0;
    const double beyond = (1 / (1 - fraction) - 1) * range.extent / bandStiffness;
    return shown > inside ? inside + beyond : inside - beyond;
}

double ScrollMotion::Glide::offsetAt(double time) const {
    return from + velocity * (std::exp(glideRate * time) - 1) / glideRate;
}

double ScrollMotion::Glide::velocityAt(double time) const { return velocity * std::exp(glideRate * time); }

double ScrollMotion::Spring::offsetAt(double time) const {
    return home + (displacement + (velocity + springRate * displacement) * time) * std::exp(-springRate * time);
}

ScrollMotion::ScrollMotion(double offset, double velocity, ScrollRange range) {
    const double inside = range.clamp(offset);
    if (inside != offset) {
        springTo(inside, offset, velocity);
        return;
    }

    m_glide = {offset, velocity, 0};
    m_end = offset;
    if (std::abs(velocity) <= restingSpeed) return;
    const double seconds = std::log(restingSpeed / std::abs(velocity)) / glideRate;
    const double end = m_glide.offsetAt(seconds);
    m_end = range.clamp(end);
    if (m_end == end) {
        m_glide.seconds = seconds;
        m_end = range.clamp(std::round(end)); // whole points: rows rest on pixels at every scale
        return;
    }
    // The edge is reached while still moving: the rest of the way is the spring's.
    m_glide.seconds = std::log1p((m_end - offset) * glideRate / velocity) / glideRate;
    springTo(m_end, m_end, m_glide.velocityAt(m_glide.seconds));
}

void ScrollMotion::springTo(double home, double offset, double velocity) {
    m_end = home;
    m_spring = {home, offset - home, velocity, 0};
    // Past its peak the displacement only shrinks; a tenth of a second is a step fine enough to find when.
    const double peak = 1 / springRate;
    double seconds = peak;
    while (seconds < 3 && std::abs(m_spring.offsetAt(seconds) - home) > restingDisplacement) seconds += 0.1;
    m_spring.seconds = seconds;
}

double ScrollMotion::offsetAt(double seconds) const {
    if (seconds >= duration()) return m_end;
    if (seconds < m_glide.seconds) return m_glide.offsetAt(std::max(seconds, 0.0));
    return m_spring.offsetAt(std::max(seconds - m_glide.seconds, 0.0));
}

} // namespace seat
