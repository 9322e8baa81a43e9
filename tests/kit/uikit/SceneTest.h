#pragma once

#include "kit/dispatch/ManualClock.h"
#include "kit/uikit/Touches.h"
#include "kit/uikit/WindowScene.h"
#include "platform/runtime/method.h"
#include "platform/uikit.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

// A window of 320x480 points on a held clock, and a log in which events leave their names in order.
class SceneTest : public ::testing::Test {
protected:
    template <class T = UIView> std::shared_ptr<T> add(CGRect frame, const std::shared_ptr<UIView>& parent = nullptr) {
        const auto view = T::alloc()->initWithFrame(frame);
        (parent ? parent : std::static_pointer_cast<UIView>(scene.window()))->addSubview(view);
        return view;
    }

    seat::ManualClock clock;
    seat::WindowScene scene{{320, 480}, 1};
    seat::Touches touches{scene, &clock};
};

// Hears of gestures and control events, and writes each down as one word.
class Recorder : public NSObject {
    NS_CLASS(Recorder)
public:
    std::shared_ptr<Recorder> init();

    void gesture(const std::shared_ptr<UIGestureRecognizer>& recognizer);
    void valueChanged(const std::shared_ptr<UIControl>& control);
    void editingEnded(const std::shared_ptr<UIControl>& control);
    void touchDown(const std::shared_ptr<UIControl>& control);
    void touchUpInside(const std::shared_ptr<UIControl>& control);
    void touchCancelled(const std::shared_ptr<UIControl>& control);

    void write(const std::string& word);
    // The words since the last call, with a space between them.
    std::string take();

    // What the next event does, once.
    std::function<void()> then;
    std::string name;

private:
    std::string m_log;
};

// Writes its touches into a recorder: "name:began(x,y)".
class TouchedView : public UIView {
    NS_CLASS(TouchedView)
public:
    std::shared_ptr<TouchedView> initWithFrame(CGRect frame);
    std::shared_ptr<Recorder> recorder;
    std::string name;

    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;

private:
    void write(const char* what, const UITouchList& touches);
};

// "x,y" without needless digits.
std::string written(CGPoint point);
std::string written(CGRect rect);
