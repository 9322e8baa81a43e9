#include "platform/uikit/UIScreen.h"

#include "kit/quartz/geometry.h"
#include "kit/quartz/screen.h"

#include <atomic>
#include <cmath>

NS_CLASS_IMPLEMENTATION(UIScreen, NSObject)

namespace {

// Each of its own: nobody needs the three to be of one moment.
std::atomic<double> screenScale = 1;
std::atomic<double> screenWidth = 375;
std::atomic<double> screenHeight = 667;

} // namespace

void seat::setMainScreen(CGSize points, double scale) {
    screenScale = scale > 0 && std::isfinite(scale) ? scale : 1;
    screenWidth = points.width;
    screenHeight = points.height;
}

std::shared_ptr<UIScreen> UIScreen::mainScreen() {
    static const auto* const screen = new auto(alloc()); // never destroyed
    return *screen;
}

double UIScreen::scale() const { return screenScale; }
CGRect UIScreen::bounds() const { return CGRectMake(0, 0, screenWidth, screenHeight); }
