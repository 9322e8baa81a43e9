// What kit/quartz does not paint itself, plainly: paths by sampling, pictures by their nearest pixel.

#include "kit/quartz/Clip.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/outline.h"
#include "kit/seat.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace seat {

namespace {

constexpr int samples = 8; // along each side of a pixel

// A path's closed parts, curves as chords.
std::vector<Outline> partsOf(const CGPath& path, const CGAffineTransform& toPixels) {
    using Kind = CGPathElement::Kind;
    constexpr int chords = 32;
    std::vector<Outline> parts;
    for (const CGPathElement& element : path.elements) {
        const auto point = [&](int i) { return CGPointApplyAffineTransform(element.points[i], toPixels); };
        if (element.kind == Kind::MoveTo) parts.push_back({point(0)});
        if (parts.empty() || element.kind == Kind::Close) continue;
        Outline& part = parts.back();
        if (element.kind == Kind::LineTo) part.push_back(point(0));
        if (element.kind != Kind::CurveTo) continue;
        const CGPoint start = part.back();
        for (int i = 1; i <= chords; ++i) {
            const double s = double{1} * i / chords;
            const double u = 1 - s;
            const auto mixed = [&](double a, double b, double c, double d) {
                return u * u * u * a + 3 * u * u * s * b + 3 * u * s * s * c + s * s * s * d;
            };
            part.push_back({mixed(start.x, point(0).x, point(1).x, point(2).x),
                            mixed(start.y, point(0).y, point(1).y, point(2).y)});
        }
    }
    return parts;
}

bool isInside(const std::vector<Outline>& parts, CGPoint at, FillRule rule) {
    int winding = 0;
    for (const Outline& part : parts)
        for (std::size_t i = 0; i < part.size(); ++i) {
            const CGPoint a = part[i];
            const CGPoint b = part[(i + 1) % part.size()];
            if ((a.y <= at.y) == (b.y <= at.y)) continue;
            if (a.x + (at.y - a.y) / (b.y - a.y) * (b.x - a.x) > at.x) winding += a.y < b.y ? 1 : -1;
        }
    return rule == FillRule::Winding ? winding != 0 : winding % 2 != 0;
}

// Edges of a stroke: a rectangle a stretch, and a square at the corners between them.
std::vector<Outline> strokeOf(const CGPath& path, double lineWidth, const CGAffineTransform& toPixels) {
    std::vector<Outline> strokes;
    const double half = lineWidth / 2;
    const auto parts = partsOf(path, CGAffineTransformIdentity);
    const bool isClosed = !path.elements.empty() && path.elements.back().kind == CGPathElement::Kind::Close;
    for (const Outline& part : parts)
        for (std::size_t i = 0; i + (isClosed ? 0 : 1) < part.size(); ++i) {
            const CGPoint a = part[i];
            const CGPoint b = part[(i + 1) % part.size()];
            const double length = std::hypot(b.x - a.x, b.y - a.y);
            if (!(length > 0)) continue;
            const CGPoint along{(b.x - a.x) / length * half, (b.y - a.y) / length * half};
            const bool first = i == 0 && !isClosed;
            const bool last = i + 2 == part.size() && !isClosed;
            const CGPoint from = first ? a : CGPoint{a.x - along.x, a.y - along.y};
            const CGPoint to = last ? b : CGPoint{b.x + along.x, b.y + along.y};
            strokes.push_back(transformed({{from.x - along.y, from.y + along.x},
                                           {to.x - along.y, to.y + along.x},
                                           {to.x + along.y, to.y - along.x},
                                           {from.x + along.y, from.y - along.x}},
                                          toPixels));
        }
    return strokes;
}

class MemoryPainter final : public Painter {
public:
    explicit MemoryPainter(const PixelTarget& target) : m_target(target) {}

