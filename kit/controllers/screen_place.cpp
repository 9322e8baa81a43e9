#include "kit/controllers/screen_place.h"

#include "kit/controllers/ControllerInternals.h"
#include "kit/quartz/geometry.h"
#include "kit/uikit/appearance.h"

#include <algorithm>
#include <cmath>

namespace seat {

namespace {

constexpr double phoneWidth = 384;
constexpr double leastHeightOfWidth = 1.5; // the shapes of phones, from the oldest to today's
constexpr double mostHeightOfWidth = 2;
constexpr double fingerRoom = 24; // at each side of what is scrolled
constexpr double widthStep = 16;  // of phones' widths, which screens of equal parts fill without a rest
constexpr double roundingError = 1e-6;

CGSize phoneShape(CGSize area) {
    double width = std::min(area.width, phoneWidth);
    if (area.height < width * leastHeightOfWidth) {
        const double room = area.width - 2 * fingerRoom;
        width = std::min(phoneWidth, std::max(std::floor((room + roundingError) / widthStep), 1.0) * widthStep);
    }
    return {width,
            std::clamp(area.height, std::ceil(width * leastHeightOfWidth), std::floor(width * mostHeightOfWidth))};
}

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
    auto& [frame, size] = ControllerInternals::place(screen);
    if (!frame) {
        frame = UIScrollView::alloc()->initWithFrame({{0, 0}, area});
        size = phoneShape(area);
        view->setAutoresizingMask(0);
    }
    const bool isScrolled = area.height < size.height;
    const double zoom = std::min(1.0, (area.width - (isScrolled ? 2 * fingerRoom : 0)) / size.width);
    const double left = appearance::roundToPixel((area.width - size.width * zoom) / 2);
    // The content begins below the bar; what the bar covers of the screen stays covered.
    frame->setContentInset({barHeight, 0, 0, 0});
    frame->setFrame({{0, 0}, area});
    frame->setContentSize({area.width, (size.height - barHeight) * zoom});
    view->setTransform(CGAffineTransformMakeScale(zoom, zoom));
    view->setBounds({view->bounds().origin, size});
    view->setCenter({left + size.width * zoom / 2, (size.height / 2 - barHeight) * zoom});
    if (view->superview() != frame) frame->addSubview(view);
}

std::shared_ptr<UIView> placedView(UIViewController& screen) {
    const auto& frame = ControllerInternals::place(screen).frame;
    return frame ? frame : screen.view();
}

} // namespace seat
