#pragma once

#include "platform/quartz/CGGeometry.h"
#include "platform/runtime/NSObject.h"

class UIScreen final : public NSObject {
    NS_CLASS(UIScreen)

    static std::shared_ptr<UIScreen> mainScreen();

    // Device pixels a point; any thread.
    double scale() const;
    CGRect bounds() const;
};
