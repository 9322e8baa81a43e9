#include "tests/kit/uikit/SceneTest.h"

namespace {

class Gestures : public SceneTest {
protected:
    template <class T> std::shared_ptr<T> listen(UIView& view) {
        const auto recognizer = T::alloc()->initWithTarget_action(recorder, "gesture:");
        view.addGestureRecognizer(recognizer);
        return recognizer;
    }
    std::shared_ptr<TouchedView> touchedView(CGRect frame, const std::string& name = "view",
                                             const std::shared_ptr<UIView>& parent = nullptr) {
        const auto view = add<TouchedView>(frame, parent);
        view->recorder = recorder;
        view->name = name;
        return view;
    }

    std::shared_ptr<Recorder> recorder = Recorder::alloc()->init();
};

class TapCounter final : public UIView {
    NS_CLASS(TapCounter)
public:
    std::shared_ptr<TapCounter> initWithFrame(CGRect frame) {
        return UIView::initWithFrame(frame) ? self(this) : nullptr;
    }
    void touchesEnded_withEvent(const UITouchList& ended, UIEvent&) override {
        counts += std::to_string(ended.front()->tapCount()) + ' ';
    }
    std::string counts;
};
NS_CLASS_IMPLEMENTATION(TapCounter, UIView)

} // namespace

TEST_F(Gestures, TapEndsWithItsOneTouch) {
    const auto view = add({{100, 100}, {80, 40}});
    listen<UITapGestureRecognizer>(*view);

    touches.tap({110, 130});

    EXPECT_EQ(recorder->take(), "tap:ended(10,30)");
}

TEST_F(Gestures, TapThatWandersFails) {
    const auto view = add({{100, 100}, {80, 40}});
    listen<UITapGestureRecognizer>(*view);

    touches.press({110, 130});
    touches.move({121, 130});
    touches.move({110, 130});
    touches.release();

    EXPECT_EQ(recorder->take(), "");
}

TEST_F(Gestures, TapMayWanderTenPointsAndNoFarther) {
    const auto view = add({{100, 100}, {80, 40}});
    listen<UITapGestureRecognizer>(*view);

    for (const double way : {10.0, 10.5}) {
        touches.press({110, 130});
        touches.move({110 + way, 130});
        touches.move({110, 130});
        touches.release();
    }

    EXPECT_EQ(recorder->take(), "tap:ended(10,30)");
}

TEST_F(Gestures, TouchThatWanderedTenPointsStillCountsAsATapAndOneThatWanderedFartherDoesNot) {
    const auto view = add<TapCounter>({{0, 0}, {200, 200}});

    touches.press({50, 50});
    touches.move({60, 50});
    touches.release();
    touches.wait(1);
    touches.press({50, 50});
    touches.move({60.5, 50});
    touches.move({50, 50});
    touches.release();

    EXPECT_EQ(view->counts, "1 0 ");
}

TEST_F(Gestures, FingerThatBeginsTwiceIsCancelledBeforeItBeginsAnew) {
    const auto first = touchedView({{0, 0}, {100, 100}}, "first");
    const auto second = touchedView({{100, 0}, {100, 100}}, "second");
    listen<UIPanGestureRecognizer>(*first);

    touches.press({10, 10}, 7);
    touches.press({110, 20}, 7);
    touches.release(7);
    touches.press({20, 20}, 7);
    touches.move({50, 20}, 7);
    touches.press({120, 30}, 7);

    EXPECT_EQ(recorder->take(), "first:began(10,10) first:cancelled(10,10) second:began(10,20) second:ended(10,20) "
                                "first:began(20,20) first:cancelled(50,20) pan:began(50,20) pan:cancelled/0 "
                                "second:began(20,30)");
}

