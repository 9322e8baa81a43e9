#include "kit/quartz/graphics_stack.h"

#include "kit/quartz/context.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/snapping.h"
#include "platform/uikit/UIImage.h"
#include "platform/uikit/UIScreen.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <optional>
#include <vector>

namespace {

constexpr double longestEdge = 16384; // pixels

// An image context has a canvas of its own.
struct ImageContext {
    ImageContext(std::shared_ptr<CGImage> image, double imageScale)
        : canvas(std::move(image)), context(canvas, CGAffineTransformMakeScale(imageScale, imageScale)),
          scale(imageScale) {}

    seat::Canvas canvas;
    CGContext context;
    double scale;
};

struct Entry {
    CGContextRef context = nullptr;
    std::unique_ptr<ImageContext> image; // nullptr: somebody else's context
};

thread_local std::vector<Entry> contexts;

// An image without pixels when the size cannot have any.
std::shared_ptr<CGImage> emptyImage(CGSize size, double scale, bool opaque) {
    auto image = std::make_shared<CGImage>();
    const double width = seat::pixelEdgeAbove(size.width * scale);
    const double height = seat::pixelEdgeAbove(size.height * scale);
    if (!(width >= 1 && width <= longestEdge && height >= 1 && height <= longestEdge)) return image;
    try {
        // Made of zeros, which is much faster than any other value.
        image->pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        if (opaque) std::fill(image->pixels.begin(), image->pixels.end(), 0xff000000U);
    } catch (const std::bad_alloc&) {
        return image;
    }
    image->width = static_cast<std::size_t>(width);
    image->height = static_cast<std::size_t>(height);
    return image;
}

} // namespace

seat::CurrentContext::CurrentContext(CGContextRef context) { contexts.push_back({context, nullptr}); }
seat::CurrentContext::~CurrentContext() { contexts.pop_back(); }

void UIGraphicsBeginImageContextWithOptions(CGSize size, bool opaque, double scale) {
    if (!(scale > 0) || !std::isfinite(scale)) scale = UIScreen::mainScreen()->scale();
    auto image = std::make_unique<ImageContext>(emptyImage(size, scale, opaque), scale);
    const CGContextRef context = &image->context;
    contexts.push_back({context, std::move(image)});
}

CGContextRef UIGraphicsGetCurrentContext() { return contexts.empty() ? nullptr : contexts.back().context; }

std::shared_ptr<UIImage> UIGraphicsGetImageFromCurrentImageContext() {
    if (contexts.empty() || !contexts.back().image) return nullptr;
    ImageContext& context = *contexts.back().image;
    if (context.canvas.extent().isEmpty()) return nullptr;
    return UIImage::imageWithCGImage_scale(context.canvas.takeImage(), context.scale);
}

void UIGraphicsEndImageContext() {
    if (!contexts.empty() && contexts.back().image) contexts.pop_back();
}
