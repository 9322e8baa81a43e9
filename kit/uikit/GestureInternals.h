#pragma once

#include "platform/uikit/UIGestureRecognizer.h"

class TouchDispatcher;

// What a recogniser keeps; the touches' way reaches it through GestureInternals.
struct UIGestureRecognizer::State {
    struct Target {
        std::weak_ptr<NSObject> object;
        SEL action;
    };
    std::vector<Target> targets;
    std::weak_ptr<UIView> view; // which holds this recogniser
    UIGestureRecognizerState state = UIGestureRecognizerStatePossible;
    bool enabled = true;
    UITouchList touches;
    TouchDispatcher* dispatcher = nullptr; // of the touches that reach it now; non-owning, cleared when they are over
};

struct GestureInternals {
    static UIGestureRecognizer::State& state(UIGestureRecognizer& recognizer) { return *recognizer.m_gesture; }

    static void setView(UIGestureRecognizer& recognizer, const std::shared_ptr<UIView>& view);
    static void setDispatcher(UIGestureRecognizer& recognizer, TouchDispatcher* dispatcher);
    // Hands the changed touches on by their phase; a recogniser that is through with them hears nothing.
    static void deliver(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event);
    // Fails what is still possible.
    static void fail(UIGestureRecognizer& recognizer);
    // Fails what is still possible and cancels what has begun.
    static void cancel(UIGestureRecognizer& recognizer);
    static void touchesAreOver(UIGestureRecognizer& recognizer);
};
