#include "kit/uikit/snapshot.h"

#include "kit/quartz/pixels.h"
#include "kit/uikit/WindowScene.h"

#include <cmath>

namespace seat {

CGImageRef snapshot(WindowScene& scene) {
    scene.prepareFrame();
    const auto image = std::make_shared<CGImage>();
    image->width = static_cast<std::size_t>(std::lround(scene.size().width * scene.scale()));
    image->height = static_cast<std::size_t>(std::lround(scene.size().height * scene.scale()));
    image->pixels.resize(image->width * image->height);
    const CGRect all{{0, 0}, scene.size()};
    scene.paint({image->pixels.data(), static_cast<int>(image->width), static_cast<int>(image->height),
                 static_cast<std::ptrdiff_t>(image->width * sizeof(std::uint32_t))},
                {&all, 1});
    return image;
}

} // namespace seat
