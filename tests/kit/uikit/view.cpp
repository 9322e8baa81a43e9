#include "kit/dispatch/main_queue.h"
#include "kit/quartz/geometry.h"
#include "kit/uikit/autoresizing.h"
#include "platform/foundation/NSArray.h"
#include "tests/kit/uikit/SceneTest.h"

#include <thread>

namespace {

constexpr double quarterTurn = 1.5707963267948966;

class Views : public SceneTest {};

// Notes what it is told, and how often it is laid out and drawn.
class WatchedView : public UIView {
    NS_CLASS(WatchedView)
public:
    std::shared_ptr<WatchedView> initWithFrame(CGRect frame) {
        return UIView::initWithFrame(frame) ? self(this) : nullptr;
    }
    void layoutSubviews() override {
        ++layouts;
        if (duringLayout) duringLayout();
    }
    void subviewSizeChanged(UIView& subview) override {
        log += "resized:" + std::to_string(static_cast<int>(subview.frame().size.width)) + " ";
    }
    void willMoveToSuperview(const std::shared_ptr<UIView>& view) override { log += view ? "will:+ " : "will:- "; }
    void didMoveToSuperview() override { log += superview() ? "did:+ " : "did:- "; }
    void didMoveToWindow() override { log += window() ? "window:+ " : "window:- "; }

    int layouts = 0;
    std::function<void()> duringLayout;
    std::string log;
};
NS_CLASS_IMPLEMENTATION(WatchedView, UIView)

} // namespace

TEST_F(Views, FrameBoundsAndCentreFollowEachOther) {
    const auto view = UIView::alloc()->initWithFrame({{10, 20}, {30, 40}});
    EXPECT_EQ(view->bounds(), CGRectMake(0, 0, 30, 40));
    EXPECT_EQ(view->center(), CGPointMake(25, 40));

    view->setCenter({100, 100});
    EXPECT_EQ(view->frame(), CGRectMake(85, 80, 30, 40));
    view->setBounds({{5, 5}, {10, 10}});
    EXPECT_EQ(view->frame(), CGRectMake(95, 95, 10, 10));
}

TEST_F(Views, ArchiveGivesFrameAlphaHiddenAndColour) {
    const auto values = NSMutableDictionary::dictionary();
    values->setObject_forKey(
        NSArray::arrayWithObjects({NSNumber::numberWithInteger(1), NSNumber::numberWithDouble(2.5),
                                   NSNumber::numberWithInteger(3), NSNumber::numberWithInteger(4)}),
        "frame");
    values->setObject_forKey(NSNumber::numberWithDouble(0.5), "alpha");
    values->setObject_forKey(NSNumber::numberWithBool(true), "hidden");

    const auto view = UIView::alloc()->initWithCoder(NSCoder::coderWithDictionary(values));

    EXPECT_EQ(view->frame(), CGRectMake(1, 2.5, 3, 4));
    EXPECT_EQ(view->alpha(), 0.5);
    EXPECT_TRUE(view->isHidden());
    EXPECT_EQ(view->backgroundColor(), nullptr);
}

TEST_F(Views, AddingTakesAViewFromWhereItWas) {
    const auto first = add({{0, 0}, {10, 10}});
    const auto second = add({{0, 0}, {10, 10}});
    const auto child = add({{0, 0}, {5, 5}}, first);

    second->addSubview(child);

    EXPECT_TRUE(first->subviews().empty());
    EXPECT_EQ(child->superview(), second);
    EXPECT_EQ(child->layer()->superlayer(), second->layer().get());
}

TEST_F(Views, ViewCannotBecomeItsOwnAncestor) {
    const auto outer = add({{0, 0}, {10, 10}});
    const auto inner = add({{0, 0}, {5, 5}}, outer);

    inner->addSubview(outer);
    inner->addSubview(inner);
    inner->addSubview(nullptr);

    EXPECT_TRUE(inner->subviews().empty());
    EXPECT_EQ(outer->superview(), scene.window());
}

