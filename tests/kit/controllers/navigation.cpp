#include "tests/kit/controllers/screens.h"

#include "kit/controllers/ControllerInternals.h"
#include "kit/quartz/geometry.h"
#include "kit/uikit/front_controller.h"
#include "kit/uikit/hid_keys.h"

namespace {

using Navigation = NavigationTest;

TEST_F(Navigation, PushWithoutAnimationCallsInOrderAtOnce) {
    push(make("b"));

    EXPECT_EQ(log->take(), "b:didLoad a:willDisappear b:willAppear a:didDisappear b:didAppear");
    EXPECT_EQ(stack(), "ab");
}

TEST_F(Navigation, PushWithAnimationTellsOfArrivalWhenItHasArrived) {
    push(make("b"), /*animated=*/true);
    EXPECT_EQ(log->take(), "b:didLoad a:willDisappear* b:willAppear*");
    EXPECT_EQ(stack(), "ab");

    touches.wait(0.2);
    EXPECT_EQ(log->take(), "");
    touches.settle();

    EXPECT_EQ(log->take(), "a:didDisappear* b:didAppear*");
}

TEST_F(Navigation, PopCallsTheLeavingScreenFirst) {
    push(make("b"));
    log->take();

    EXPECT_EQ(navigation->popViewControllerAnimated(/*animated=*/false)->title(), "b");

    EXPECT_EQ(log->take(), "b:willDisappear a:willAppear b:didDisappear a:didAppear b:dealloc");
    EXPECT_EQ(stack(), "a");
}

TEST_F(Navigation, PoppedScreenStandsInTheContainerUntilItHasGone) {
    auto b = make("b");
    push(b);
    b->onWillDisappear = [&] { EXPECT_EQ(b->navigationController(), navigation); };

    navigation->popViewControllerAnimated(/*animated=*/true);
    EXPECT_EQ(b->navigationController(), navigation);
    touches.settle();

    EXPECT_FALSE(b->navigationController());
    EXPECT_FALSE(b->view()->superview());
}

TEST_F(Navigation, AltLeftGoesBackAndOnlyOnceForAHeldKey) {
    push(make("b"));
    push(make("c"));
    touches.settle();

    touches.keyDown(seat::hid::left, UIKeyEvent::Alt);
    touches.keyDown(seat::hid::left, UIKeyEvent::Alt, /*isRepeat=*/true);
    touches.keyUp(seat::hid::left, UIKeyEvent::Alt);
    touches.settle();
    EXPECT_EQ(stack(), "ab");

    const auto alert = UIAlertView::alloc();
    alert->initWithTitle_message_delegate_cancelButtonTitle_otherButtonTitles("Title", "", nullptr, "Dismiss", {});
    alert->show();
    touches.settle();
    touches.key(seat::hid::left, UIKeyEvent::Alt);
    touches.settle();
    EXPECT_EQ(stack(), "ab") << "a message is answered first";
}

TEST_F(Navigation, AScreensBarButtonStandsAtTheRightWhileTheScreenIsInFront) {
    const auto button = UIView::alloc()->initWithFrame(CGRectMake(0, 0, 50, 20));
    ControllerInternals::setBarButton(*a, button);
    touches.settle();
    EXPECT_EQ(button->convertRect_toView(button->bounds(), nullptr), CGRectMake(254, 0, 50, 44));

    push(make("b"), /*animated=*/true);
    touches.settle();
    EXPECT_FALSE(button->window());
    navigation->popViewControllerAnimated(/*animated=*/true);
    touches.settle();

    EXPECT_EQ(button->convertRect_toView(button->bounds(), nullptr), CGRectMake(254, 0, 50, 44));
    ControllerInternals::setBarButton(*a, nullptr);
    EXPECT_FALSE(button->window());
}

TEST_F(Navigation, RootIsNeverPopped) {
    EXPECT_FALSE(navigation->popViewControllerAnimated(/*animated=*/true));

    EXPECT_EQ(stack(), "a");
    EXPECT_EQ(log->take(), "");
}

TEST_F(Navigation, NilDuplicateAndItselfAreNotPushed) {
    push(nullptr);
    push(a);
    push(navigation);

    EXPECT_EQ(stack(), "a");
    EXPECT_EQ(log->take(), "");
}

TEST_F(Navigation, PushDuringAPushFinishesTheFirst) {
    push(make("b"), /*animated=*/true);
    touches.wait(0.1);
    log->take();

    push(make("c"), /*animated=*/true);

    EXPECT_EQ(log->take(), "a:didDisappear* b:didAppear* c:didLoad b:willDisappear* c:willAppear*");
    touches.settle();
    EXPECT_EQ(log->take(), "b:didDisappear* c:didAppear*");
    EXPECT_EQ(stack(), "abc");
}

TEST_F(Navigation, PopDuringAPushFinishesThePush) {
    push(make("b"), /*animated=*/true);
    log->take();

    navigation->popViewControllerAnimated(/*animated=*/true);
    touches.settle();

    EXPECT_EQ(log->take(), "a:didDisappear* b:didAppear* b:willDisappear* a:willAppear* b:didDisappear* a:didAppear* "
                           "b:dealloc");
}

TEST_F(Navigation, PushInsideWillAppearComesNext) {
    const auto b = make("b");
    b->onWillAppear = [&] { push(make("c")); };

    push(b);

    EXPECT_EQ(log->take(), "b:didLoad a:willDisappear b:willAppear a:didDisappear b:didAppear "
                           "c:didLoad b:willDisappear c:willAppear b:didDisappear c:didAppear");
    EXPECT_EQ(stack(), "abc");
}

TEST_F(Navigation, PushInsideDidAppearComesNext) {
    const auto b = make("b");
    b->onDidAppear = [&] { push(make("c"), /*animated=*/true); };

    push(b, /*animated=*/true);
    touches.settle();

    EXPECT_EQ(stack(), "abc");
    EXPECT_TRUE(navigation->topViewController()->view()->superview());
    EXPECT_FALSE(b->view()->superview());
}

TEST_F(Navigation, PopInsideWillAppearComesNext) {
    auto b = make("b");
    b->onWillAppear = [&] { navigation->popViewControllerAnimated(/*animated=*/false); };

    push(b, /*animated=*/true);
    b.reset();
    touches.settle();

    EXPECT_EQ(stack(), "a");
    EXPECT_EQ(log->take(), "b:didLoad a:willDisappear* b:willAppear* a:didDisappear* b:didAppear* b:willDisappear "
                           "a:willAppear b:didDisappear a:didAppear b:dealloc");
}

TEST_F(Navigation, PushAndPopWhileAnotherScreenComesCancelEachOther) {
    a->onWillDisappear = [&] {
        push(make("c"));
        navigation->popViewControllerAnimated(/*animated=*/false);
    };

    push(make("b"));

    EXPECT_EQ(stack(), "ab");
    EXPECT_EQ(log->take(), "b:didLoad a:willDisappear c:dealloc b:willAppear a:didDisappear b:didAppear");
}

TEST_F(Navigation, ScreenThatIsPoppedAndReleasedLivesThroughTheMovement) {
    push(make("b"));
    navigation->popViewControllerAnimated(/*animated=*/true);
    log->take();

    touches.settle();

    EXPECT_EQ(log->take(), "b:didDisappear* a:didAppear* b:dealloc");
}

TEST_F(Navigation, ContainerThatDiesDuringTheMovementLeavesNothingBehind) {
    push(make("b"), /*animated=*/true);
    log->take();
    scene.window()->setRootViewController(nullptr);
    const std::weak_ptr<UIViewController> weak = navigation;
    navigation.reset();
    a.reset();

    touches.settle();

    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(log->take(), "a:didDisappear* b:didAppear* b:willDisappear b:didDisappear b:dealloc a:dealloc");
}

TEST_F(Navigation, ScreenPoppedCanBePushedAgain) {
    const auto b = make("b");
    push(b);
    navigation->popViewControllerAnimated(/*animated=*/true);

    push(b, /*animated=*/true);
    touches.settle();

    EXPECT_EQ(stack(), "ab");
    EXPECT_TRUE(b->view()->superview());
    EXPECT_EQ(b->navigationController(), navigation);
}

TEST_F(Navigation, ScreenOfAnotherContainerIsNotPushed) {
    const auto other = UINavigationController::alloc()->initWithRootViewController(make("x"));

    push(other->topViewController());

    EXPECT_EQ(stack(), "a");
}

TEST_F(Navigation, ScreensPushedBeforeTheContainerIsSeenAreNotBothShown) {
    const auto early = UINavigationController::alloc()->initWithRootViewController(make("x"));
    early->pushViewController_animated(make("y"), /*animated=*/true);
    EXPECT_EQ(log->take(), "");

    scene.window()->setRootViewController(early);

    EXPECT_EQ(log->take(), "a:willDisappear y:didLoad y:willAppear a:didDisappear y:didAppear");
    EXPECT_EQ(early->navigationBar()->accessibilityLabel(), "y");
}

TEST_F(Navigation, ViewReachesFromTheTopOfTheWindow) {
    const auto b = make("b");
    push(b);

    EXPECT_EQ(b->view()->convertRect_toView(b->view()->bounds(), nullptr), CGRectMake(0, 0, 320, 480));
    EXPECT_EQ(written(navigation->navigationBar()->frame()), "0,0 320x44");
}

TEST_F(Navigation, TableBeginsBelowTheBar) {
    const auto screen = UITableViewController::alloc()->initWithStyle(UITableViewStyleGrouped);
    push(screen);

    EXPECT_EQ(screen->tableView()->contentInset().top, 44);
    EXPECT_EQ(screen->tableView()->contentOffset().y, -44);
}

TEST_F(Navigation, ResizeDuringAMovementEndsItInThePlaceWanted) {
    const auto b = make("b");
    push(b, /*animated=*/true);
    touches.wait(0.1);

    scene.resize({1024, 768}, 1);
    touches.settle();

    EXPECT_EQ(b->view()->convertRect_toView(b->view()->bounds(), nullptr), CGRectMake(352, 0, 320, 480));
    EXPECT_EQ(written(navigation->navigationBar()->frame()), "0,0 1024x44");
    EXPECT_EQ(stack(), "ab");
}

TEST_F(Navigation, MovingScreensTakeNoTouches) {
    const auto b = make("b");
    const auto toggle = UISwitch::alloc()->initWithFrame({{100, 200}, {51, 31}});
    b->view()->addSubview(toggle);
    push(b, /*animated=*/true);
    touches.wait(0.34);
    touches.tap({125, 215});
    EXPECT_FALSE(toggle->isOn());

    touches.settle();
    touches.tap({125, 215});

    EXPECT_TRUE(toggle->isOn());
}

TEST_F(Navigation, EscapeGoesBackAndIsNobodysAtTheRoot) {
    push(make("b"));

    touches.key(seat::hid::escape);
    touches.settle();
    EXPECT_EQ(stack(), "a");
    touches.key(seat::hid::escape);

    EXPECT_EQ(stack(), "a");
}

TEST_F(Navigation, FrontScreenIsTheTopOfTheStack) {
    const auto b = make("b");
    push(b);

    EXPECT_EQ(seat::frontController(*scene.window()), b);
}

using Bar = NavigationTest;

TEST_F(Bar, ShowsTitleAndTheWayBack) {
    EXPECT_EQ(bar(), "a");
    push(make("b"));
    EXPECT_EQ(bar(), "<Back to a> b");

    navigation->popViewControllerAnimated(/*animated=*/false);

    EXPECT_EQ(bar(), "a");
}

TEST_F(Bar, FollowsATitleThatChanges) {
    const auto b = make("b");
    push(b);

    b->setTitle("new");
    EXPECT_EQ(bar(), "<Back to a> new");
    a->setTitle("below");

    EXPECT_EQ(bar(), "<Back to below> new");
}

TEST_F(Bar, ScreenWithoutTitleIsCalledBack) {
    a->setTitle("");
    push(make("b"));

    EXPECT_EQ(bar(), "<Back> b");
}

TEST_F(Bar, BackButtonGoesBack) {
    push(make("b"));
    touches.settle();

    touches.tap({20, 22});
    touches.settle();

    EXPECT_EQ(stack(), "a");
}

TEST_F(Bar, BackButtonCanBeReachedByKey) {
    push(make("b"));
    touches.key(seat::hid::tab);
    EXPECT_EQ(scene.window()->focusedView()->accessibilityLabel(), "Back to a");

    touches.key(seat::hid::enter);
    touches.settle();

    EXPECT_EQ(stack(), "a");
}

TEST_F(Bar, LongTitlesShareTheBarWithoutOverlapping) {
    a->setTitle("A Root With a Title That Goes On and On");
    push(make("Another Title That Would Like the Whole Bar"));
    scene.prepareFrame();

    const auto item = navigation->navigationBar()->subviews().back();
    const CGRect back = item->subviews().front()->frame();
    const CGRect title = item->subviews().back()->frame();

    EXPECT_GE(title.origin.x, CGRectGetMaxX(back));
    EXPECT_LE(CGRectGetMaxX(title), 320);
    EXPECT_GT(title.size.width, 80);
    EXPECT_GT(back.size.width, 60);
}

TEST_F(Bar, ShortTitleStandsInTheMiddle) {
    push(make("b"));
    scene.prepareFrame();

    const auto item = navigation->navigationBar()->subviews().back();

    EXPECT_NEAR(item->subviews().back()->center().x, 160, 0.5);
}

} // namespace
