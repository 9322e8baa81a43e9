#pragma once

#include "kit/uikit/GestureReader.h"

class TouchDispatcher;

// What a recogniser keeps; the touches' way reaches it through GestureInternals.
struct UIGestureRecognizer::State {
    std::weak_ptr<NSObject> target;
    SEL action;
    std::weak_ptr<UIView> view; // which holds this recogniser
    UIGestureRecognizerState state = UIGestureRecognizerStatePossible;
    bool enabled = true;
    UITouchList touches;                   // which the gesture follows
    TouchDispatcher* dispatcher = nullptr; // of the touches that reach it now; non-owning, cleared when they are over
    std::unique_ptr<seat::GestureReader> reader; // nullptr: reads nothing
};

struct UIGestureRecognizer::Internals {
    static UIGestureRecognizer::State& state(UIGestureRecognizer& recognizer) { return *recognizer.m_gesture; }
    static const UIGestureRecognizer::State& state(const UIGestureRecognizer& recognizer) {
        return *recognizer.m_gesture;
    }

    static void setReader(UIGestureRecognizer& recognizer, std::unique_ptr<seat::GestureReader> reader);
    static void setView(UIGestureRecognizer& recognizer, const std::shared_ptr<UIView>& view);
    static void setDispatcher(UIGestureRecognizer& recognizer, TouchDispatcher* dispatcher);

    // Tells the targets of every state but Possible and Failed. A gesture that another one forestalled fails instead
    // of beginning.
    static void setState(UIGestureRecognizer& recognizer, UIGestureRecognizerState state);
    static void follow(UIGestureRecognizer& recognizer, const std::shared_ptr<UITouch>& touch);
    static void letGoOfTouches(UIGestureRecognizer& recognizer);

    // Hands the changed touches on by their phase; a recogniser that is through with them hears nothing.
    static void deliver(UIGestureRecognizer& recognizer, const UITouchList& touches, UIEvent& event);
    // Fails what is still possible.
    static void fail(UIGestureRecognizer& recognizer);
    // Fails what is still possible and cancels what has begun.
    static void cancel(UIGestureRecognizer& recognizer);
    static void touchesAreOver(UIGestureRecognizer& recognizer);
};
using GestureInternals = UIGestureRecognizer::Internals;