TEST_F(Views, LayersStandInTheOrderOfTheirViews) {
    const auto parent = add({{0, 0}, {10, 10}});
    const auto a = add({{0, 0}, {1, 1}}, parent);
    const auto plain = CALayer::layer();
    parent->layer()->addSublayer(plain);
    const auto b = add({{0, 0}, {1, 1}}, parent);
    const auto c = UIView::alloc()->initWithFrame(CGRectZero);

    parent->insertSubview_atIndex(c, 1);
    using Layers = std::vector<std::shared_ptr<CALayer>>;
    EXPECT_EQ(parent->layer()->sublayers(), (Layers{a->layer(), plain, c->layer(), b->layer()}));
    parent->bringSubviewToFront(a);
    EXPECT_EQ(parent->layer()->sublayers(), (Layers{plain, c->layer(), b->layer(), a->layer()}));
    parent->insertSubview_atIndex(b, 0);
    EXPECT_EQ(parent->subviews(), (std::vector{b, c, a}));
}

TEST_F(Views, MovesAreToldInOrder) {
    const auto view = add<WatchedView>({{0, 0}, {10, 10}});
    EXPECT_EQ(view->log, "will:+ did:+ window:+ ");
    view->log.clear();

    view->removeFromSuperview();

    EXPECT_EQ(view->log, "will:- did:- window:- ");
}

TEST_F(Views, SuperviewThatDiesLeavesNoTrace) {
    auto parent = UIView::alloc()->initWithFrame({{0, 0}, {10, 10}});
    const auto child = UIView::alloc()->initWithFrame({{0, 0}, {5, 5}});
    parent->addSubview(child);

    parent.reset();

    EXPECT_EQ(child->superview(), nullptr);
    EXPECT_EQ(child->layer()->superlayer(), nullptr);
}

TEST_F(Views, LayerMayOutliveItsView) {
    auto view = UIView::alloc()->initWithFrame({{0, 0}, {10, 10}});
    const auto layer = view->layer();
    EXPECT_EQ(layer->delegate(), view.get());

    view.reset();

    EXPECT_EQ(layer->delegate(), nullptr);
}

TEST_F(Views, ChangedSizeLeadsToOneLayoutBeforeTheNextFrame) {
    const auto view = add<WatchedView>({{0, 0}, {10, 10}});
    scene.prepareFrame();
    EXPECT_EQ(view->layouts, 1);

    view->setFrame({{0, 0}, {20, 10}});
    view->setFrame({{0, 0}, {30, 10}});
    view->setNeedsLayout();
    EXPECT_EQ(view->layouts, 1);
    scene.prepareFrame();
    EXPECT_EQ(view->layouts, 2);

    view->setFrame({{5, 5}, {30, 10}});
    scene.prepareFrame();
    EXPECT_EQ(view->layouts, 2);
}

TEST_F(Views, LayoutIfNeededReachesWhatIsBelow) {
    const auto parent = add<WatchedView>({{0, 0}, {10, 10}});
    const auto child = add<WatchedView>({{0, 0}, {10, 10}}, parent);
    scene.prepareFrame();
    child->setNeedsLayout();

    parent->layoutIfNeeded();

    EXPECT_EQ(parent->layouts, 1);
    EXPECT_EQ(child->layouts, 2);
}

TEST_F(Views, ViewThatAlwaysWantsLayoutDoesNotHang) {
    const auto view = add<WatchedView>({{0, 0}, {10, 10}});
    view->duringLayout = [&] { view->setNeedsLayout(); };

    scene.prepareFrame();

    EXPECT_GT(view->layouts, 0);
    EXPECT_LT(view->layouts, 20);
}

