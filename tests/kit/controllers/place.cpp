// Where screens stand in windows of all shapes.

#include "tests/kit/controllers/screens.h"

namespace {

class Place : public NavigationTest {
protected:
    CGRect shown(const UIView& view) { return view.convertRect_toView(view.bounds(), nullptr); }
};

TEST_F(Place, AScreenGetsAPhonesShapeInTheMiddleOfAWideWindow) {
    scene.resize({1024, 768}, 1);
    touches.settle();
    const auto b = make("b");
    push(b);

    EXPECT_EQ(written(b->view()->frame()), "256,0 512x768");
}

TEST_F(Place, AScreenFillsAWindowOfAPhonesShape) {
    scene.resize({375, 667}, 2);
    touches.settle();
    const auto b = make("b");
    push(b);

    EXPECT_EQ(written(b->view()->frame()), "0,0 375x667");
}

TEST_F(Place, AScreenIsNeverNarrowerThanTheSmallestPhone) {
    scene.resize({700, 480}, 1);
    touches.settle();
    const auto b = make("b");
    push(b);

    EXPECT_EQ(written(b->view()->frame()), "190,0 320x480");
}

TEST_F(Place, AScreenKeepsItsSizeAndIsZoomedBelowTheBar) {
    const auto b = make("b");
    const auto part = UIView::alloc()->initWithFrame({{0, 44}, {320, 436}});
    b->view()->addSubview(part);
    push(b);

    scene.resize({1024, 916}, 1);
    touches.settle();
    EXPECT_EQ(written(b->view()->bounds()), "0,0 320x480");
    EXPECT_EQ(shown(*part), CGRectMake(192, 44, 640, 872));

    scene.resize({320, 262}, 1);
    touches.settle();
    EXPECT_EQ(shown(*part), CGRectMake(80, 44, 160, 218));

    scene.resize({320, 480}, 1);
    touches.settle();
    EXPECT_EQ(shown(*part), CGRectMake(0, 44, 320, 436));
    EXPECT_EQ(b->view()->transform(), CGAffineTransformIdentity);
}

TEST_F(Place, TouchesReachWhatIsZoomed) {
    const auto b = make("b");
    const auto toggle = UISwitch::alloc()->initWithFrame({{100, 200}, {51, 31}});
    b->view()->addSubview(toggle);
    push(b);
    scene.resize({640, 916}, 1);
    touches.settle();

    touches.tap({250, 44 + 2 * (215 - 44)});

    EXPECT_TRUE(toggle->isOn());
}

TEST_F(Place, AScreenThatWasCoveredWhileTheWindowChangedIsZoomedWhenItComesBack) {
    push(make("b"));
    scene.resize({640, 916}, 1);
    touches.settle();

    navigation->popViewControllerAnimated(/*animated=*/true);
    touches.settle();

    EXPECT_EQ(written(a->view()->bounds()), "0,0 320x480");
    EXPECT_EQ(written(a->view()->frame()), "0,-44 640x960");
}

TEST_F(Place, AListFillsTheWindow) {
    const auto screen = UITableViewController::alloc()->initWithStyle(UITableViewStyleGrouped);
    push(screen);
    scene.resize({1024, 768}, 1);
    touches.settle();

    EXPECT_EQ(written(screen->view()->frame()), "0,0 1024x768");
}

} // namespace
