#include "desktop/painting/ToolkitPainter.h"

#include "desktop/painting/painting.h"

#include <QBrush>

#include <algorithm>
#include <cmath>

namespace seat {

namespace {

QPainterPath toolkitPath(const CGPath& path, FillRule rule = FillRule::Winding) {
    QPainterPath result;
    result.setFillRule(rule == FillRule::Winding ? Qt::WindingFill : Qt::OddEvenFill);
    for (const CGPathElement& element : path.elements) {
        const auto point = [&element](int i) { return QPointF(element.points[i].x, element.points[i].y); };
        switch (element.kind) {
        case CGPathElement::Kind::MoveTo:
            result.moveTo(point(0));
            break;
        case CGPathElement::Kind::LineTo:
            result.lineTo(point(0));
            break;
        case CGPathElement::Kind::CurveTo:
            result.cubicTo(point(0), point(1), point(2));
            break;
        case CGPathElement::Kind::Close:
            result.closeSubpath();
            break;
        }
    }
    return result;
}

QPainterPath toolkitPath(const ClipShape& shape) {
    const QPainterPath path = toolkitPath(shape.path);
    return shape.outer ? toolkitPath(*shape.outer).intersected(path) : path;
}

QImage picture(const std::uint32_t* pixels, int width, int height) {
    return {reinterpret_cast<const uchar*>(pixels), width, height, qsizetype{width} * 4,
            QImage::Format_ARGB32_Premultiplied};
}

} // namespace

std::unique_ptr<Painter> makePainter(const PixelTarget& target) { return std::make_unique<ToolkitPainter>(target); }

ToolkitPainter::ToolkitPainter(const PixelTarget& target)
    : m_device(reinterpret_cast<uchar*>(target.pixels), target.width, target.height, target.bytesPerLine,
               QImage::Format_ARGB32_Premultiplied),
      m_painter(&m_device) {
    m_painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    m_painter.setPen(Qt::NoPen);
}

void ToolkitPainter::setClip(const Clip& clip) {
    m_painter.setClipRect(clip.rect.left, clip.rect.top, clip.rect.width(), clip.rect.height());
    if (clip.shape) m_painter.setClipPath(toolkitPath(*clip.shape), Qt::IntersectClip);
}

void ToolkitPainter::fillPath(const CGPath& path, const CGAffineTransform& toPixels, FillRule rule,
                              const CGColor& color, double alpha) {
    if (const auto ink = toolkitColor(color, alpha))
        m_painter.fillPath(toolkitTransform(toPixels).map(toolkitPath(path, rule)), *ink);
}

void ToolkitPainter::fillPath(const CGPath& path, const PixelRect& rect, PixelRows& rows) {
    if (rect.isEmpty()) return;
    QImage picture(rect.width(), rect.height(), QImage::Format_ARGB32_Premultiplied);
    for (int y = rect.top; y < rect.bottom; ++y)
        std::copy_n(rows.at(rect.left, y), rect.width(),
                    reinterpret_cast<std::uint32_t*>(picture.scanLine(y - rect.top)));
    QBrush brush(picture);
    brush.setTransform(QTransform::fromTranslate(rect.left, rect.top));
    m_painter.save();
    m_painter.setClipRect(rect.left, rect.top, rect.width(), rect.height(), Qt::IntersectClip);
    m_painter.fillPath(toolkitPath(path), brush);
    m_painter.restore();
}

void ToolkitPainter::strokePath(const CGPath& path, const CGAffineTransform& toPixels, double lineWidth,
                                const CGColor& color, double alpha) {
    const auto ink = toolkitColor(color, alpha);
    if (!ink) return;
    m_painter.setTransform(toolkitTransform(toPixels));
    m_painter.strokePath(toolkitPath(path), QPen(*ink, lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    m_painter.resetTransform();
}

void ToolkitPainter::drawImage(const std::uint32_t* pixels, int width, int height, const CGAffineTransform& t,
                               double alpha) {
    m_painter.setOpacity(std::clamp(alpha, 0.0, 1.0));
    if (t.b == 0 && t.c == 0 && t.a == width && t.d == height && t.tx == std::round(t.tx) && t.ty == std::round(t.ty)) {
        m_painter.drawImage(QPointF(t.tx, t.ty), picture(pixels, width, height));
    } else {
        m_painter.setTransform(toolkitTransform(t));
        m_painter.drawImage(QRectF(0, 0, 1, 1), picture(pixels, width, height));
        m_painter.resetTransform();
    }
    m_painter.setOpacity(1);
}

} // namespace seat
