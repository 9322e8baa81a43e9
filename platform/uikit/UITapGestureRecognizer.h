#pragma once

#include "platform/uikit/UIGestureRecognizer.h"

// One finger down and up near the same place. In Ended it still has its touch.
class UITapGestureRecognizer : public UIGestureRecognizer {
    NS_CLASS(UITapGestureRecognizer)
public:
    std::shared_ptr<UITapGestureRecognizer> initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action);
};
