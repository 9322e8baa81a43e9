#include "kit/quartz/Canvas.h"

#include "kit/quartz/snapping.h"

#include <array>
#include <cmath>

namespace seat {

namespace {

PixelTarget targetOf(CGImage& image) {
    return {image.pixels.data(), static_cast<int>(image.width), static_cast<int>(image.height),
            static_cast<std::ptrdiff_t>(image.width * sizeof(std::uint32_t))};
}

// A stretch of pixels that an edge-to-edge range covers alike.
struct Band {
    int from = 0;
    int to = 0;
    double coverage = 1;
};

// The pixel cut by the near edge, the whole ones, the pixel cut by the far edge; some may be empty.
std::array<Band, 3> bands(double from, double to) {
    if (isOnPixelEdge(from)) from = std::round(from);
    if (isOnPixelEdge(to)) to = std::round(to);
    const int first = static_cast<int>(std::floor(from));
    const int firstWhole = static_cast<int>(std::ceil(from));
    const int lastWhole = static_cast<int>(std::floor(to));
    const int last = static_cast<int>(std::ceil(to));
    if (firstWhole > lastWhole) return {Band{first, last, to - from}, {}, {}};
    return {Band{first, firstWhole, firstWhole - from}, Band{firstWhole, lastWhole, 1},
            Band{lastWhole, last, to - lastWhole}};
}

} // namespace

Canvas::Canvas(const PixelTarget& target) : m_target(target), m_clip{extent(), nullptr} {}

Canvas::Canvas(std::shared_ptr<CGImage> image)
    : m_target(targetOf(*image)), m_image(std::move(image)), m_clip{extent(), nullptr} {}

void Canvas::setClip(Clip clip) {
    clip.rect = clip.rect.intersected(extent());
    if (clip.rect == m_clip.rect && clip.shape == m_clip.shape) return;
    m_clip = std::move(clip);
    m_clipIsSet = false;
}

// False when there is nothing to draw in.
bool Canvas::beginWriting() {
    if (m_clip.rect.isEmpty()) return false;
    if (!m_imageIsTaken) return true;
    m_painter.reset();
    m_clipIsSet = false;
    m_image = std::make_shared<CGImage>(*m_image);
    m_target = targetOf(*m_image);
    m_imageIsTaken = false;
    return true;
}

void Canvas::fillPixels(const PixelRect& rect, const CGColor& color, double alpha) {
    if (m_clip.shape) {
        fillRect(rect.left, rect.top, rect.right, rect.bottom, color, alpha);
        return;
    }
    const PixelRect visible = rect.intersected(m_clip.rect);
    if (visible.isEmpty() || !beginWriting()) return;
    SolidSource(color, alpha).paint(m_target, visible);
}

void Canvas::fillRect(double left, double top, double right, double bottom, const CGColor& color, double alpha) {
    // Cutting first keeps huge values away from whole numbers; the comparisons turn away what is no number.
    const PixelRect& clip = m_clip.rect;
    if (!(left < right) || !(top < bottom)) return;
    left = std::max<double>(left, clip.left);
    top = std::max<double>(top, clip.top);
    right = std::min<double>(right, clip.right);
    bottom = std::min<double>(bottom, clip.bottom);
    if (!(left < right) || !(top < bottom)) return;
    if (m_clip.shape) {
        if (Painter* const painter = this->painter())
            painter->fillPath(pathOf({{left, top}, {right, top}, {right, bottom}, {left, bottom}}),
                              CGAffineTransformIdentity, FillRule::Winding, color, alpha);
        return;
    }
    if (isOnPixelEdge(left) && isOnPixelEdge(top) && isOnPixelEdge(right) && isOnPixelEdge(bottom)) {
        const auto edge = [](double value) { return static_cast<int>(std::lround(value)); };
        fillPixels({edge(left), edge(top), edge(right), edge(bottom)}, color, alpha);
        return;
    }
    if (!beginWriting()) return;
    const auto columns = bands(left, right);
    for (const Band& row : bands(top, bottom))
        for (const Band& column : columns)
            if (row.from < row.to && column.from < column.to)
                SolidSource(color, alpha * row.coverage * column.coverage)
                    .paint(m_target, {column.from, row.from, column.to, row.to});
}

void Canvas::fillCovered(std::span<const CoveredRun> runs, int dx, int dy, const CGColor& color, double alpha) {
    if (beginWriting()) SolidSource(color, alpha).paint(m_target, runs, dx, dy, m_clip.rect);
}

void Canvas::drawCovered(std::span<const CoveredRun> runs, int dx, int dy, PixelRows& source) {
    if (!beginWriting()) return;
    for (const CoveredRun& each : runs)
        if (const CoveredRun run = each.translated(dx, dy, m_clip.rect); run.count > 0)
            blendRow(m_target.row(run.y) + run.x, source.at(run.x, run.y), static_cast<std::size_t>(run.count),
                     static_cast<double>(run.coverage) / CoveredRun::whole);
}

void Canvas::drawRows(const PixelRect& rect, PixelRows& source) {
    const PixelRect visible = rect.intersected(m_clip.rect);
    if (visible.isEmpty() || !beginWriting()) return;
    for (int y = visible.top; y < visible.bottom; ++y)
        blendRow(m_target.row(y) + visible.left, source.at(visible.left, y), static_cast<std::size_t>(visible.width()),
                 1);
}

void Canvas::drawPixels(const std::uint32_t* pixels, int width, int height, int left, int top, double alpha) {
    if (m_clip.shape) {
        if (Painter* const painter = this->painter())
            painter->drawImage(pixels, width, height, {double(width), 0, 0, double(height), double(left), double(top)},
                               alpha);
        return;
    }
    const PixelRect visible = PixelRect{left, top, left + width, top + height}.intersected(m_clip.rect);
    if (visible.isEmpty() || !beginWriting()) return;
    for (int y = visible.top; y < visible.bottom; ++y)
        blendRow(m_target.row(y) + visible.left, pixels + std::ptrdiff_t{y - top} * width + (visible.left - left),
                 static_cast<std::size_t>(visible.width()), alpha);
}

void Canvas::drawImage(const CGImage& image, const CGAffineTransform& t, double alpha) {
    if (image.width == 0 || image.height == 0 || image.pixels.size() < image.width * image.height) return;
    const auto width = static_cast<double>(image.width);
    const auto height = static_cast<double>(image.height);
    const bool pixelForPixel = t.b == 0 && t.c == 0 && std::abs(t.a - width) <= snappingAllowance &&
                               std::abs(t.d - height) <= snappingAllowance && isOnPixelEdge(t.tx) &&
                               isOnPixelEdge(t.ty) && std::abs(t.tx) < 1e6 && std::abs(t.ty) < 1e6;
    if (pixelForPixel) {
        drawPixels(image.pixels.data(), static_cast<int>(image.width), static_cast<int>(image.height),
                   static_cast<int>(std::lround(t.tx)), static_cast<int>(std::lround(t.ty)), alpha);
        return;
    }
    if (Painter* const painter = this->painter())
        painter->drawImage(image.pixels.data(), static_cast<int>(image.width), static_cast<int>(image.height), t,
                           alpha);
}

Painter* Canvas::painter() {
    if (!beginWriting()) return nullptr;
    if (!m_painter) m_painter = makePainter(m_target);
    if (!m_clipIsSet) m_painter->setClip(m_clip);
    m_clipIsSet = true;
    return m_painter.get();
}

CGImageRef Canvas::takeImage() {
    m_imageIsTaken = true;
    return m_image;
}

} // namespace seat
