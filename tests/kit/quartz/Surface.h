#pragma once

// Pixels to draw into and to look at.

#include "kit/quartz/LayerHost.h"
#include "kit/quartz/LayerInternals.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/layer_renderer.h"
#include "kit/quartz/pixels.h"
#include "kit/quartz/screen.h"
#include "kit/seat.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIImage.h"

#include <cstdint>
#include <vector>

namespace test {

inline CGColorRef rgb(double red, double green, double blue, double alpha = 1) {
    return std::make_shared<CGColor>(CGColor{red, green, blue, alpha});
}

inline constexpr std::uint32_t white = 0xffffffff;
inline constexpr std::uint32_t black = 0xff000000;
inline constexpr std::uint32_t red = 0xffff0000;
inline constexpr std::uint32_t green = 0xff00ff00;
inline constexpr std::uint32_t blue = 0xff0000ff;

inline int channel(std::uint32_t pixel, int shift) { return static_cast<int>((pixel >> shift) & 255); }
inline int alphaOf(std::uint32_t pixel) { return channel(pixel, 24); }
inline int redOf(std::uint32_t pixel) { return channel(pixel, 16); }
inline int greenOf(std::uint32_t pixel) { return channel(pixel, 8); }
inline int blueOf(std::uint32_t pixel) { return channel(pixel, 0); }

struct Surface {
    Surface(int wide, int high, std::uint32_t fill = white)
        : width(wide), height(high), pixels(static_cast<std::size_t>(wide) * static_cast<std::size_t>(high), fill) {}

    std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    seat::PixelTarget target() { return {pixels.data(), width, height, std::ptrdiff_t{4} * width}; }
    void render(CALayer& root, double scale) { render(root, scale, {CGRectMake(0, 0, width / scale, height / scale)}); }
    void render(CALayer& root, double scale, const std::vector<CGRect>& damage) {
        seat::renderLayerTree(root, target(), scale, damage);
    }
    int count(std::uint32_t pixel) const {
        int result = 0;
        for (const std::uint32_t p : pixels) result += p == pixel;
        return result;
    }

    int width;
    int height;
    std::vector<std::uint32_t> pixels;
};

// The main screen, for the length of a test.
class ScreenScale {
public:
    explicit ScreenScale(double scale) { seat::setMainScreen({375, 667}, scale); }
    ~ScreenScale() { seat::setMainScreen({375, 667}, 1); }
    ScreenScale(const ScreenScale&) = delete;
    ScreenScale& operator=(const ScreenScale&) = delete;
};

inline std::shared_ptr<CALayer> layerWithFrame(CGRect frame, CGColorRef background = nullptr) {
    const auto layer = CALayer::layer();
    layer->setFrame(frame);
    layer->setBackgroundColor(std::move(background));
    return layer;
}

// Notes what it is told.
class RecordingHost : public seat::LayerHost {
public:
    void layerNeedsRepaint(CGRect rect) override { repaints.push_back(rect); }
    void animationsStarted() override { ++starts; }

    CGRect united() const {
        CGRect result = CGRectNull;
        for (const CGRect& rect : repaints) result = CGRectUnion(result, rect);
        return result;
    }

    std::vector<CGRect> repaints;
    int starts = 0;
};

// A tree that is shown: root of 100 by 100 points.
struct HostedRoot {
    HostedRoot() { LayerInternals::setHost(*layer, &host); }
    ~HostedRoot() { LayerInternals::setHost(*layer, nullptr); }
    HostedRoot(const HostedRoot&) = delete;
    HostedRoot& operator=(const HostedRoot&) = delete;

    std::shared_ptr<CALayer> add(CGRect frame, CGColorRef background = nullptr) {
        const auto added = layerWithFrame(frame, std::move(background));
        layer->addSublayer(added);
        host.repaints.clear();
        return added;
    }

    RecordingHost host;
    std::shared_ptr<CALayer> layer = layerWithFrame(CGRectMake(0, 0, 100, 100));
};

} // namespace test

inline std::ostream& operator<<(std::ostream& out, CGRect r) {
    return out << '(' << r.origin.x << ", " << r.origin.y << ", " << r.size.width << ", " << r.size.height << ')';
}
inline std::ostream& operator<<(std::ostream& out, CGPoint p) { return out << '(' << p.x << ", " << p.y << ')'; }
