#include "colourpicker/UIImage_CoreGraphics.h"

std::shared_ptr<UIImage> zk_imageWithSize_renderer(CGSize size, const ZKImageRenderer& renderer) {
    return zk_imageWithSize_opaque_renderer(size, /*opaque*/ false, renderer);
}

std::shared_ptr<UIImage> zk_imageWithSize_opaque_renderer(CGSize size, bool opaque, const ZKImageRenderer& renderer) {
    UIGraphicsBeginImageContextWithOptions(size, opaque, /*scale: the main screen's*/ 0.0);
    renderer(UIGraphicsGetCurrentContext(), {{0, 0}, size});
    auto image = UIGraphicsGetImageFromCurrentImageContext();
    UIGraphicsEndImageContext();
    return image;
}