TEST_F(Views, SuperviewHearsOfANewSize) {
    const auto parent = add<WatchedView>({{0, 0}, {100, 100}});
    const auto child = add({{0, 0}, {10, 10}}, parent);
    parent->log.clear();

    child->setCenter({50, 50});
    EXPECT_EQ(parent->log, "");
    child->setFrame({{0, 0}, {11, 10}});
    EXPECT_EQ(parent->log, "resized:11 ");
}

TEST_F(Views, MaskSaysWhatFollowsTheSuperview) {
    const auto parent = add({{0, 0}, {100, 100}});
    const auto filling = add({{0, 0}, {100, 100}}, parent);
    filling->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    const auto atRight = add({{80, 10}, {10, 10}}, parent);
    atRight->setAutoresizingMask(UIViewAutoresizingFlexibleLeftMargin);
    const auto centred = add({{40, 40}, {20, 20}}, parent);
    centred->setAutoresizingMask(UIViewAutoresizingFlexibleLeftMargin | UIViewAutoresizingFlexibleRightMargin);
    const auto fixed = add({{1, 2}, {3, 4}}, parent);
    const auto hidden = add({{0, 0}, {100, 20}}, parent);
    hidden->setAutoresizingMask(UIViewAutoresizingFlexibleWidth);
    hidden->setHidden(true);

    parent->setFrame({{0, 0}, {200, 150}});

    EXPECT_EQ(hidden->frame(), CGRectMake(0, 0, 200, 20));
    EXPECT_EQ(filling->frame(), CGRectMake(0, 0, 200, 150));
    EXPECT_EQ(atRight->frame(), CGRectMake(180, 10, 10, 10));
    EXPECT_EQ(centred->frame(), CGRectMake(90, 40, 20, 20));
    EXPECT_EQ(fixed->frame(), CGRectMake(1, 2, 3, 4));
}

TEST_F(Views, FlexiblePartsShareInProportionOrEvenly) {
    const unsigned all =
        UIViewAutoresizingFlexibleLeftMargin | UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleRightMargin;
    EXPECT_EQ(autoresizedFrame({{10, 0}, {20, 5}}, all, {100, 5}, {200, 5}), CGRectMake(20, 0, 40, 5));
    EXPECT_EQ(autoresizedFrame({{0, 0}, {0, 5}}, all, {0, 5}, {30, 5}), CGRectMake(10, 0, 10, 5));
    EXPECT_EQ(autoresizedFrame({{10, 0}, {20, 5}}, UIViewAutoresizingFlexibleWidth, {100, 5}, {50, 5}),
              CGRectMake(10, 0, 0, 5));
}

TEST_F(Views, ConstraintsAreNilUntilOneIsAdded) {
    const auto view = UIView::alloc()->init();
    EXPECT_EQ(view->constraints(), nullptr);

    view->addConstraint(NSLayoutConstraint::alloc());

    ASSERT_NE(view->constraints(), nullptr);
    EXPECT_EQ(view->constraints()->size(), 1u);
}

TEST_F(Views, PointsConvertThroughTransformsAndScrolledBounds) {
    const auto outer = add({{100, 100}, {80, 80}});
    outer->setBounds({{0, 30}, {80, 80}});
    const auto inner = add({{10, 40}, {20, 20}}, outer);
    EXPECT_EQ(inner->convertPoint_toView({1, 2}, nullptr), CGPointMake(111, 112));
    EXPECT_EQ(inner->convertPoint_fromView({111, 112}, nullptr), CGPointMake(1, 2));

    inner->setTransform(CGAffineTransformMakeRotation(quarterTurn));
    const CGPoint turned = inner->convertPoint_toView({20, 0}, nullptr);
    EXPECT_NEAR(turned.x, 130, 1e-9);
    EXPECT_NEAR(turned.y, 130, 1e-9);
    inner->setTransform(CGAffineTransformMakeScale(2, 2));
    EXPECT_EQ(inner->convertRect_toView(inner->bounds(), outer.get()), CGRectMake(0, 30, 40, 40));
}

