#pragma once

#include "kit/quartz/Clip.h"
#include "kit/seat.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace seat {

// Anti-aliases; no pen, opaque and without a transform between calls.
class ToolkitPainter final : public Painter {
public:
    explicit ToolkitPainter(const PixelTarget& target);

    // Whoever changes its state puts it back.
    QPainter& toolkit() { return m_painter; }

    void setClip(const Clip& clip) override;
    void fillPath(const CGPath& path, const CGAffineTransform& toPixels, FillRule rule, const CGColor& color,
                  double alpha) override;
    void fillPath(const CGPath& path, const PixelRect& rect, PixelRows& rows) override;
    void strokePath(const CGPath& path, const CGAffineTransform& toPixels, double lineWidth, const CGColor& color,
                    double alpha) override;
    void drawImage(const std::uint32_t* pixels, int width, int height, const CGAffineTransform& toPixels,
                   double alpha) override;

private:
    QImage m_device;
    QPainter m_painter;
};

} // namespace seat