TEST_F(Gestures, SecondFingerEndsATap) {
    const auto view = add({{100, 100}, {80, 40}});
    listen<UITapGestureRecognizer>(*view);

    touches.press({110, 130}, 1);
    touches.press({120, 130}, 2);
    touches.release(2);
    touches.release(1);

    EXPECT_EQ(recorder->take(), "");
    touches.tap(*view);
    EXPECT_EQ(recorder->take(), "tap:ended(40,20)");
}

TEST_F(Gestures, PanBeginsBeyondItsSlopAndEndsWithoutTouches) {
    const auto view = add({{100, 100}, {80, 80}});
    const auto pan = listen<UIPanGestureRecognizer>(*view);

    touches.press({110, 110});
    touches.move({114, 110});
    EXPECT_EQ(recorder->take(), "");
    touches.move({119, 110});
    touches.move({130, 120});
    touches.move({400, 120});
    touches.release();

    EXPECT_EQ(recorder->take(), "pan:began(19,10) pan:changed(30,20) pan:changed(300,20) pan:ended/0");
    EXPECT_EQ(pan->state(), UIGestureRecognizerStatePossible);
}

TEST_F(Gestures, APanOfOneMovementHasItsPlaceAsAChangeBeforeItEnds) {
    const auto view = add({{100, 100}, {80, 80}});
    listen<UIPanGestureRecognizer>(*view);

    touches.press({110, 110});
    touches.move({118, 111});
    touches.release();

    EXPECT_EQ(recorder->take(), "pan:began(18,11) pan:changed(18,11) pan:ended/0");
}

TEST_F(Gestures, APanOfOneMovementWhoseChangeTakesItAwayDoesNotEnd) {
    const auto view = add({{100, 100}, {80, 80}});
    listen<UIPanGestureRecognizer>(*view);
    touches.press({110, 110});
    touches.move({118, 111});
    EXPECT_EQ(recorder->take(), "pan:began(18,11)");
    recorder->then = [&] { view->removeFromSuperview(); };

    touches.release();

    EXPECT_EQ(recorder->take(), "pan:changed(18,11) pan:cancelled/0");
}

TEST_F(Gestures, ATouchThatAnEndedPanHasNotGivesTheZeroPoint) {
    const auto view = add({{100, 100}, {80, 80}});
    const auto pan = listen<UIPanGestureRecognizer>(*view);
    touches.press({110, 110});
    touches.move({150, 150});
    touches.move({151, 150});
    std::size_t count = 9;
    CGPoint place{9, 9};
    recorder->then = [&] {
        count = pan->numberOfTouches();
        place = pan->locationOfTouch_inView(0, view.get());
    };

    touches.release();

    EXPECT_EQ(count, 0u);
    EXPECT_EQ(place, (CGPoint{0, 0}));
}

TEST_F(Gestures, LastWayThatComesWithTheEndIsNotLost) {
    const auto view = add({{0, 0}, {200, 200}});
    listen<UIPanGestureRecognizer>(*view);
    UIWindow& window = *scene.window();

    window.touchBegan(1, {10, 10}, 0);
    window.touchMoved(1, {50, 10}, 0.1);
    window.touchEnded(1, {60, 10}, 0.2);

    EXPECT_EQ(recorder->take(), "pan:began(50,10) pan:changed(60,10) pan:ended/0");
}

TEST_F(Gestures, CancelledTouchCancelsThePan) {
    const auto view = add({{0, 0}, {200, 200}});
    listen<UIPanGestureRecognizer>(*view);

    touches.press({10, 10});
    touches.move({50, 10});
    touches.cancel();

    EXPECT_EQ(recorder->take(), "pan:began(50,10) pan:cancelled/0");
}

TEST_F(Gestures, TranslationStartsAtTheRimOfTheSlop) {
    const auto view = add({{0, 0}, {200, 200}});
    const auto pan = listen<UIPanGestureRecognizer>(*view);

    touches.press({10, 10});
    touches.move({50, 10});
    EXPECT_EQ(seat::PanReader::of(*pan).translationInView(nullptr), (CGPoint{32, 0}));
    touches.move({60, 30});

    EXPECT_EQ(seat::PanReader::of(*pan).translationInView(nullptr), (CGPoint{42, 20}));
}

