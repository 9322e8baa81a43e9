#pragma once

// Where a layer's bounds stand in device pixels, and how they are filled.

#include "kit/quartz/Canvas.h"
#include "kit/quartz/LayerValues.h"

#include <optional>
#include <vector>

class CAGradientLayer;

namespace seat {

class LayerShape {
public:
    // `toPixels` from the layer's own coordinates. Nothing when the numbers make no place.
    static std::optional<LayerShape> make(const LayerValues& values, const CGAffineTransform& toPixels);

    // From the layer's own coordinates; for what stands in the layer.
    const CGAffineTransform& toPixels() const { return m_toPixels; }
    // The same, with an upright layer's corner moved to the nearest pixel's corner; for what the layer itself draws.
    const CGAffineTransform& snappedToPixels() const { return m_snappedToPixels; }
    // Every pixel that the shape may touch.
    const PixelRect& extent() const { return m_extent; }
    bool isPlainRect() const { return m_upright && m_radius <= 0; }
    bool isUpright() const { return m_upright; }
    // Upright shapes: edges in pixels.
    double left() const { return m_left; }
    double top() const { return m_top; }
    double right() const { return m_right; }
    double bottom() const { return m_bottom; }
    double radius() const { return m_radius; } // in pixels
    // A plain rectangle's pixels; those that hold all of any other shape.
    PixelRect pixels() const;

    LayerShape withSquareCorners() const;
    // A border's width: the whole pixels nearest to it, at least one.
    double borderPixels(double width) const;

    // Shrunk by so many pixels, unless it is a plain rectangle.
    void fill(Canvas& canvas, const CGColor& color, double alpha, double inset) const;
    // Inside the bounds.
    void strokeInside(Canvas& canvas, const CGColor& color, double width, double alpha) const;
    void fillGradient(Canvas& canvas, const CAGradientLayer& gradient, double alpha, double inset) const;
    // What of the rows' pixels lies inside the outline, shrunk by so many pixels.
    void drawInside(Canvas& canvas, PixelRows& rows, double inset) const;
    // The outline, shrunk by so many pixels.
    Outline outline(double inset = 0) const;

    // The shape's pixels, as far as they meet `clip`, cut into those that hold a soft edge and those that the shape
    // covers.
    struct Patch {
        PixelRect pixels;
        bool isSoft = false;
    };
    std::vector<Patch> patches(const PixelRect& clip) const { return patches(clip, m_radius); }

private:
    struct Soft;
    Soft soft(const PixelRect& patch, const PixelRect& clip, double inset, double frame) const;
    // Corners are so large.
    std::vector<Patch> patches(const PixelRect& clip, double corner) const;

    CGAffineTransform m_toPixels;
    CGAffineTransform m_snappedToPixels;
    CGRect m_bounds;
    PixelRect m_extent;
    bool m_upright = true;
    double m_left = 0;
    double m_top = 0;
    double m_right = 0;
    double m_bottom = 0;
    double m_radius = 0;
    double m_pixelsPerPoint = 1;
};

} // namespace seat
