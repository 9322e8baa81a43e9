#include "kit/dispatch/run_loop_sources.h"
#include "platform/uikit/UIProgressHUD.h"
#include "tests/kit/uikit/SceneTest.h"

namespace {

class Progress : public SceneTest {
protected:
    std::shared_ptr<UIView> page = add({{0, 0}, {320, 480}});
    std::shared_ptr<UIProgressHUD> hud = UIProgressHUD::alloc()->init();
};

TEST_F(Progress, IsHiddenToBeginWith) {
    EXPECT_FALSE(hud->isShown());
    hud->hide();
    EXPECT_FALSE(hud->isShown());
}

TEST_F(Progress, CoversTheViewInFrontOfAllItHolds) {
    add({{0, 0}, {10, 10}}, page);
    hud->showInView(page);
    add({{0, 0}, {10, 10}}, page);
    hud->showInView(page);

    EXPECT_TRUE(hud->isShown());
    EXPECT_EQ(page->subviews().back(), hud);
    EXPECT_EQ(written(hud->frame()), "0,0 320x480");
}

TEST_F(Progress, TextCanBeSetBeforeAndAfter) {
    hud->setText("before");
    hud->showInView(page);
    EXPECT_EQ(hud->text(), "before");

    hud->setText("Searching...\nPress both the Share and PS buttons until your PS4 controller blinks.");
    scene.prepareFrame();

    const CGRect panel = hud->subviews().front()->frame();
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

TEST_F(Progress, CoveredViewTakesNoTouches) {
    const auto toggle = add<UISwitch>({{10, 10}, {51, 31}}, page);
    const auto beside = add<UISwitch>({{200, 10}, {51, 31}});
    hud->showInView(page);

    touches.tap({30, 25});
    touches.tap({220, 25});

    EXPECT_FALSE(toggle->isOn());
    EXPECT_TRUE(beside->isOn());
}

TEST_F(Progress, FollowsTheViewsSize) {
    hud->showInView(page);
    page->setFrame({{0, 0}, {1024, 768}});
    scene.prepareFrame();

    EXPECT_EQ(written(hud->frame()), "0,0 1024x768");
    EXPECT_NEAR(CGRectGetMidX(hud->subviews().front()->frame()), 512, 0.5);
}

TEST_F(Progress, SpinnerTurnsOnlyWhileItIsSeen) {
    EXPECT_FALSE(seat::nextTimerDeadline());
    hud->showInView(page);
    const auto spinner = hud->subviews().front()->subviews().front();
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
