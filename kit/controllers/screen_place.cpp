#include "kit/controllers/screen_place.h"

#include "kit/controllers/ControllerInternals.h"
#include "kit/uikit/appearance.h"

#include <algorithm>
#include <cmath>

namespace seat {

namespace {

constexpr double leastWidth = 320;
constexpr double mostWidthOfHeight = 2.0 / 3; // the widest phone's

} // namespace

std::shared_ptr<UIScrollView> screenCarrier(UIViewController& screen) {
    const auto& view = screen.view();
    if (auto scroll = std::dynamic_pointer_cast<UIScrollView>(view)) return scroll;
    return view->subviews().empty() ? nullptr : std::dynamic_pointer_cast<UIScrollView>(view->subviews().front());
}

void placeScreen(UIViewController& screen, CGSize area, double barHeight) {
    const auto view = screen.view();
    if (screenCarrier(screen) || area.width <= 0 || area.height <= barHeight) {
        view->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
        view->setFrame({{0, 0}, area});
        return;
    }
    CGSize& size = ControllerInternals::placedSize(screen);
    if (size == CGSize{})
        size = {std::min(area.width, std::max(leastWidth, std::floor(area.height * mostWidthOfHeight))), area.height};
    const double zoom = std::min(area.width / size.width, (area.height - barHeight) / (size.height - barHeight));
    const double left = appearance::roundToPixel((area.width - size.width * zoom) / 2);
    view->setAutoresizingMask(0);
    view->setTransform(CGAffineTransformMakeScale(zoom, zoom));
    view->setBounds({view->bounds().origin, size});
    // What the bar covers of it stays covered.
    view->setCenter({left + size.width * zoom / 2, barHeight + (size.height / 2 - barHeight) * zoom});
}

} // namespace seat
