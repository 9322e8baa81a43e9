#include "kit/dispatch/ManualClock.h"
#include "kit/dispatch/main_queue.h"
#include "kit/quartz/animation.h"
#include "kit/quartz/geometry.h"
#include "platform/foundation/time.h"
#include "platform/quartz/CATransaction.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace {

class LayerAnimation : public ::testing::Test {
protected:
    void TearDown() override { seat::drainMainQueue(); }

    bool advance(double seconds) {
        clock.advance(seconds);
        return seat::advanceAnimations(platform::CACurrentMediaTime());
    }
    // The left edge of the red layer on screen.
    int shownLeft() {
        test::Surface surface(100, 100);
        surface.render(*root.layer, 1);
        for (int x = 0; x < 100; ++x)
            if (surface.at(x, 5) == test::red) return x;
        return -1;
    }
    int shownRed() {
        test::Surface surface(100, 100, test::black);
        surface.render(*root.layer, 1);
        return test::redOf(surface.at(5, 5));
    }

    seat::ManualClock clock;
    test::HostedRoot root;
    std::shared_ptr<CALayer> layer = root.add({{0, 0}, {10, 10}}, test::rgb(1, 0, 0));
};

TEST_F(LayerAnimation, ModelChangesAtOnceAndWhatIsDrawnFollows) {
    seat::runAnimationBlock(0.2, [&] { layer->setPosition({85, 5}); });
    EXPECT_EQ(layer->position(), CGPointMake(85, 5));
    EXPECT_EQ(layer->frame(), CGRectMake(80, 0, 10, 10));
    EXPECT_EQ(shownLeft(), 0);
    EXPECT_TRUE(advance(0.1));
    EXPECT_EQ(shownLeft(), 40);
    EXPECT_FALSE(advance(0.1));
    EXPECT_EQ(shownLeft(), 80);
}

TEST_F(LayerAnimation, BeginsAndEndsSlowly) {
    seat::runAnimationBlock(1, [&] { layer->setPosition({85, 5}); });
    advance(0.1);
    const int early = shownLeft();
    EXPECT_GT(early, 0);
    EXPECT_LT(early, 4);
    advance(0.8);
    EXPECT_EQ(shownLeft(), 80 - early);
}

TEST_F(LayerAnimation, EveryMovablePropertyGoesHalfWayInHalfTheTime) {
    layer->setBackgroundColor(test::rgb(0, 0, 0));
    layer->setBorderColor(test::rgb(0, 0, 0));
    seat::runAnimationBlock(1, [&] {
        layer->setBounds({{0, 0}, {30, 30}});
        layer->setTransform(CATransform3DMakeTranslation(20, 20, 0));
        layer->setOpacity(0.5);
        layer->setBackgroundColor(test::rgb(1, 1, 1));
        layer->setBorderColor(test::rgb(0, 1, 0));
        layer->setBorderWidth(4);
    });
    advance(0.5);
    test::Surface surface(100, 100, test::black);
    surface.render(*root.layer, 1);
    // 20 by 20 round (5, 5) + (10, 10), its border 2 wide; grey at opacity 0.75.
    EXPECT_EQ(test::redOf(surface.at(15, 15)), 96);
    EXPECT_EQ(test::greenOf(surface.at(5, 15)), 96);
    EXPECT_EQ(test::redOf(surface.at(6, 15)), 0);
    EXPECT_EQ(test::redOf(surface.at(7, 15)), 96);
    EXPECT_EQ(surface.at(4, 15), test::black);
    EXPECT_EQ(surface.at(25, 15), test::black);
}

TEST_F(LayerAnimation, LaterChangeStartsFromWhatIsShown) {
    seat::runAnimationBlock(0.2, [&] { layer->setPosition({85, 5}); });
    advance(0.1);
    seat::runAnimationBlock(0.2, [&] { layer->setPosition({5, 5}); });
    EXPECT_EQ(shownLeft(), 40);
    advance(0.1);
    EXPECT_EQ(shownLeft(), 20);
    advance(0.1);
    EXPECT_EQ(shownLeft(), 0);
}

