#pragma once

#include "platform/uikit/UIPanGestureRecognizer.h"

// A switch's own pan: only across, since up and down are the table's.
class UISwitchPanGestureRecognizer final : public UIPanGestureRecognizer {
    NS_CLASS(UISwitchPanGestureRecognizer)
public:
    std::shared_ptr<UISwitchPanGestureRecognizer> initWithTarget_action(const std::shared_ptr<NSObject>& target,
                                                                        SEL action);

protected:
    bool shouldBegin() const override;
};
