#pragma once

#include "platform/uikit/UIView.h"

class UIKeyEvent;

// The root of a view tree. The host feeds it neutral events (kit/uikit) and asks it for frames.
class UIWindow final : public UIView {
    NS_CLASS(UIWindow)
public:
    struct Internals; // the seat's way in, opaque to everybody else
    ~UIWindow() override;

    std::shared_ptr<UIWindow> initWithFrame(CGRect frame);

    const std::shared_ptr<UIViewController>& rootViewController() const;
    void setRootViewController(std::shared_ptr<UIViewController> controller);

    // Neutral events from the host, in points; `time` on the clock of CACurrentMediaTime.
    void touchBegan(long identifier, CGPoint location, double time);
    void touchMoved(long identifier, CGPoint location, double time);
    void touchEnded(long identifier, CGPoint location, double time);
    void touchCancelled(long identifier, double time);
    // Wheel or touchpad: points to scroll by at a place.
    void scrolled(CGPoint location, CGPoint delta, double time);

    // The view that keys act on; nil when there is none. When it leaves the window, the one before it in the window has
    // the focus again; setting nil forgets them all.
    std::shared_ptr<UIView> focusedView() const;
    void setFocusedView(const std::shared_ptr<UIView>& view);

private:
    UIWindow();

    struct State;
    std::unique_ptr<State> m_window;
};