TEST_F(LayerAnimation, SameValueInABlockMovesNothingWhenNothingMoves) {
    seat::runAnimationBlock(0.2, [&] { layer->setPosition({5, 5}); });
    EXPECT_FALSE(seat::animationsAreRunning());
    EXPECT_EQ(root.host.starts, 0);
}

TEST_F(LayerAnimation, ChangeOutsideABlockIsShownAtOnceAlsoWhenTheValueIsTheModels) {
    seat::runAnimationBlock(0.2, [&] { layer->setPosition({85, 5}); });
    advance(0.1);
    layer->setPosition({85, 5});
    EXPECT_EQ(shownLeft(), 80);
    EXPECT_FALSE(seat::animationsAreRunning());
}

TEST_F(LayerAnimation, ChangeOfAnotherPropertyLetsTheMovementGoOn) {
    seat::runAnimationBlock(0.2, [&] { layer->setPosition({85, 5}); });
    advance(0.1);
    layer->setCornerRadius(0.5);
    layer->setBackgroundColor(test::rgb(0, 0, 1));
    layer->setBackgroundColor(test::rgb(1, 0, 0));
    EXPECT_EQ(shownLeft(), 40);
    EXPECT_TRUE(seat::animationsAreRunning());
}

TEST_F(LayerAnimation, DisabledActionsTakeEffectAtOnce) {
    seat::runAnimationBlock(0.2, [&] {
        CATransaction::begin();
        CATransaction::setDisableActions(true);
        layer->setPosition({85, 5});
        CATransaction::commit();
        layer->setOpacity(0.5);
    });
    EXPECT_FALSE(seat::animationsAreEnabled());
    EXPECT_EQ(shownRed(), 0);
    advance(0.2);
    EXPECT_EQ(layer->opacity(), 0.5);
}

TEST_F(LayerAnimation, DurationOfNothingAppliesAtOnce) {
    for (const double duration : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        layer->setPosition({5, 5});
        std::optional<bool> finished;
        seat::runAnimationBlock(
            duration,
            [&] {
                layer->setPosition({85, 5});
            },
            [&](bool f) { finished = f; });
        EXPECT_EQ(shownLeft(), 80);
        EXPECT_FALSE(seat::animationsAreRunning());
        seat::drainMainQueue();
        EXPECT_EQ(finished, true);
    }
}

TEST_F(LayerAnimation, CompletionComesOnceFromTheMainQueueWhenAllHasEnded) {
    const auto other = root.add({{0, 50}, {10, 10}}, test::rgb(0, 0, 1));
    int calls = 0;
    bool finished = false;
    seat::runAnimationBlock(
        0.2,
        [&] {
            layer->setPosition({85, 5});
            layer->setOpacity(0.5);
            other->setPosition({85, 55});
        },
        [&](bool f) {
            ++calls;
            finished = f;
        });
    advance(0.19);
    seat::drainMainQueue();
    EXPECT_EQ(calls, 0);
    advance(0.01);
    EXPECT_EQ(calls, 0);
    seat::drainMainQueue();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(finished);
    advance(1);
    seat::drainMainQueue();
    EXPECT_EQ(calls, 1);
}

TEST_F(LayerAnimation, CompletionSaysWhenAMovementWasCutShort) {
    std::vector<bool> finished;
    const auto note = [&](bool f) { finished.push_back(f); };
    seat::runAnimationBlock(
        0.2,
        [&] {
            layer->setPosition({85, 5});
        },
        note);
    seat::runAnimationBlock(
        0.2,
        [&] {
            layer->setPosition({45, 5});
        },
        note);
    seat::drainMainQueue();
    EXPECT_EQ(finished, std::vector{false});
    advance(0.2);
    seat::drainMainQueue();
    EXPECT_EQ(finished, (std::vector{false, true}));
}

