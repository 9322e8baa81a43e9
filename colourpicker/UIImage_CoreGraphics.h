#pragma once

#include "platform/uikit/UIImage.h"

#include <functional>
#include <memory>

// Draws into the context, whose unit is one point; the rectangle begins at (0, 0) and has the size asked for, in
// points.
using ZKImageRenderer = std::function<void(CGContextRef context, CGRect rect)>;

// The picture that the renderer, which must be there, draws: of `size` points at the main screen's scale. nil when a
// picture of that size has no pixels; the renderer is called all the same. Any thread; the renderer runs on it.
std::shared_ptr<UIImage> zk_imageWithSize_renderer(CGSize size, const ZKImageRenderer& renderer);
std::shared_ptr<UIImage> zk_imageWithSize_opaque_renderer(CGSize size, bool opaque, const ZKImageRenderer& renderer);
