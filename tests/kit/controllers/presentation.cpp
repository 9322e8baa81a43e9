#include "tests/kit/controllers/screens.h"

#include "kit/uikit/front_controller.h"
#include "kit/uikit/hid_keys.h"

namespace {

class Presentation : public NavigationTest {
protected:
    void present(const std::shared_ptr<UIViewController>& screen, bool animated = false) {
        navigation->presentViewController_animated_completion(screen, animated, [this] { log->write("presented"); });
    }
    void dismiss(const std::shared_ptr<UIViewController>& screen, bool animated = false) {
        screen->dismissViewControllerAnimated_completion(animated, [this] { log->write("dismissed"); });
    }
};

TEST_F(Presentation, ScreenBelowDisappearsAndComesBack) {
    const auto m = make("m");
    present(m);
    EXPECT_EQ(log->take(), "m:didLoad a:willDisappear m:willAppear a:didDisappear m:didAppear presented");

    dismiss(m);

    EXPECT_EQ(log->take(), "m:willDisappear a:willAppear m:didDisappear a:didAppear dismissed");
}

TEST_F(Presentation, WithAnimationArrivalIsToldOfWhenItHasArrived) {
    const auto m = make("m");
    present(m, /*animated=*/true);
    EXPECT_EQ(log->take(), "m:didLoad a:willDisappear* m:willAppear*");
    touches.settle();
    EXPECT_EQ(log->take(), "a:didDisappear* m:didAppear* presented");

    dismiss(m, /*animated=*/true);
    EXPECT_EQ(log->take(), "m:willDisappear* a:willAppear*");
    touches.settle();

    EXPECT_EQ(log->take(), "m:didDisappear* a:didAppear* dismissed");
}

TEST_F(Presentation, CoversTheWholeWindowAndFollowsIt) {
    const auto m = make("m");
    present(m);
    EXPECT_EQ(written(m->view()->convertRect_toView(m->view()->bounds(), nullptr)), "0,0 320x480");

    scene.resize({1024, 768}, 1);
    scene.prepareFrame();

    EXPECT_EQ(written(m->view()->frame()), "0,0 1024x768");
}

TEST_F(Presentation, WhoPresentsWhomIsKnownFromInsideTheContainer) {
    const auto m = make("m");
    present(m);

    EXPECT_EQ(navigation->presentedViewController(), m);
    EXPECT_EQ(a->presentedViewController(), m);
    EXPECT_EQ(m->presentingViewController(), navigation);
    dismiss(a);

    EXPECT_FALSE(navigation->presentedViewController());
    EXPECT_FALSE(m->presentingViewController());
}

TEST_F(Presentation, DismissingDuringTheArrivalFinishesItFirst) {
    const auto m = make("m");
    present(m, /*animated=*/true);
    touches.wait(0.1);
    log->take();

    dismiss(m, /*animated=*/true);
    touches.settle();

    EXPECT_EQ(log->take(), "a:didDisappear* m:didAppear* presented m:willDisappear* a:willAppear* m:didDisappear* "
                           "a:didAppear* dismissed");
    EXPECT_FALSE(m->view()->superview());
}

TEST_F(Presentation, NilAndSecondScreenAreNotPresented) {
    const auto m = make("m");
    present(nullptr);
    present(m);
    log->take();

    present(make("n"));
    present(a);

    EXPECT_EQ(log->take(), "n:dealloc");
    EXPECT_EQ(navigation->presentedViewController(), m);
}

TEST_F(Presentation, ScreenThatWasNotPresentedIsNotDismissed) {
    dismiss(a);
    dismiss(make("x"));

    EXPECT_EQ(log->take(), "x:dealloc");
}

TEST_F(Presentation, PresentedScreenMayPresentAnotherAndBothGoTogether) {
    auto m = make("m");
    auto n = make("n");
    present(m);
    m->presentViewController_animated_completion(n, /*animated=*/false, {});
    EXPECT_EQ(seat::frontController(*scene.window()), n);

    dismiss(navigation);

    EXPECT_EQ(seat::frontController(*scene.window()), a);
    EXPECT_FALSE(n->view()->superview());
    EXPECT_FALSE(m->view()->superview());
}

TEST_F(Presentation, PresentedScreenLivesUntilItIsDismissed) {
    present(make("m"));
    log->take();

    dismiss(navigation, /*animated=*/true);
    touches.settle();

    EXPECT_EQ(log->take(), "m:willDisappear* a:willAppear* m:didDisappear* a:didAppear* dismissed m:dealloc");
}

TEST_F(Presentation, ScreenBelowTakesNeitherTouchesNorKeys) {
    push(make("b"));
    const auto m = make("m");
    const auto toggle = UISwitch::alloc()->initWithFrame({{100, 200}, {51, 31}});
    m->view()->addSubview(toggle);
    present(m);

    touches.key(seat::hid::tab);
    EXPECT_EQ(scene.window()->focusedView(), toggle);
    touches.key(seat::hid::tab);
    EXPECT_EQ(scene.window()->focusedView(), toggle);
    touches.tap({20, 22});
    touches.settle();

    EXPECT_EQ(stack(), "ab");
}

TEST_F(Presentation, WithoutAWindowTheCallsComeAtOnce) {
    const auto loose = make("x");
    const auto m = make("m");

    loose->presentViewController_animated_completion(m, /*animated=*/true, [this] { log->write("presented"); });

    EXPECT_EQ(log->take(), "m:didLoad m:willAppear* m:didAppear* presented");
    EXPECT_EQ(loose->presentedViewController(), m);
    dismiss(m, /*animated=*/true);
    EXPECT_FALSE(loose->presentedViewController());
}

} // namespace