TEST_F(Views, PointsOfAnUntransformedViewAreNotRounded) {
    const auto view = add({{0.1, 0.3}, {268.7, 31.1}});

    EXPECT_EQ(view->convertPoint_fromView({48.1, 16.3}, nullptr), CGPointMake(48.1 - 0.1, 16.3 - 0.3));
}

TEST_F(Views, FrontmostViewIsHit) {
    add({{0, 0}, {100, 100}});
    const auto front = add({{50, 50}, {100, 100}});

    EXPECT_EQ(scene.window()->hitTest_withEvent({60, 60}, nullptr), front);
    EXPECT_EQ(scene.window()->hitTest_withEvent({300, 300}, nullptr), scene.window());
    EXPECT_EQ(scene.window()->hitTest_withEvent({320, 480}, nullptr), nullptr);
}

TEST_F(Views, HiddenFadedAndPassiveViewsAreNotHit) {
    const auto parent = add({{0, 0}, {100, 100}});
    const auto child = add({{0, 0}, {50, 50}}, parent);
    const auto hit = [&] { return scene.window()->hitTest_withEvent({10, 10}, nullptr); };
    EXPECT_EQ(hit(), child);

    child->setAlpha(0.009);
    EXPECT_EQ(hit(), parent);
    child->setAlpha(0.01);
    EXPECT_EQ(hit(), child);
    child->setHidden(true);
    EXPECT_EQ(hit(), parent);
    child->setHidden(false);
    parent->setUserInteractionEnabled(false);
    EXPECT_EQ(hit(), scene.window());
}

TEST_F(Views, WhatReachesOutOfItsSuperviewIsNotHitThere) {
    const auto parent = add({{0, 0}, {100, 100}});
    add({{50, 50}, {100, 100}}, parent);

    EXPECT_EQ(scene.window()->hitTest_withEvent({120, 120}, nullptr), scene.window());
}

TEST_F(Views, SizeToFitKeepsTheOrigin) {
    const auto toggle = UISwitch::alloc()->init();
    toggle->setFrame({{7, 8}, {500, 500}});

    EXPECT_EQ(toggle->frame(), CGRectMake(7, 8, 51, 31));
    EXPECT_EQ(toggle->intrinsicContentSize(), CGSizeMake(51, 31));
    EXPECT_EQ(UIView::alloc()->init()->intrinsicContentSize(),
              CGSizeMake(UIViewNoIntrinsicMetric, UIViewNoIntrinsicMetric));
}

TEST_F(Views, ValuesChangeAtOnceAndTheCompletionComesAtTheEnd) {
    const auto view = add({{0, 0}, {10, 10}});
    view->setBackgroundColor(UIColor::redColor());
    scene.prepareFrame();
    std::string log;

    UIView::animateWithDuration_animations_completion(
        1, [&] { view->setAlpha(0); }, [&](bool finished) { log = finished ? "finished" : "cut"; });

    EXPECT_EQ(view->alpha(), 0);
    EXPECT_TRUE(scene.isAnimating());
    touches.wait(0.5);
    EXPECT_EQ(log, "");
    EXPECT_TRUE(scene.isAnimating());
    touches.wait(0.6);
    EXPECT_EQ(log, "finished");
    EXPECT_FALSE(scene.isAnimating());
}

TEST_F(Views, LastReleaseOnAWorkerDestroysOnTheMainThread) {
    auto view = UIView::alloc()->initWithFrame({{0, 0}, {10, 10}});
    const std::weak_ptr<UIView> weak = view;
    std::thread([moved = std::move(view)]() mutable { moved.reset(); }).join();
    EXPECT_TRUE(weak.expired());

    EXPECT_FALSE(seat::mainQueueIsEmpty());
    seat::drainMainQueue();
    EXPECT_TRUE(seat::mainQueueIsEmpty());
}