    void setClip(const Clip& clip) override {
        m_clip = clip.rect;
        m_clipShapes.clear();
        for (auto shape = clip.shape; shape; shape = shape->outer)
            m_clipShapes.push_back(partsOf(shape->path, CGAffineTransformIdentity));
    }
    void fillPath(const CGPath& path, const CGAffineTransform& toPixels, FillRule rule, const CGColor& color,
                  double alpha) override {
        fill(partsOf(path, toPixels), rule, color, alpha);
    }
    void fillPath(const CGPath& path, const PixelRect& rect, PixelRows& rows) override {
        const auto parts = partsOf(path, CGAffineTransformIdentity);
        covered(parts, FillRule::Winding, m_clip.intersected(rect),
                [&](int x, int y, double share) { blendRow(m_target.row(y) + x, rows.at(x, y), 1, share); });
    }
    void strokePath(const CGPath& path, const CGAffineTransform& toPixels, double lineWidth, const CGColor& color,
                    double alpha) override {
        auto strokes = strokeOf(path, lineWidth, toPixels);
        // All the same way round, so that they add up.
        for (Outline& stroke : strokes) {
            double area = 0;
            for (std::size_t i = 0; i < stroke.size(); ++i) {
                const CGPoint a = stroke[i], b = stroke[(i + 1) % stroke.size()];
                area += a.x * b.y - b.x * a.y;
            }
            if (area < 0) std::reverse(stroke.begin(), stroke.end());
        }
        fill(strokes, FillRule::Winding, color, alpha);
    }
    void drawImage(const std::uint32_t* pixels, int width, int height, const CGAffineTransform& toPixels,
                   double alpha) override {
        const CGAffineTransform back = CGAffineTransformInvert(toPixels);
        const Outline corners = transformed({{0, 0}, {1, 0}, {1, 1}, {0, 1}}, toPixels);
        covered({corners}, FillRule::Winding, m_clip, [&](int x, int y, double share) {
            const CGPoint at = CGPointApplyAffineTransform({x + 0.5, y + 0.5}, back);
            const int column = std::clamp(static_cast<int>(at.x * width), 0, width - 1);
            const int row = std::clamp(static_cast<int>(at.y * height), 0, height - 1);
            blendRow(m_target.row(y) + x, pixels + std::ptrdiff_t{row} * width + column, 1,
                     share * std::clamp(alpha, 0.0, 1.0));
        });
    }

private:
    void fill(const std::vector<Outline>& parts, FillRule rule, const CGColor& color, double alpha) {
        covered(parts, rule, m_clip, [&](int x, int y, double share) {
            SolidSource(color, alpha * share).paint(m_target, {x, y, x + 1, y + 1});
        });
    }

    // Calls `paint(x, y, share)` for each pixel of `rect` of which a share above 0 lies inside.
    template <class Paint>
    void covered(const std::vector<Outline>& parts, FillRule rule, const PixelRect& rect, Paint&& paint) const {
        double left = rect.right, top = rect.bottom, right = rect.left, bottom = rect.top;
        for (const Outline& part : parts)
            for (const CGPoint& corner : part) {
                if (!std::isfinite(corner.x + corner.y)) return;
                left = std::min(left, corner.x);
                top = std::min(top, corner.y);
                right = std::max(right, corner.x);
                bottom = std::max(bottom, corner.y);
            }
        const auto within = [](double edge, int least, int most) {
            return static_cast<int>(std::clamp<double>(edge, least, most));
        };
        for (int y = within(std::floor(top), rect.top, rect.bottom);
             y < within(std::ceil(bottom), rect.top, rect.bottom); ++y)
            for (int x = within(std::floor(left), rect.left, rect.right);
                 x < within(std::ceil(right), rect.left, rect.right); ++x) {
                int hits = 0;
                for (int i = 0; i < samples * samples; ++i) {
                    const CGPoint at{x + (i % samples + 0.5) / samples, y + (i / samples + 0.5) / samples};
                    const bool isSeen = std::all_of(m_clipShapes.begin(), m_clipShapes.end(), [&](const auto& shape) {
                        return isInside(shape, at, FillRule::Winding);
                    });
                    hits += isSeen && isInside(parts, at, rule);
                }
                if (hits > 0) paint(x, y, static_cast<double>(hits) / (samples * samples));
            }
    }

    PixelTarget m_target;
    PixelRect m_clip;
    std::vector<std::vector<Outline>> m_clipShapes;
};

} // namespace

std::unique_ptr<Painter> makePainter(const PixelTarget& target) { return std::make_unique<MemoryPainter>(target); }

} // namespace seat
