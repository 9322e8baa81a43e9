// The one notice over a page: what it shows of several, where it stands, and what its buttons do.

#include "app/NoticeBoard.h"
#include "kit/quartz/geometry.h"
#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/hid_keys.h"
#include "tests/kit/uikit/SceneTest.h"

namespace {

using app::NoticeKind;

class Notices : public SceneTest {
protected:
    Notices() {
        screen = UIViewController::alloc()->init();
        scene.window()->setRootViewController(screen);
    }
    // The notice's node; nil when none is shown.
    const seat::AccessibilityNode* notice() {
        touches.settle();
        auto& tree = scene.accessibility();
        tree.update();
        for (const auto& [identity, node] : tree.nodes())
            if (node.role == UIAccessibilityRole::Alert) return &node;
        return nullptr;
    }
    std::string shown() {
        const auto* const node = notice();
        return node ? node->name : "";
    }
    bool tap(const std::string& button) {
        touches.settle();
        auto& tree = scene.accessibility();
        tree.update();
        for (const auto& [identity, node] : tree.nodes())
            if (node.role == UIAccessibilityRole::Button && node.name == button) {
                touches.tap({CGRectGetMidX(node.extent), CGRectGetMidY(node.extent)});
                return true;
            }
        return false;
    }

    std::shared_ptr<UIViewController> screen;
    app::NoticeBoard board{scene.window()};
};

TEST_F(Notices, StandsBelowTheScreenAndCoversNothingOfIt) {
    board.post(NoticeKind::DaemonAbsent, {.text = "The daemon does not answer. Start it."});

    ASSERT_TRUE(notice());
    const CGRect extent = notice()->extent;
    EXPECT_EQ(CGRectGetMaxY(extent), 480);
    EXPECT_EQ(extent.size.width, 320);
    EXPECT_EQ(screen->view()->frame(), CGRectMake(0, 0, 320, extent.origin.y));

    board.withdraw(NoticeKind::DaemonAbsent);
    EXPECT_FALSE(notice());
    EXPECT_EQ(screen->view()->frame(), CGRectMake(0, 0, 320, 480));
}

TEST_F(Notices, StaysUntilItIsPutAway) {
    board.post(NoticeKind::DaemonAbsent, {.text = "It does not answer."});
    touches.wait(600);
    EXPECT_EQ(shown(), "It does not answer.");

    ASSERT_TRUE(tap("Close"));

    EXPECT_EQ(shown(), "");
}

TEST_F(Notices, OfSeveralTheWeightiestIsShownAndTheOthersFollow) {
    board.post(NoticeKind::DaemonAbsent, {.text = "second"});
    board.post(NoticeKind::SettingNotStored, {.text = "first"});
    EXPECT_EQ(shown(), "first");

    board.post(NoticeKind::DaemonAbsent, {.text = "second, said anew"});
    EXPECT_EQ(shown(), "first");
    ASSERT_TRUE(tap("Close"));
    EXPECT_EQ(shown(), "second, said anew");
    board.withdraw(NoticeKind::ToolFailed);
    EXPECT_EQ(shown(), "second, said anew");
}

TEST_F(Notices, WhyThePageIsEmptyIsNotHiddenByADaemonThatDoesNotAnswerEither) {
    board.post(NoticeKind::ResourceDamaged, {.text = "a file is missing"});
    board.post(NoticeKind::DaemonAbsent, {.text = "daemon"});
    EXPECT_EQ(shown(), "a file is missing");

    ASSERT_TRUE(tap("Close"));
    EXPECT_EQ(shown(), "daemon");
}

TEST_F(Notices, OfWhatBecameOfTapsTheNewestIsShownWhichIsNotWhatIsSaidAgain) {
    board.post(NoticeKind::DaemonAbsent, {.text = "daemon"});
    board.post(NoticeKind::NotOpened, {.text = "browser"});
    EXPECT_EQ(shown(), "browser");
    board.post(NoticeKind::DaemonAbsent, {.text = "daemon"});
    EXPECT_EQ(shown(), "browser");
    board.withdraw(NoticeKind::DaemonAbsent);
    board.post(NoticeKind::DaemonAbsent, {.text = "daemon"});
    EXPECT_EQ(shown(), "daemon");
    ASSERT_TRUE(tap("Close"));
    EXPECT_EQ(shown(), "browser");
}

TEST_F(Notices, ItsButtonDoesWhatItSaysAndMayWithdrawIt) {
    int done = 0;
    board.post(NoticeKind::DaemonEnded, {.text = "It has ended.", .actionTitle = "Start It Again", .action = [&] {
                                             ++done;
                                             board.withdraw(NoticeKind::DaemonEnded);
                                         }});

    ASSERT_TRUE(tap("Start It Again"));

    EXPECT_EQ(done, 1);
    EXPECT_EQ(shown(), "");
    board.post(NoticeKind::DaemonAbsent, {.text = "It does not answer."});
    EXPECT_FALSE(tap("Start It Again")) << "another notice has no such button";
}

TEST_F(Notices, EscapeInItPutsItAway) {
    board.post(NoticeKind::DaemonAbsent, {.text = "It does not answer."});
    touches.settle();
    touches.key(seat::hid::tab);
    touches.settle();

    touches.key(seat::hid::escape);

    EXPECT_EQ(shown(), "");
}

TEST_F(Notices, FollowsTheWindowAndTakesNoMoreThanHalfOfIt) {
    std::string text;
    for (int i = 0; i < 25; ++i) text += "many words ";
    board.post(NoticeKind::DaemonAbsent, {.text = text});
    ASSERT_TRUE(notice());
    const double narrow = notice()->extent.size.height;
    EXPECT_LE(narrow, 240);

    scene.resize({1024, 768}, 1);

    ASSERT_TRUE(notice());
    EXPECT_LT(notice()->extent.size.height, narrow);
    EXPECT_EQ(CGRectGetMaxY(notice()->extent), 768);
    EXPECT_EQ(screen->view()->frame().size.height, notice()->extent.origin.y);
    scene.resize({320, 240}, 1);
    EXPECT_LE(notice()->extent.size.height, 120);
    EXPECT_TRUE(tap("Close"));
}

} // namespace
