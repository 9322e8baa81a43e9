#pragma once

#include "platform/quartz/CGGeometry.h"
#include "platform/runtime/NSObject.h"

// The screen that the window is on, as it was told last. Any thread.
class UIScreen final : public NSObject {
    NS_CLASS(UIScreen)

    // Never nil.
    static std::shared_ptr<UIScreen> mainScreen();

    // Device pixels a point; finite and above 0, not always whole. It may change when the window goes to another
    // screen.
    double scale() const;
    // Points, from (0, 0).
    CGRect bounds() const;
};
