#pragma once

// Pixels to draw into, in device pixels: rectangles by plain loops, everything else by the seat's painter, which is
// made only when it is needed. A canvas belongs to the thread that draws in it.

#include "kit/quartz/Clip.h"
#include "kit/quartz/outline.h"
#include "kit/quartz/pixels.h"
#include "kit/seat.h"
#include "platform/quartz/CGAffineTransform.h"
#include "platform/quartz/CGImage.h"
#include "platform/quartz/CGPath.h"

#include <memory>
#include <span>

namespace seat {

class Canvas {
public:
    explicit Canvas(const PixelTarget& target);
    // Draws into the image's pixels; the image may be taken at any time, what is drawn later does not reach it.
    explicit Canvas(std::shared_ptr<CGImage> image);
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    PixelRect extent() const { return {0, 0, m_target.width, m_target.height}; }
    const Clip& clip() const { return m_clip; }
    void setClip(Clip clip);

    void fillPixels(const PixelRect& rect, const CGColor& color, double alpha = 1);
    // Edges between pixels are anti-aliased.
    void fillRect(double left, double top, double right, double bottom, const CGColor& color, double alpha = 1);
    // Runs that stand at (dx, dy). A clipping shape does not count here.
    void fillCovered(std::span<const CoveredRun> runs, int dx, int dy, const CGColor& color, double alpha);
    void drawCovered(std::span<const CoveredRun> runs, int dx, int dy, PixelRows& source);
    void drawRows(const PixelRect& rect, PixelRows& source);
    void drawPixels(const std::uint32_t* pixels, int width, int height, int left, int top, double alpha);
    // `toPixels` places the unit square of the image.
    void drawImage(const CGImage& image, const CGAffineTransform& toPixels, double alpha);

    // The seat's, cut by the clip. nullptr when there are no pixels.
    Painter* painter();

    // Canvas over an image only: what is drawn so far.
    CGImageRef takeImage();

private:
    bool beginWriting();

    PixelTarget m_target;
    std::shared_ptr<CGImage> m_image; // when the pixels are an image's
    bool m_imageIsTaken = false;
    Clip m_clip;
    bool m_clipIsSet = false; // in the painter
    std::unique_ptr<Painter> m_painter;
};

} // namespace seat
