#include "kit/quartz/geometry.h"
#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/damage.h"
#include "kit/uikit/snapshot.h"
#include "tests/kit/uikit/SceneTest.h"

namespace {

class Scenes : public SceneTest {
protected:
    std::uint32_t pixel(std::size_t x, std::size_t y) {
        const auto image = seat::snapshot(scene);
        return image->pixels[y * image->width + x];
    }
};

// Never done with its layout.
class RestlessView final : public UIView {
    NS_CLASS(RestlessView)
    std::shared_ptr<RestlessView> initWithFrame(CGRect frame) {
        return UIView::initWithFrame(frame) ? self(this) : nullptr;
    }
    void layoutSubviews() override {
        ++layouts;
        setNeedsLayout();
    }
    int layouts = 0;
};
NS_CLASS_IMPLEMENTATION(RestlessView, UIView)

std::string written(const std::vector<CGRect>& rects) {
    std::string text;
    for (const CGRect& rect : rects) text += (text.empty() ? "" : " + ") + ::written(rect);
    return text;
}

} // namespace

TEST_F(Scenes, FrameIsAskedForOnceAndDamageIsWhatChanged) {
    const auto view = add({{10, 20}, {30, 40}});
    view->setBackgroundColor(UIColor::redColor());
    EXPECT_FALSE(scene.prepareFrame().empty());
    EXPECT_EQ(written(scene.prepareFrame()), "");
    int asked = 0;
    scene.setNeedsFrame([&] { ++asked; });
    EXPECT_EQ(asked, 0);

    view->setBackgroundColor(UIColor::blueColor());
    view->setNeedsDisplay();
    view->setNeedsLayout();

    EXPECT_EQ(asked, 1);
    EXPECT_EQ(written(scene.prepareFrame()), "10,20 30x40");
    EXPECT_EQ(written(scene.prepareFrame()), "");
    view->setBackgroundColor(UIColor::redColor());
    EXPECT_EQ(asked, 2);
}

TEST_F(Scenes, FrameThatIsWantedAlreadyIsAskedForAsSoonAsSomebodyCanBeAsked) {
    scene.prepareFrame();
    scene.window()->setNeedsLayout();
    int asked = 0;

    scene.setNeedsFrame([&] { ++asked; });

    EXPECT_EQ(asked, 1);
    scene.prepareFrame();
    scene.setNeedsFrame([&] { asked += 10; });
    EXPECT_EQ(asked, 1) << "none is wanted";
}

TEST_F(Scenes, FrameIsAskedForAgainWhenWhoeverIsToldOfOneChangesTheLayout) {
    const auto view = add<UISwitch>({{10, 20}, {51, 31}});
    scene.prepareFrame();
    scene.accessibility().setListener(
        [&](seat::AccessibilityIdentity, seat::AccessibilityChange, int) { view->setNeedsLayout(); });
    scene.prepareFrame();
    int asked = 0;
    scene.setNeedsFrame([&] { ++asked; });
    view->setOn_animated(true, /*animated=*/false);
    asked = 0;

    scene.prepareFrame();

    EXPECT_EQ(asked, 1);
    scene.accessibility().setListener(nullptr);
}

TEST_F(Scenes, ViewThatAsksForLayoutWhileItIsLaidOutGetsNoFrameForIt) {
    const auto restless = add<RestlessView>({{0, 0}, {10, 10}});
    int asked = 0;
    scene.setNeedsFrame([&] { ++asked; });
    scene.prepareFrame();
    asked = 0;

    scene.prepareFrame();

    EXPECT_EQ(asked, 0);
    EXPECT_GT(restless->layouts, 0);
}

TEST_F(Scenes, DamageStaysShortAndJoinsWhatIsCheaperInOne) {
    const CGRect bounds{{0, 0}, {320, 480}};
    std::vector<CGRect> damage;
    for (const CGRect nothing : {CGRect{{5, 5}, {0, 10}}, CGRect{{5, 5}, {10, 0}}, CGRect{{400, 5}, {10, 10}}})
        seat::addDamage(damage, nothing, bounds);
    EXPECT_TRUE(damage.empty());
    seat::addDamage(damage, {{0, 0}, {10, 10}}, bounds);
    seat::addDamage(damage, {{5, 0}, {10, 10}}, bounds);
    EXPECT_EQ(written(damage), "0,0 15x10");
    seat::addDamage(damage, {{300, 400}, {100, 100}}, bounds);
    EXPECT_EQ(written(damage), "0,0 15x10 + 300,400 20x80");
    seat::addDamage(damage, {{500, 0}, {10, 10}}, bounds);
    EXPECT_EQ(damage.size(), 2u);

    for (int i = 0; i < 100; ++i) seat::addDamage(damage, {{i * 3.0, i * 4.0}, {1, 1}}, bounds);
    EXPECT_LE(damage.size(), 16u);
}

TEST_F(Scenes, SnapshotShowsTheWindowAtItsScale) {
    scene.resize({100, 50}, 2);
    EXPECT_EQ(UIScreen::mainScreen()->scale(), 2);
    const auto view = add({{10, 10}, {5, 5}});
    view->setBackgroundColor(UIColor::colorWithRed_green_blue_alpha(1, 0, 0, 1));

    const auto image = seat::snapshot(scene);

    EXPECT_EQ(image->width, 200u);
    EXPECT_EQ(image->height, 100u);
    EXPECT_EQ(pixel(20, 20), 0xffff0000u);
    EXPECT_EQ(pixel(29, 29), 0xffff0000u);
    EXPECT_EQ(pixel(30, 30), 0xffffffffu);
    EXPECT_EQ(pixel(19, 20), 0xffffffffu);
}

TEST_F(Scenes, ResizeReachesTheViews) {
    const auto view = add({{0, 0}, {320, 480}});
    view->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);

    scene.resize({375, 667}, 1);

    EXPECT_EQ(view->frame(), CGRectMake(0, 0, 375, 667));
    EXPECT_EQ(written(scene.prepareFrame()), "0,0 375x667");
}

TEST_F(Scenes, WindowMayOutliveItsScene) {
    std::shared_ptr<UIWindow> window;
    {
        seat::WindowScene other({50, 50}, 1);
        window = other.window();
    }
    window->setNeedsLayout();
    window->setBackgroundColor(UIColor::redColor());
    window->touchBegan(1, {10, 10}, 0);
    window->touchEnded(1, {10, 10}, 0);
    SUCCEED();
}

TEST_F(Scenes, HalfWayThroughAnAnimationHalfIsDrawn) {
    const auto view = add({{0, 0}, {10, 10}});
    view->setBackgroundColor(UIColor::blackColor());
    scene.prepareFrame();

    UIView::animateWithDuration_animations(1, [&] { view->setFrame({{100, 0}, {10, 10}}); });
    EXPECT_EQ(view->frame().origin.x, 100);
    scene.prepareFrame();
    EXPECT_EQ(pixel(5, 5), 0xff000000u);
    clock.advance(0.5);

    EXPECT_EQ(pixel(5, 5), 0xffffffffu);
    EXPECT_EQ(pixel(55, 5), 0xff000000u);
    EXPECT_EQ(pixel(105, 5), 0xffffffffu);
    clock.advance(0.6);
    EXPECT_EQ(pixel(105, 5), 0xff000000u);
    EXPECT_FALSE(scene.isAnimating());
}
