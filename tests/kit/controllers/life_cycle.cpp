#include "tests/kit/controllers/screens.h"

namespace {

class LifeCycle : public SceneTest {
protected:
    std::shared_ptr<LoggedScreen> make(const std::string& name) const {
        return LoggedScreen::alloc()->initWithName_log(name, log);
    }
    std::shared_ptr<Recorder> log = Recorder::alloc()->init();
};

TEST_F(LifeCycle, ViewIsMadeWhenItIsFirstAskedFor) {
    const auto screen = make("a");
    EXPECT_FALSE(screen->isViewLoaded());
    EXPECT_FALSE(screen->viewIfLoaded());
    EXPECT_EQ(log->take(), "");

    const auto view = screen->view();

    EXPECT_EQ(log->take(), "a:didLoad");
    EXPECT_EQ(screen->view(), view);
    EXPECT_EQ(log->take(), "");
}

TEST_F(LifeCycle, ViewHasTheScreensSizeBeforeItStandsAnywhere) {
    EXPECT_EQ(written(make("a")->view()->frame()), "0,0 320x480");
}

TEST_F(LifeCycle, ScreenIsTheNextResponderOfItsView) {
    const auto screen = make("a");
    EXPECT_EQ(screen->view()->nextResponder(), screen);
}

TEST_F(LifeCycle, RootOfAWindowAppearsAndDisappears) {
    const auto screen = make("a");
    scene.window()->setRootViewController(screen);
    EXPECT_EQ(log->take(), "a:didLoad a:willAppear a:didAppear");

    scene.window()->setRootViewController(nullptr);

    EXPECT_EQ(log->take(), "a:willDisappear a:didDisappear");
}

TEST_F(LifeCycle, RootReplacedByAnotherGoesBeforeItComes) {
    scene.window()->setRootViewController(make("a"));
    log->take();

    scene.window()->setRootViewController(make("b"));

    EXPECT_EQ(log->take(), "a:willDisappear b:didLoad b:willAppear a:didDisappear b:didAppear a:dealloc");
}

TEST_F(LifeCycle, CallThatChangesNothingSendsNothing) {
    const auto screen = make("a");
    screen->beginAppearanceTransition_animated(/*isAppearing=*/true, /*animated=*/false);
    screen->beginAppearanceTransition_animated(/*isAppearing=*/true, /*animated=*/false);
    screen->endAppearanceTransition();
    screen->endAppearanceTransition();

    EXPECT_EQ(log->take(), "a:didLoad a:willAppear a:didAppear");
}

TEST_F(LifeCycle, ScreenThatTurnsBackHalfWayHearsOfIt) {
    const auto screen = make("a");
    screen->beginAppearanceTransition_animated(/*isAppearing=*/true, /*animated=*/true);
    screen->beginAppearanceTransition_animated(/*isAppearing=*/false, /*animated=*/true);
    screen->endAppearanceTransition();

    EXPECT_EQ(log->take(), "a:didLoad a:willAppear* a:willDisappear* a:didDisappear*");
}

TEST_F(LifeCycle, DyingScreenTakesItsViewOutOfTheTree) {
    auto screen = make("a");
    const auto view = screen->view();
    scene.window()->addSubview(view);

    screen.reset();

    EXPECT_FALSE(view->superview());
    EXPECT_FALSE(view->nextResponder());
}

TEST_F(LifeCycle, ViewFollowsTheWindow) {
    const auto screen = make("a");
    scene.window()->setRootViewController(screen);

    scene.resize({1024, 768}, 2);
    scene.prepareFrame();

    EXPECT_EQ(written(screen->view()->frame()), "0,0 1024x768");
}

} // namespace
