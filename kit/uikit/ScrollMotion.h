#pragma once

namespace seat {

// How far content may move: offsets from `least` to `most` (never below `least`), seen through `extent` points.
struct ScrollRange {
    double least = 0;
    double most = 0;
    double extent = 0;

    double clamp(double offset) const;
};

// Where content stands that a finger has pulled to `offset`: beyond the range it follows ever less.
double rubberBanded(double offset, ScrollRange range);
// The offset that a finger must have pulled to for the content to stand at `shown`.
double unbanded(double shown, ScrollRange range);

// The way of content that a finger has let go: slows down within the range, springs back from beyond it, and ends at
// an exact place. A pure function of the time since the release.
class ScrollMotion {
public:
    // `velocity` in points a second, along the offset.
    ScrollMotion(double offset, double velocity, ScrollRange range);

    double offsetAt(double seconds) const;
    double duration() const { return m_glide.seconds + m_spring.seconds; }
    double end() const { return m_end; }

private:
    struct Glide {
        double from = 0;
        double velocity = 0;
        double seconds = 0;
        double offsetAt(double time) const;
        double velocityAt(double time) const;
    };
    struct Spring { // critically damped
        double home = 0;
        double displacement = 0;
        double velocity = 0;
        double seconds = 0;
        double offsetAt(double time) const;
    };
    void springTo(double home, double offset, double velocity);

    Glide m_glide;
    Spring m_spring;
    double m_end = 0;
};

} // namespace seat
