#include "kit/alerts/progress_canceller.h"
#include "kit/dispatch/run_loop_sources.h"
#include "kit/uikit/hid_keys.h"
#include "platform/uikit/UIProgressHUD.h"
#include "tests/kit/uikit/SceneTest.h"

namespace {

// A screen whose view holds switches and a panel.
class Progress : public SceneTest {
protected:
    Progress() {
        UIApplication::sharedApplication()->setKeyWindow(scene.window());
        const auto screen = UIViewController::alloc()->init();
        screen->setView(page);
        scene.window()->setRootViewController(screen);
    }
    ~Progress() override { seat::setProgressCanceller({}); }

    CGPoint cancelButton() const { return {160, CGRectGetMaxY(hud->frame()) - 20}; }

    std::shared_ptr<UIView> page = UIView::alloc()->initWithFrame({{0, 0}, {320, 480}});
    std::shared_ptr<UIProgressHUD> hud = UIProgressHUD::alloc()->init();
};

TEST_F(Progress, IsHiddenToBeginWith) {
    EXPECT_FALSE(hud->isShown());
    hud->hide();
    EXPECT_FALSE(hud->isShown());
}

TEST_F(Progress, StandsInTheMiddleInFrontOfAllTheViewHolds) {
    add({{0, 0}, {10, 10}}, page);
    hud->showInView(page);
    add({{0, 0}, {10, 10}}, page);
    hud->showInView(page);

    EXPECT_TRUE(hud->isShown());
    EXPECT_EQ(page->subviews().back(), hud);
    EXPECT_EQ(written(hud->frame()), "90,198 140x84");
}

TEST_F(Progress, TextCanBeSetBeforeAndAfter) {
    hud->setText("before");
    hud->showInView(page);
    EXPECT_EQ(hud->text(), "before");

    hud->setText("Searching...\nPress both the Share and PS buttons until your PS4 controller blinks.");
    scene.prepareFrame();

    const CGRect panel = hud->frame();
    EXPECT_NEAR(CGRectGetMidX(panel), 160, 0.5);
    EXPECT_NEAR(CGRectGetMidY(panel), 240, 0.5);
    EXPECT_LE(panel.size.width, 300);
}

TEST_F(Progress, HidingTwiceIsHidingOnce) {
    hud->showInView(page);
    hud->hide();
    hud->hide();

    EXPECT_FALSE(hud->isShown());
}

TEST_F(Progress, ShownInAnotherViewItMovesThere) {
    const auto other = add({{0, 0}, {100, 100}});
    hud->showInView(page);

    hud->showInView(other);

    EXPECT_EQ(hud->superview(), other);
    EXPECT_TRUE(page->subviews().empty());
}

TEST_F(Progress, NilViewShowsNothing) {
    hud->showInView(nullptr);
    EXPECT_FALSE(hud->isShown());
}

TEST_F(Progress, OnlyThePanelTakesTheTouches) {
    const auto below = add<UISwitch>({{130, 225}, {51, 31}}, page);
    const auto beside = add<UISwitch>({{10, 225}, {51, 31}}, page);
    hud->showInView(page);

    touches.tap({155, 240});
    touches.tap({35, 240});

    EXPECT_FALSE(below->isOn());
    EXPECT_TRUE(beside->isOn());
}

TEST_F(Progress, FollowsTheViewsSize) {
    hud->showInView(page);
    page->setFrame({{0, 0}, {1024, 768}});
    scene.prepareFrame();
    EXPECT_EQ(written(hud->frame()), "442,342 140x84");

    page->setFrame({{0, 0}, {320, 480}});
    scene.prepareFrame();
    EXPECT_EQ(written(hud->frame()), "90,198 140x84");
}

TEST_F(Progress, WhatCanBeCancelledHasAButtonForIt) {
    int cancelled = 0;
    seat::setProgressCanceller([&] { ++cancelled; });
    hud->showInView(page);
    EXPECT_EQ(written(hud->frame()), "90,176 140x128");

    touches.tap(cancelButton());
    EXPECT_EQ(cancelled, 1);

    touches.tap({160, 200});
    EXPECT_EQ(cancelled, 1) << "beside the button";
}

TEST_F(Progress, WithoutACancellerThereIsNoButtonAndNothingToCancel) {
    hud->showInView(page);
    EXPECT_EQ(written(hud->frame()), "90,198 140x84");

    touches.tap(cancelButton());
    touches.key(seat::hid::escape);

    EXPECT_TRUE(hud->isShown());
}

TEST_F(Progress, AnEscapeCancelsWhereverTheFocusIs) {
    int cancelled = 0;
    seat::setProgressCanceller([&] { ++cancelled; });
    const auto toggle = add<UISwitch>({{10, 10}, {51, 31}}, page);
    hud->showInView(page);

    touches.key(seat::hid::escape);
    EXPECT_EQ(cancelled, 1);

    touches.key(seat::hid::tab);
    ASSERT_EQ(scene.window()->focusedView(), toggle);
    touches.key(seat::hid::escape);
    EXPECT_EQ(cancelled, 2);

    hud->hide();
    touches.key(seat::hid::escape);
    EXPECT_EQ(cancelled, 2) << "there is no panel";
}

TEST_F(Progress, AnEscapeOverAnAlertBeforeThePanelIsTheAlerts) {
    int cancelled = 0;
    seat::setProgressCanceller([&] { ++cancelled; });
    hud->showInView(page);
    const auto alert = UIAlertView::alloc()->initWithTitle_message_delegate_cancelButtonTitle_otherButtonTitles(
        "First", "", nullptr, "Dismiss", {});
    alert->show();
    touches.settle();

    touches.key(seat::hid::escape);
    touches.settle();
    EXPECT_FALSE(alert->isVisible());
    EXPECT_EQ(cancelled, 0);

    touches.key(seat::hid::escape);
    EXPECT_EQ(cancelled, 1);
}

TEST_F(Progress, SpinnerTurnsOnlyWhileItIsSeen) {
    EXPECT_FALSE(seat::nextTimerDeadline());
    hud->showInView(page);
    const auto spinner = hud->subviews().front();
    const auto before = spinner->transform();
    touches.wait(0.25);
    EXPECT_NE(spinner->transform(), before);
    EXPECT_TRUE(seat::nextTimerDeadline());

    hud->hide();
    EXPECT_FALSE(seat::nextTimerDeadline());
    hud->showInView(page);
    page->removeFromSuperview();

    EXPECT_FALSE(seat::nextTimerDeadline());
}

TEST_F(Progress, DyingWhileItTurnsLeavesNoTimer) {
    hud->showInView(page);
    hud->removeFromSuperview();
    hud->showInView(page);
    page->removeFromSuperview();
    scene.window()->setRootViewController(nullptr);
    page.reset();
    hud.reset();

    EXPECT_FALSE(seat::nextTimerDeadline());
}

TEST_F(Progress, AssistiveTechnologyHearsTheText) {
    hud->setText("Searching...");
    EXPECT_EQ(hud->accessibilityRole(), UIAccessibilityRole::ProgressIndicator);
    EXPECT_EQ(hud->accessibilityLabel(), "Searching...");
}

} // namespace
