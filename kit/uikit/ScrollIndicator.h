#pragma once

#include "kit/uikit/ScrollMotion.h"
#include "platform/quartz/CALayer.h"

namespace seat {

// The thin bar at the right edge that says where in the content one is: there while the content moves, then it fades.
class ScrollIndicator {
public:
    // Puts the bar where it belongs and in front of all else; `bounds` are the scroll view's.
    void show(CALayer& container, CGRect bounds, ScrollRange range);
    void fade();

private:
    std::shared_ptr<CALayer> m_bar; // nil until first shown
};

} // namespace seat
