#include "app/FailureBanner.h"

#include "kit/uikit/AccessibilityTree.h"
#include "tests/kit/uikit/SceneTest.h"

namespace {

using app::FailureBanner;

class Banner : public SceneTest {
protected:
    Banner() {
        banner = FailureBanner::alloc()->initWithText("The daemon does not answer; its controllers stay as they are.");
    }
    void show() {
        banner->showInWindow(scene.window());
        touches.wait(0.3);
    }

    std::shared_ptr<FailureBanner> banner;
};

} // namespace

TEST_F(Banner, StandsAtTheLowerEdgeWithItsWholeText) {
    show();

    const CGRect frame = banner->frame();
    EXPECT_EQ(banner->superview(), scene.window());
    EXPECT_EQ(frame.origin.x, 12);
    EXPECT_EQ(frame.size.width, 320 - 24);
    EXPECT_EQ(CGRectGetMaxY(frame), 480 - 12);
    EXPECT_GT(frame.size.height, 2 * 14 + 2 * 16); // the text takes two lines
    EXPECT_EQ(banner->alpha(), 1);
}

TEST_F(Banner, FollowsTheWindowAndDoesNotGrowBeyondAReadableWidth) {
    show();
    scene.resize({1024, 768}, 1);
    touches.wait(0.1);

    const CGRect frame = banner->frame();
    EXPECT_EQ(frame.size.width, 520);
    EXPECT_EQ(CGRectGetMidX(frame), 512);
    EXPECT_EQ(CGRectGetMaxY(frame), 768 - 12);
}

TEST_F(Banner, GoesAwayByItself) {
    show();

    touches.wait(FailureBanner::secondsShown - 0.5);
    EXPECT_TRUE(banner->isShown());
    touches.wait(1);

    EXPECT_FALSE(banner->isShown());
    EXPECT_FALSE(banner->superview());
}

TEST_F(Banner, ShownAgainStaysForItsFullTime) {
    show();
    touches.wait(FailureBanner::secondsShown - 1);

    show();
    touches.wait(FailureBanner::secondsShown - 1);
    EXPECT_TRUE(banner->isShown());
    touches.wait(2);

    EXPECT_FALSE(banner->superview());
}

TEST_F(Banner, ShownWhileItFadesStays) {
    show();
    banner->hide();
    touches.wait(0.1);
    EXPECT_FALSE(banner->isShown());

    show();
    touches.wait(0.5);

    EXPECT_TRUE(banner->superview());
    EXPECT_EQ(banner->alpha(), 1);
}

TEST_F(Banner, HidingAHiddenOneOrShowingItNowhereDoesNothing) {
    banner->hide();
    banner->showInWindow(nullptr);

    EXPECT_FALSE(banner->isShown());
}

TEST_F(Banner, IsToldToThoseWhoDoNotSeeItAndBlocksNothing) {
    const auto toggle = add<UISwitch>({{100, 440}, {51, 31}});
    show();

    auto& tree = scene.accessibility();
    tree.update();
    EXPECT_EQ(tree.node(tree.root())->children.size(), 2u);
    EXPECT_EQ(banner->accessibilityLabel(), "The daemon does not answer; its controllers stay as they are.");
    touches.tap(*toggle);
    EXPECT_TRUE(toggle->isOn());
}

TEST_F(Banner, MayGoWhileItIsShown) {
    show();
    banner->removeFromSuperview();
    banner.reset();

    touches.wait(FailureBanner::secondsShown + 1);
}
