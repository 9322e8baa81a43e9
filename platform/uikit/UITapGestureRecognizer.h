#pragma once

#include "platform/uikit/UIGestureRecognizer.h"

// One finger down and up near the same place. In Ended it still has its touch.
class UITapGestureRecognizer : public UIGestureRecognizer {
    NS_CLASS(UITapGestureRecognizer)
public:
    std::shared_ptr<UITapGestureRecognizer> initWithTarget_action(const std::shared_ptr<NSObject>& target, SEL action);

protected:
    UITapGestureRecognizer() = default;
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;

private:
    CGPoint m_first; // where the finger came down, in the window
};