TEST_F(LayerAnimation, RemovedLayersMovementIsCutShort) {
    std::optional<bool> finished;
    const auto inner = test::layerWithFrame({{0, 0}, {1, 1}});
    layer->addSublayer(inner);
    seat::runAnimationBlock(
        0.2, [&] { inner->setOpacity(0); }, [&](bool f) { finished = f; });
    layer->removeFromSuperlayer();
    EXPECT_FALSE(seat::animationsAreRunning());
    seat::drainMainQueue();
    EXPECT_EQ(finished, false);
}

TEST_F(LayerAnimation, LayerMovedWithinItsTreeGoesOnMoving) {
    seat::runAnimationBlock(0.2, [&] { layer->setPosition({85, 5}); });
    root.layer->insertSublayer_atIndex(layer, 0);
    advance(0.1);
    EXPECT_EQ(shownLeft(), 40);
}

TEST_F(LayerAnimation, LayerThatDiesWhileItMovesIsForgotten) {
    seat::runAnimationBlock(0.2, [&] { layer->setPosition({85, 5}); });
    layer->removeFromSuperlayer();
    layer.reset();
    EXPECT_FALSE(advance(0.1));
}

TEST_F(LayerAnimation, DetachedLayersChangeAtOnceAndCompleteAsFinished) {
    const auto detached = CALayer::layer();
    std::optional<bool> finished;
    seat::runAnimationBlock(
        0.2, [&] { detached->setOpacity(0.5); }, [&](bool f) { finished = f; });
    EXPECT_FALSE(seat::animationsAreRunning());
    seat::drainMainQueue();
    EXPECT_EQ(finished, true);
}

TEST_F(LayerAnimation, BlocksNestEachWithItsOwnDuration) {
    const auto other = root.add({{0, 50}, {10, 10}}, test::rgb(0, 0, 1));
    seat::runAnimationBlock(1, [&] {
        seat::runAnimationBlock(0.1, [&] { other->setPosition({95, 55}); });
        layer->setPosition({85, 5});
    });
    EXPECT_TRUE(advance(0.1));
    test::Surface surface(100, 100);
    surface.render(*root.layer, 1);
    EXPECT_EQ(surface.at(99, 55), test::blue);
    advance(0.4);
    EXPECT_EQ(shownLeft(), 40);
}

TEST_F(LayerAnimation, HostHearsOfTheStartAndOfEachStepsOldAndNewPlace) {
    seat::runAnimationBlock(0.2, [&] { layer->setPosition({85, 5}); });
    EXPECT_EQ(root.host.starts, 1);
    EXPECT_TRUE(root.host.repaints.empty());
    advance(0.1);
    EXPECT_EQ(root.host.repaints, (std::vector<CGRect>{{{0, 0}, {10, 10}}, {{40, 0}, {10, 10}}}));
    root.host.repaints.clear();
    advance(0.1);
    EXPECT_EQ(root.host.repaints, (std::vector<CGRect>{{{40, 0}, {10, 10}}, {{80, 0}, {10, 10}}}));
    root.host.repaints.clear();
    advance(0.1);
    EXPECT_TRUE(root.host.repaints.empty());
}

TEST_F(LayerAnimation, ContentsAndHidingDoNotMove) {
    seat::runAnimationBlock(1, [&] { layer->setHidden(true); });
    EXPECT_EQ(shownLeft(), -1);
    EXPECT_FALSE(seat::animationsAreRunning());
}

TEST_F(LayerAnimation, ColourThatWasNoneFadesIn) {
    layer->setBackgroundColor(nullptr);
    seat::runAnimationBlock(1, [&] { layer->setBackgroundColor(test::rgb(1, 0, 0)); });
    EXPECT_EQ(shownRed(), 0);
    advance(0.5);
    EXPECT_EQ(shownRed(), 128);
}

} // namespace
