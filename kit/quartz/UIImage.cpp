#include "platform/uikit/UIImage.h"

#include <cmath>

NS_CLASS_IMPLEMENTATION(UIImage, NSObject)

std::shared_ptr<UIImage> UIImage::imageWithCGImage_scale(CGImageRef image, double scale) {
    if (!image) return nullptr;
    const auto result = alloc();
    result->m_image = std::move(image);
    result->m_scale = scale > 0 && std::isfinite(scale) ? scale : 1;
    return result;
}

CGSize UIImage::size() const {
    if (!m_image) return {};
    return {static_cast<double>(m_image->width) / m_scale, static_cast<double>(m_image->height) / m_scale};
}
