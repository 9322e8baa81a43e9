#include "kit/quartz/geometry.h"
#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/hid_keys.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UINavigationController.h"
#include "tests/kit/alerts/AlertTest.h"

namespace {

using Alerts = AlertTest;

TEST_F(Alerts, OneIsShownAndTheRestWaitTheirTurn) {
    show("one");
    show("two");
    show("three");
    EXPECT_EQ(shownTitle(), "one");

    tapButton("Dismiss");
    EXPECT_EQ(shownTitle(), "two");
    tapButton("Dismiss");
    EXPECT_EQ(shownTitle(), "three");
    tapButton("Dismiss");

    EXPECT_EQ(shownTitle(), "none");
    EXPECT_EQ(listener->log, "one:0 two:0 three:0 ");
}

TEST_F(Alerts, DelegateHearsOnceWhenTheAlertHasGone) {
    const auto alert = show("one", {"Do It"});

    touches.tap(*button(*alert, "Do It"));
    EXPECT_EQ(listener->log, "");
    touches.tap({160, 240});
    alert->dismissWithClickedButtonIndex_animated(0, /*animated=*/false);
    touches.settle();

    EXPECT_EQ(listener->log, "one:1 ");
}

TEST_F(Alerts, DelegateThatDiedIsNotCalled) {
    show("one");
    listener.reset();

    tapButton("Dismiss");

    EXPECT_EQ(shownTitle(), "none");
}

TEST_F(Alerts, ShownAlertLivesUntilItIsDismissed) {
    std::weak_ptr<UIAlertView> weak = show("one");
    EXPECT_FALSE(weak.expired());

    tapButton("Dismiss");

    EXPECT_TRUE(weak.expired());
}

TEST_F(Alerts, ShowingTwiceShowsOnce) {
    const auto alert = show("one");
    alert->show();

    tapButton("Dismiss");

    EXPECT_EQ(shownTitle(), "none");
    EXPECT_EQ(listener->log, "one:0 ");
}

TEST_F(Alerts, AnAlertThatWasDismissedCanBeShownAgain) {
    const auto alert = show("one");
    tapButton("Dismiss");

    alert->show();
    touches.settle();
    EXPECT_EQ(shownTitle(), "one");
    tapButton("Dismiss");

    EXPECT_EQ(listener->log, "one:0 one:0 ");
}

TEST_F(Alerts, AnAlertThatTellsNobodyIsLeftOutWhereTheSameOneIsTheLast) {
    listener.reset();
    const auto titlesInTurn = [this] {
        std::string titles;
        for (; shown(); tapButton(shown()->buttonTitles().front()))
            titles +=
                shownTitle() + "," + shown()->message() + "," + std::to_string(shown()->buttonTitles().size()) + ";";
        return titles;
    };

    for (int i = 0; i < 3; ++i) show("one");
    EXPECT_EQ(titlesInTurn(), "one,Message,1;");

    show("one");
    show("one", {}, "Another");
    show("one", {"Do It"}, "Another");
    show("two", {"Do It"}, "Another");
    show("one");
    EXPECT_EQ(titlesInTurn(), "one,Message,1;one,Another,1;one,Another,2;two,Another,2;one,Message,1;");
}

TEST_F(Alerts, AnAlertIsNotLeftOutForOneThatIsGoing) {
    listener.reset();
    const auto first = show("one");
    touches.tap(*button(*first, "Dismiss")); // it fades

    make("one")->show();
    touches.settle();

    EXPECT_EQ(shownTitle(), "one");
    EXPECT_NE(shown(), first);
}

TEST_F(Alerts, AlertThatWaitsCanBeTakenBack) {
    show("one");
    const auto two = show("two");
    EXPECT_FALSE(two->isVisible());

    two->dismissWithClickedButtonIndex_animated(0, /*animated=*/true);
    EXPECT_EQ(listener->log, "two:0 ");
    tapButton("Dismiss");

    EXPECT_EQ(shownTitle(), "none");
    EXPECT_EQ(listener->log, "two:0 one:0 ");
}

TEST_F(Alerts, AlertThatWasNeverShownIsNotDismissed) {
    make("one")->dismissWithClickedButtonIndex_animated(0, /*animated=*/false);

    EXPECT_EQ(listener->log, "");
}

TEST_F(Alerts, AlertShownByTheDelegateComesAfterThoseThatWait) {
    listener->then = [&] { make("late")->show(); };
    show("one");
    show("two");

    tapButton("Dismiss");
    EXPECT_EQ(shownTitle(), "two");
    tapButton("Dismiss");

    EXPECT_EQ(shownTitle(), "late");
}

TEST_F(Alerts, CancelButtonComesFirstInTheNumbering) {
    const auto alert = make("one", {"A", "B"});

    EXPECT_EQ(alert->buttonTitles(), (std::vector<std::string>{"Dismiss", "A", "B"}));
    EXPECT_EQ(alert->message(), "Message");
}

TEST_F(Alerts, PageBelowTakesNoTouchesMeanwhile) {
    const auto toggle = add<UISwitch>({{10, 10}, {51, 31}});
    show("one");

    touches.tap({30, 25});

    EXPECT_FALSE(toggle->isOn());
    EXPECT_EQ(shownTitle(), "one");
}

TEST_F(Alerts, ReturnPressesTheButtonAndEscapeCancels) {
    show("one");
    touches.key(seat::hid::enter);
    touches.settle();
    EXPECT_EQ(listener->log, "one:0 ");

    show("two", {"Do It"});
    touches.key(seat::hid::enter);
    touches.settle();
    EXPECT_EQ(listener->log, "one:0 two:1 ");

    show("three", {"Do It"});
    touches.key(seat::hid::escape);
    touches.settle();
    EXPECT_EQ(listener->log, "one:0 two:1 three:0 ");
}

TEST_F(Alerts, KeysStayInsideAndTheFocusComesBackAfterwards) {
    const auto toggle = add<UISwitch>({{10, 10}, {51, 31}});
    scene.window()->setFocusedView(toggle);
    show("one", {"A", "B"});

    for (int i = 0; i < 5; ++i) {
        touches.key(seat::hid::tab);
        EXPECT_EQ(scene.window()->focusedView()->accessibilityRole(), UIAccessibilityRole::Button);
    }
    tapButton("A");

    EXPECT_EQ(scene.window()->focusedView(), toggle);
}

TEST_F(Alerts, FocusComesBackAfterTheLastOfSeveral) {
    const auto toggle = add<UISwitch>({{10, 10}, {51, 31}});
    scene.window()->setFocusedView(toggle);
    show("one");
    show("two");

    tapButton("Dismiss");
    tapButton("Dismiss");

    EXPECT_EQ(scene.window()->focusedView(), toggle);
}

std::shared_ptr<UILabel> label(const UIView& view, const std::string& text) {
    for (const auto& subview : view.subviews()) {
        auto found = std::dynamic_pointer_cast<UILabel>(subview);
        if (found && found->text() == text) return found;
        if (auto deeper = label(*subview, text)) return deeper;
    }
    return nullptr;
}

TEST_F(Alerts, TwentyPointsStandAboveTheTitleAndBelowTheMessage) {
    const auto alert = show("one");
    const auto title = label(*alert, "one");
    const auto message = label(*alert, "Message");
    const auto dismiss = button(*alert, "Dismiss");
    ASSERT_TRUE(title && message && dismiss);

    EXPECT_EQ(title->frame().origin.y, 20);
    EXPECT_EQ(dismiss->frame().origin.y - CGRectGetMaxY(message->frame()), 20);
}

TEST_F(Alerts, FollowsTheWindow) {
    const auto alert = show("one");

    scene.resize({1024, 768}, 2);
    scene.prepareFrame();

    EXPECT_EQ(written(alert->frame()), "0,0 1024x768");
    EXPECT_EQ(alert->subviews().front()->center().x, 512);
}

TEST_F(Alerts, LongMessageScrollsAndLeavesTheButtonsInSight) {
    std::string message;
    for (int i = 0; i < 200; ++i) message += "Much to say about this. ";
    const auto alert = show("one", {}, message);

    const auto dismiss = button(*alert, "Dismiss");
    EXPECT_LE(CGRectGetMaxY(dismiss->convertRect_toView(dismiss->bounds(), nullptr)), 480);
    touches.drag({160, 300}, {160, 100});
    touches.settle();
    tapButton("Dismiss");

    EXPECT_EQ(listener->log, "one:0 ");
}

TEST_F(Alerts, EmptyTextsTakeNoRoom) {
    const double full = show("title")->subviews().front()->bounds().size.height;
    tapButton("Dismiss");
    const double bare = show("title", {}, "")->subviews().front()->bounds().size.height;

    EXPECT_LT(bare, full);
}

TEST_F(Alerts, WithoutAWindowTheAlertWaits) {
    UIApplication::sharedApplication()->setKeyWindow(nullptr);
    const auto alert = make("one");
    alert->show();
    EXPECT_FALSE(alert->isVisible());

    UIApplication::sharedApplication()->setKeyWindow(scene.window());
    show("two");

    EXPECT_EQ(shownTitle(), "one");
}

TEST_F(Alerts, AlertWhoseWindowIsGoneDoesNotHoldUpTheNext) {
    auto other = std::make_unique<seat::WindowScene>(CGSizeMake(320, 480), 1);
    UIApplication::sharedApplication()->setKeyWindow(other->window());
    make("lost")->show();
    other.reset();
    UIApplication::sharedApplication()->setKeyWindow(scene.window());

    show("next");

    EXPECT_EQ(shownTitle(), "next");
    EXPECT_EQ(listener->log, "");
}

TEST_F(Alerts, AssistiveTechnologySeesTheAlertAlone) {
    add<UISwitch>({{10, 10}, {51, 31}});
    show("Important!", {}, "Please reboot.");
    auto& tree = scene.accessibility();
    tree.update();

    std::string buttons;
    std::string alerts;
    int switches = 0;
    for (const auto& [identity, node] : tree.nodes()) {
        if (node.role == UIAccessibilityRole::Button) buttons += node.name + ";";
        if (node.role == UIAccessibilityRole::Alert) alerts += node.name + ";";
        switches += node.role == UIAccessibilityRole::Switch;
    }

    EXPECT_EQ(alerts, "Important!\nPlease reboot.;");
    EXPECT_EQ(buttons, "Dismiss;");
    EXPECT_EQ(switches, 0);
}

} // namespace
