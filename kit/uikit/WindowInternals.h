#pragma once

#include "kit/uikit/TouchDispatcher.h"
#include "kit/uikit/UIWindow.h"

#include <functional>
#include <set>

namespace seat {
class FrameSteps;
}

// What a window keeps; the kit's own classes reach it through WindowInternals.
struct UIWindow::State {
    explicit State(UIWindow& window) : touches(window) {}

    TouchDispatcher touches;
    std::shared_ptr<UIViewController> rootViewController;
    std::vector<std::weak_ptr<UIView>> focused; // the last one has the focus now, or when it is back in the window
    bool focusIsShown = false;                  // the focus came by the keyboard
    long activationKey = 0;                     // the key that went down and will activate when it is released; 0: none
    std::weak_ptr<UIView> activated;            // what had the focus then
    std::set<long> takenKeys;                   // went down while a row waited for them, and are not up again
    std::function<void()> requestFrame;         // the scene's; empty without one
    seat::FrameSteps* frameSteps = nullptr;     // the scene's, non-owning; nil without one
};

struct UIWindow::Internals {
    static UIWindow::State& state(UIWindow& window) { return *window.m_window; }
    static const UIWindow::State& state(const UIWindow& window) { return *window.m_window; }

    // Something has changed that the next frame takes up.
    static void requestFrame(const UIWindow& window);
    // The view, with all below it, is about to leave the window's tree.
    static void subtreeLeaves(UIWindow& window, UIView& subtree);
    // Moves the focus by the keyboard: its ring shows.
    static void focusByKeyboard(UIWindow& window, const std::shared_ptr<UIView>& view);
    // The ring goes, the focus stays: a finger is at work.
    static void hideFocus(UIWindow& window);
    // Neither the view nor one in it has the focus any more, or gets it back.
    static void forgetFocus(UIWindow& window, const UIView& subtree);
};
using WindowInternals = UIWindow::Internals;
