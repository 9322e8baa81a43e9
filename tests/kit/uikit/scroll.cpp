#include "kit/uikit/ScrollMotion.h"
#include "tests/kit/uikit/SceneTest.h"

#include <cmath>

namespace {

using seat::ScrollMotion;
using seat::ScrollRange;

class Scrolling : public SceneTest {
protected:
    Scrolling() {
        view = add<UIScrollView>({{0, 0}, {320, 480}});
        view->setContentSize({320, 2000});
        scene.prepareFrame();
    }
    double y() const { return view->contentOffset().y; }

    std::shared_ptr<UIScrollView> view;
};

constexpr ScrollRange range{0, 1000, 500};

} // namespace

TEST(ScrollMotions, GlideEndsWhereItsSpeedIsSpentOnAWholePoint) {
    const ScrollMotion motion(100, 1000, range);

    EXPECT_GT(motion.end(), 500);
    EXPECT_LT(motion.end(), 700);
    EXPECT_EQ(motion.end(), std::round(motion.end()));
    EXPECT_EQ(motion.offsetAt(0), 100);
    EXPECT_EQ(motion.offsetAt(motion.duration()), motion.end());
    EXPECT_EQ(motion.offsetAt(1e6), motion.end());
}

TEST(ScrollMotions, GlideOnlySlowsDown) {
    const ScrollMotion motion(0, 1200, range);
    double last = 0;
    double lastStep = 1e9;
    for (double t = 0.05; t < motion.duration(); t += 0.05) {
        const double now = motion.offsetAt(t);
        EXPECT_GT(now, last);
        EXPECT_LT(now - last, lastStep);
        lastStep = now - last;
        last = now;
    }
}

TEST(ScrollMotions, GlideIntoAnEdgeSpringsBackToIt) {
    const ScrollMotion motion(900, 3000, range);

    double most = 0;
    for (double t = 0; t < motion.duration(); t += 0.01) most = std::max(most, motion.offsetAt(t));
    EXPECT_GT(most, 1000);
    EXPECT_LT(most, 1200);
    EXPECT_EQ(motion.end(), 1000);
    EXPECT_NEAR(motion.offsetAt(motion.duration() - 1e-9), 1000, 0.5);
}

TEST(ScrollMotions, NoStepOfTheWayJumps) {
    const ScrollMotion motion(900, 3000, range);
    for (double t = 0; t < motion.duration(); t += 0.001)
        ASSERT_LT(std::abs(motion.offsetAt(t + 0.001) - motion.offsetAt(t)), 3.1) << t;
}

TEST(ScrollMotions, ContentPulledBeyondTheEndReturns) {
    const ScrollMotion motion(-80, 0, range);

    EXPECT_EQ(motion.offsetAt(0), -80);
    EXPECT_EQ(motion.end(), 0);
    EXPECT_GT(motion.duration(), 0.1);
    EXPECT_LT(motion.duration(), 1.5);
}

TEST(ScrollMotions, RestingContentStays) {
    EXPECT_EQ(ScrollMotion(100, 0, range).duration(), 0);
    EXPECT_EQ(ScrollMotion(100.25, 3, range).end(), 100.25);
}

TEST(ScrollMotions, RubberBandGivesLessAndLessAndCanBeTurnedBack) {
    EXPECT_EQ(seat::rubberBanded(500, range), 500);
    const double near = -seat::rubberBanded(-100, range);
    const double far = -seat::rubberBanded(-200, range);
    EXPECT_GT(near, 0);
    EXPECT_LT(near, 100);
    EXPECT_LT(far - near, near);
    EXPECT_NEAR(seat::unbanded(-near, range), -100, 1e-9);
    EXPECT_NEAR(seat::unbanded(seat::rubberBanded(1300, range), range), 1300, 1e-9);
}