TEST_F(Gestures, VelocityIsThatOfTheLastTenthOfASecond) {
    const auto view = add({{0, 0}, {300, 300}});
    const auto pan = listen<UIPanGestureRecognizer>(*view);
    UIWindow& window = *scene.window();
    window.touchBegan(1, {0, 0}, 1);
    window.touchMoved(1, {200, 0}, 1.2);
    for (int i = 1; i <= 4; ++i) window.touchMoved(1, {200, 10.0 * i}, 1.2 + 0.05 * i);

    EXPECT_NEAR(seat::PanReader::of(*pan).velocityInView(nullptr).x, 0, 1e-6);
    EXPECT_NEAR(seat::PanReader::of(*pan).velocityInView(nullptr).y, 200, 1e-6);
}

TEST_F(Gestures, FingerThatRestedBeforeItLeftHasNoSpeed) {
    const auto view = add({{0, 0}, {300, 300}});
    const auto pan = listen<UIPanGestureRecognizer>(*view);
    UIWindow& window = *scene.window();
    window.touchBegan(1, {0, 0}, 1);
    window.touchMoved(1, {100, 0}, 1.1);
    CGPoint velocity{1, 1};
    recorder->then = [&] { velocity = seat::PanReader::of(*pan).velocityInView(nullptr); };

    window.touchEnded(1, {100, 0}, 1.5);

    EXPECT_EQ(velocity, (CGPoint{0, 0}));
}

TEST_F(Gestures, ViewHearsItsTouchesWhenNobodyClaimsThem) {
    touchedView({{100, 100}, {80, 80}});

    touches.press({110, 110});
    touches.move({300, 110});
    touches.release();

    EXPECT_EQ(recorder->take(), "view:began(10,10) view:moved(200,10) view:ended(200,10)");
}

TEST_F(Gestures, RecogniserThatBeginsCancelsTheViewsTouches) {
    const auto view = touchedView({{0, 0}, {200, 200}});
    listen<UIPanGestureRecognizer>(*view);

    touches.press({10, 10});
    touches.move({12, 10});
    touches.move({50, 10});
    touches.release();

    EXPECT_EQ(recorder->take(), "view:began(10,10) view:moved(12,10) view:cancelled(50,10) pan:began(50,10) "
                                "pan:changed(50,10) pan:ended/0");
}

TEST_F(Gestures, InnermostPanWins) {
    const auto outer = add({{0, 0}, {300, 300}});
    const auto inner = add({{50, 50}, {100, 100}}, outer);
    const auto around = Recorder::alloc()->init();
    outer->addGestureRecognizer(UIPanGestureRecognizer::alloc()->initWithTarget_action(around, "gesture:"));
    listen<UIPanGestureRecognizer>(*inner);

    touches.drag({60, 60}, {60, 160}, 2);

    EXPECT_EQ(recorder->take(), "pan:began(10,60) pan:changed(10,110) pan:ended/0");
    EXPECT_EQ(around->take(), "");
}

TEST_F(Gestures, TapAndPanOfOneViewExcludeEachOther) {
    const auto view = add({{0, 0}, {300, 300}});
    listen<UITapGestureRecognizer>(*view);
    listen<UIPanGestureRecognizer>(*view);

    touches.drag({60, 60}, {69, 60}, 1);
    EXPECT_EQ(recorder->take(), "pan:began(69,60) pan:changed(69,60) pan:ended/0");
    touches.tap({60, 60});
    EXPECT_EQ(recorder->take(), "tap:ended(60,60)");
}

