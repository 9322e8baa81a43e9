#pragma once

#include "kit/controllers/UINavigationBar.h"
#include "kit/dispatch/ManualClock.h"
#include "kit/uikit/PanReader.h"
#include "kit/uikit/Touches.h"
#include "kit/uikit/UISwitch.h"
#include "kit/uikit/UITouch.h"
#include "kit/uikit/UIWindow.h"
#include "kit/uikit/WindowScene.h"
#include "platform/quartz/CAGradientLayer.h"
#include "platform/quartz/CALayer.h"
#include "platform/quartz/CATransaction.h"
#include "platform/quartz/CATransform3D.h"
#include "platform/quartz/CGAffineTransform.h"
#include "platform/quartz/CGColor.h"
#include "platform/quartz/CGContext.h"
#include "platform/quartz/CGGeometry.h"
#include "platform/quartz/CGImage.h"
#include "platform/quartz/CGPath.h"
#include "platform/runtime/method.h"
#include "platform/uikit/NSAttributedString.h"
#include "platform/uikit/NSIndexPath.h"
#include "platform/uikit/UIAlertView.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIBezierPath.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIFont.h"
#include "platform/uikit/UIGestureRecognizer.h"
#include "platform/uikit/UIImage.h"
#include "platform/uikit/UIKeyEvent.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIPanGestureRecognizer.h"
#include "platform/uikit/UIProgressHUD.h"
#include "platform/uikit/UIResponder.h"
#include "platform/uikit/UIScreen.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewCell.h"
#include "platform/uikit/UITableViewController.h"
#include "platform/uikit/UITapGestureRecognizer.h"
#include "platform/uikit/UIView.h"
#include "platform/uikit/UIViewController.h"

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