TEST_F(Scrolling, ContentFollowsTheFinger) {
    touches.press({100, 400});
    touches.move({100, 392});
    touches.move({100, 300});

    EXPECT_EQ(y(), 92);
    EXPECT_TRUE(view->isDragging());
    clock.advance(1);
    touches.release();
    EXPECT_EQ(y(), 92);
    EXPECT_FALSE(view->isDragging());
    EXPECT_FALSE(view->isDecelerating());
}

TEST_F(Scrolling, FlickGoesOnAndEndsExactlyAndThenNothingMoves) {
    touches.drag({100, 400}, {100, 300}, 5, 0.1);
    const double released = y();
    EXPECT_TRUE(view->isDecelerating());

    EXPECT_TRUE(touches.settle(10));

    EXPECT_GT(y(), released + 100);
    EXPECT_EQ(y(), std::round(y()));
    EXPECT_FALSE(view->isDecelerating());
    EXPECT_FALSE(scene.isAnimating());
    EXPECT_TRUE(scene.prepareFrame().empty());
}

TEST_F(Scrolling, FingerOnMovingContentHoldsItAndIsNoTap) {
    const auto recorder = Recorder::alloc()->init();
    view->addGestureRecognizer(UITapGestureRecognizer::alloc()->initWithTarget_action(recorder, "gesture:"));
    touches.drag({100, 400}, {100, 300}, 5, 0.1);
    touches.wait(0.1);
    EXPECT_TRUE(view->isDecelerating());

    touches.press({100, 200});
    const double held = y();
    touches.wait(0.3);
    touches.release();

    EXPECT_EQ(y(), held);
    EXPECT_EQ(recorder->take(), "");
    touches.tap({100, 200});
    EXPECT_EQ(recorder->take(), "tap:ended(" + written(CGPoint{100, held + 200}) + ")");
}

TEST_F(Scrolling, PullBeyondTheTopStretchesAndReturns) {
    touches.press({100, 100});
    touches.move({100, 108});
    touches.move({100, 308});
    EXPECT_LT(y(), 0);
    EXPECT_GT(y(), -200);
    clock.advance(1);

    touches.release();
    EXPECT_TRUE(touches.settle());

    EXPECT_EQ(y(), 0);
}

TEST_F(Scrolling, CancelledFingerLeavesContentInRange) {
    touches.press({100, 100});
    touches.move({100, 300});
    touches.cancel();

    EXPECT_TRUE(touches.settle());
    EXPECT_EQ(y(), 0);
    EXPECT_FALSE(view->isDragging());
}

TEST_F(Scrolling, TouchesOfTheContentAreCancelledWhenItScrolls) {
    const auto control = add<UIControl>({{0, 300}, {320, 100}}, view);
    const auto recorder = Recorder::alloc()->init();
    for (const auto& [action, event] :
         {std::pair("touchDown:", UIControlEventTouchDown), std::pair("touchUpInside:", UIControlEventTouchUpInside),
          std::pair("touchCancelled:", UIControlEventTouchCancel)})
        control->addTarget_action_forControlEvents(recorder, action, event);

    touches.drag({100, 350}, {100, 250});

    EXPECT_EQ(recorder->take(), "down cancel");
    EXPECT_GT(y(), 0);
}

TEST_F(Scrolling, PanOfTheContentGoesBeforeTheScrollViewsOwn) {
    const auto field = add({{0, 100}, {320, 200}}, view);
    const auto recorder = Recorder::alloc()->init();
    field->addGestureRecognizer(UIPanGestureRecognizer::alloc()->initWithTarget_action(recorder, "gesture:"));

    touches.drag({100, 120}, {100, 220}, 2);

    EXPECT_EQ(recorder->take(), "pan:began(100,70) pan:changed(100,120) pan:ended/0");
    EXPECT_EQ(y(), 0);
}

TEST_F(Scrolling, DragAcrossIsNotTheScrollViews) {
    touches.drag({100, 100}, {250, 120});

    EXPECT_EQ(y(), 0);
    EXPECT_FALSE(view->isDecelerating());
}