TEST_F(Gestures, TapOnAControlIsNotTheTapOfTheViewAroundIt) {
    const auto outer = add({{0, 0}, {300, 300}});
    const auto control = add<UIControl>({{50, 50}, {100, 100}}, outer);
    control->addTarget_action_forControlEvents(recorder, "touchUpInside:", UIControlEventTouchUpInside);
    listen<UITapGestureRecognizer>(*outer);

    touches.tap(*control);
    EXPECT_EQ(recorder->take(), "up");
    touches.tap({10, 10});
    EXPECT_EQ(recorder->take(), "tap:ended(10,10)");
}

TEST_F(Gestures, DisabledRecogniserHearsNothing) {
    const auto view = add({{0, 0}, {300, 300}});
    const auto tap = listen<UITapGestureRecognizer>(*view);
    tap->setEnabled(false);

    touches.tap({10, 10});

    EXPECT_EQ(recorder->take(), "");
}

TEST_F(Gestures, DisablingARecogniserCancelsWhatHasBegun) {
    const auto view = add({{0, 0}, {300, 300}});
    const auto pan = listen<UIPanGestureRecognizer>(*view);
    touches.press({10, 10});
    touches.move({50, 10});

    pan->setEnabled(false);
    touches.move({90, 10});
    touches.release();

    EXPECT_EQ(recorder->take(), "pan:began(50,10) pan:cancelled/0");
}

TEST_F(Gestures, ViewThatLeavesMidGestureIsCancelledAndItsContainersGestureGoesOn) {
    const auto outer = add({{0, 0}, {300, 300}});
    const auto inner = touchedView({{0, 0}, {100, 100}}, "inner", outer);
    listen<UIPanGestureRecognizer>(*outer);
    touches.press({10, 10});
    touches.move({12, 10});

    inner->removeFromSuperview();
    touches.move({50, 10});
    touches.release();

    EXPECT_EQ(recorder->take(),
              "inner:began(10,10) inner:moved(12,10) inner:cancelled(12,10) pan:began(50,10) pan:changed(50,10) "
              "pan:ended/0");
}

TEST_F(Gestures, ViewMayBeFreedByItsOwnAction) {
    auto view = add({{0, 0}, {300, 300}});
    listen<UITapGestureRecognizer>(*view);
    recorder->then = [&] {
        view->removeFromSuperview();
        view.reset();
    };

    touches.tap({10, 10});

    EXPECT_EQ(recorder->take(), "tap:ended(10,10)");
    EXPECT_EQ(view, nullptr);
}

TEST_F(Gestures, ViewMayBeFreedWhileAFingerIsOnIt) {
    auto view = touchedView({{0, 0}, {300, 300}});
    listen<UIPanGestureRecognizer>(*view);
    touches.press({10, 10});
    touches.move({50, 10});
    const std::weak_ptr<UIView> weak = view;

    view->removeFromSuperview();
    view.reset();
    EXPECT_TRUE(weak.expired());
    touches.move({90, 10});
    touches.release();

    EXPECT_EQ(recorder->take(), "view:began(10,10) view:cancelled(50,10) pan:began(50,10) pan:cancelled/0");
}

TEST_F(Gestures, TargetThatIsGoneIsNotCalled) {
    const auto view = add({{0, 0}, {300, 300}});
    listen<UITapGestureRecognizer>(*view);
    const std::weak_ptr<Recorder> weak = recorder;

    recorder.reset();
    EXPECT_TRUE(weak.expired());
    touches.tap({10, 10});
    recorder = Recorder::alloc()->init();
    touches.tap({10, 10});

    EXPECT_EQ(recorder->take(), "");
}

TEST_F(Gestures, QuickTapsInOnePlaceAreCounted) {
    const auto view = add<TapCounter>({{0, 0}, {300, 300}});

    touches.tap({10, 10});
    touches.tap({12, 10});
    touches.tap({100, 100});
    clock.advance(0.5);
    touches.tap({100, 100});
    touches.drag({100, 100}, {150, 100}, 1, 0.1);

    EXPECT_EQ(view->counts, "1 2 1 1 0 ");
}
