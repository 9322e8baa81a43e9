// Pointers and a mouse on the window, by the window system's own test devices.

#include "desktop/window/SceneWindow.h"
#include "kit/uikit/UITouch.h"
#include "kit/uikit/WindowScene.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIScrollView.h"

#include <QGuiApplication>
#include <QPointingDevice>
#include <QTest>
#include <gtest/gtest.h>

namespace {

// Says what it hears of touches, with where the touch is.
class ListeningView : public UIView {
    NS_CLASS(ListeningView)
public:
    std::shared_ptr<ListeningView> initWithFrame(CGRect frame) {
        return UIView::initWithFrame(frame) ? self(this) : nullptr;
    }
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent&) override { note("down", touches); }
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent&) override { note("moved", touches); }
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent&) override { note("up", touches); }
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent&) override { note("cancelled", touches); }
    std::string heard;

private:
    void note(const char* what, const UITouchList& touches) {
        for (const auto& touch : touches) {
            const CGPoint at = touch->locationInView(this);
            heard += std::string(what) + ' ' + std::to_string(static_cast<int>(at.x)) + ',' +
                     std::to_string(static_cast<int>(at.y)) + "; ";
        }
    }
};
NS_CLASS_IMPLEMENTATION(ListeningView, UIView)

class Pointers : public ::testing::Test {
protected:
    Pointers() {
        view = ListeningView::alloc()->initWithFrame({{0, 0}, {300, 300}});
        scene.window()->addSubview(view);
        shown.setScene(scene);
        window = QGuiApplication::allWindows().value(0);
    }

    // One for the process: the toolkit keeps it.
    static QPointingDevice& screen() {
        static auto* const device = QTest::createTouchDevice();
        return *device;
    }

    std::shared_ptr<ListeningView> view;
    seat::WindowScene scene{{375, 667}, 2};
    seat::SceneWindow shown{{.scale = 2}};
    QWindow* window = nullptr;
};

} // namespace

TEST_F(Pointers, AFingerIsATouchFromItsPressToItsRelease) {
    ASSERT_TRUE(window);
    QTest::touchEvent(window, &screen()).press(0, QPoint(40, 60));
    QTest::touchEvent(window, &screen()).move(0, QPoint(60, 100));
    QTest::touchEvent(window, &screen()).release(0, QPoint(60, 100));
    QCoreApplication::processEvents();

    // Pixels of the screen are half points here.
    EXPECT_EQ(view->heard, "down 20,30; moved 30,50; up 30,50; ");
}

TEST_F(Pointers, WhatTheWindowSystemTakesBackIsCancelled) {
    ASSERT_TRUE(window);
    QTest::touchEvent(window, &screen()).press(0, QPoint(40, 60));
    QTouchEvent taken(QEvent::TouchCancel, &screen());
    QCoreApplication::sendEvent(window, &taken);

    EXPECT_EQ(view->heard, "down 20,30; cancelled 20,30; ");
    QTest::touchEvent(window, &screen()).release(0, QPoint(40, 60));
}

TEST_F(Pointers, AFingerIsNoMouseAsWell) {
    ASSERT_TRUE(window);
    QTest::touchEvent(window, &screen()).press(0, QPoint(10, 10));
    QTest::touchEvent(window, &screen()).release(0, QPoint(10, 10));
    QCoreApplication::processEvents();

    EXPECT_EQ(view->heard, "down 5,5; up 5,5; ");
}

TEST_F(Pointers, ADragScrolls) {
    ASSERT_TRUE(window);
    const auto scroll = UIScrollView::alloc()->initWithFrame({{0, 0}, {375, 300}});
    scroll->setContentSize({375, 2000});
    scene.window()->addSubview(scroll);

    QTest::touchEvent(window, &screen()).press(0, QPoint(100, 500));
    for (int y = 500; y >= 200; y -= 20) QTest::touchEvent(window, &screen()).move(0, QPoint(100, y));
    const double offset = scroll->contentOffset().y;
    QTest::touchEvent(window, &screen()).release(0, QPoint(100, 200));

    EXPECT_GT(offset, 100);
}

TEST_F(Pointers, TheMousesBackButtonGoesBack) {
    ASSERT_TRUE(window);
    const auto first = UIViewController::alloc()->init();
    const auto navigation = UINavigationController::alloc()->initWithRootViewController(first);
    scene.window()->setRootViewController(navigation);
    const auto second = UIViewController::alloc()->init();
    navigation->pushViewController_animated(second, false);
    scene.prepareFrame();
    ASSERT_EQ(navigation->topViewController(), second);

    QTest::mouseClick(window, Qt::BackButton, Qt::NoModifier, QPoint(100, 100));

    EXPECT_EQ(navigation->topViewController(), first);
}