TEST_F(Scrolling, ContentThatFitsDoesNotScroll) {
    view->setContentSize({320, 400});

    touches.drag({100, 100}, {100, 300});
    EXPECT_EQ(y(), 0);
    EXPECT_FALSE(view->scrollBy({0, 50}));
}

TEST_F(Scrolling, WheelMovesAndStopsAtTheEnds) {
    touches.wheel({100, 100}, {0, 50});
    EXPECT_EQ(y(), 50);
    touches.wheel({100, 100}, {0, -500});
    EXPECT_EQ(y(), 0);
    EXPECT_FALSE(view->scrollBy({0, -1}));
    touches.wheel({100, 100}, {0, 1e6});
    EXPECT_EQ(y(), 1520);
}

TEST_F(Scrolling, WheelGoesToTheInnermostThatCanMove) {
    const auto inner = add<UIScrollView>({{0, 0}, {320, 200}}, view);
    inner->setContentSize({320, 250});

    touches.wheel({100, 100}, {0, 80});
    EXPECT_EQ(inner->contentOffset().y, 50);
    EXPECT_EQ(y(), 0);
    touches.wheel({100, 100}, {0, 80});
    EXPECT_EQ(y(), 80);
}

TEST_F(Scrolling, InsetsAreScrolledInto) {
    view->setContentInset({64, 0, 10, 0});
    EXPECT_EQ(y(), -64);

    view->setContentOffset({0, 100});
    touches.wheel({100, 100}, {0, -1000});
    EXPECT_EQ(y(), -64);
    touches.wheel({100, 100}, {0, 1e6});
    EXPECT_EQ(y(), 2000 + 10 - 480);
}

TEST_F(Scrolling, RectangleComesIntoViewByTheShortestWay) {
    view->setContentInset({64, 0, 0, 0});
    view->scrollRectToVisible_animated({{0, 100}, {320, 44}}, /*animated=*/false);
    EXPECT_EQ(y(), -64);
    view->scrollRectToVisible_animated({{0, 600}, {320, 44}}, /*animated=*/false);
    EXPECT_EQ(y(), 644 - 480);
    view->scrollRectToVisible_animated({{0, 200}, {320, 44}}, /*animated=*/false);
    EXPECT_EQ(y(), 200 - 64);
    view->scrollRectToVisible_animated({{0, 1990}, {320, 44}}, /*animated=*/false);
    EXPECT_EQ(y(), 2000 - 480);
}

TEST_F(Scrolling, AnimatedOffsetArrivesExactly) {
    view->setContentOffset_animated({0, 777.5}, /*animated=*/true);
    EXPECT_EQ(y(), 0);
    touches.wait(0.15);
    EXPECT_GT(y(), 100);
    EXPECT_LT(y(), 700);

    EXPECT_TRUE(touches.settle());
    EXPECT_EQ(y(), 777.5);
}

TEST_F(Scrolling, ShorterContentIsScrolledBack) {
    view->setContentOffset({0, 1500});
    view->setContentSize({320, 600});
    EXPECT_EQ(y(), 120);

    view->setFrame({{0, 0}, {320, 700}});
    EXPECT_EQ(y(), 0);
}

TEST_F(Scrolling, ViewThatLeavesStopsMoving) {
    touches.drag({100, 400}, {100, 300}, 5, 0.1);
    EXPECT_TRUE(view->isDecelerating());

    view->removeFromSuperview();

    EXPECT_FALSE(view->isDecelerating());
    EXPECT_TRUE(touches.settle(1));
}

TEST_F(Scrolling, ViewMayDieWhileItMoves) {
    touches.drag({100, 400}, {100, 300}, 5, 0.1);
    const std::weak_ptr<UIScrollView> weak = view;

    view->removeFromSuperview();
    view.reset();

    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(touches.settle(1));
}
