// Where screens stand in windows of all shapes.

#include "kit/quartz/geometry.h"
#include "tests/kit/controllers/screens.h"

namespace {

class Place : public NavigationTest {
protected:
    CGRect shown(const UIView& view) { return view.convertRect_toView(view.bounds(), nullptr); }
    std::shared_ptr<LoggedScreen> pushInto(CGSize window) {
        scene.resize(window, 1);
        touches.settle();
        const auto screen = make("b");
        push(screen);
        return screen;
    }
};

TEST_F(Place, AScreenGetsAPhonesShapeInTheMiddleOfAWideWindow) {
    const auto b = pushInto({1024, 700});

    EXPECT_EQ(shown(*b->view()), CGRectMake(320, 0, 384, 700));
}

TEST_F(Place, AScreenFillsAWindowOfAPhonesShape) {
    const auto b = pushInto({375, 667});

    EXPECT_EQ(shown(*b->view()), CGRectMake(0, 0, 375, 667));
}

TEST_F(Place, AScreenIsNoHigherThanAPhoneInAHighWindow) {
    const auto b = pushInto({375, 1200});

    EXPECT_EQ(shown(*b->view()), CGRectMake(0, 0, 375, 750));
}

TEST_F(Place, AScreenIsScrolledInALowWindowWithRoomForTheFingerBesideIt) {
    const auto b = pushInto({320, 240});
    const auto part = UIView::alloc()->initWithFrame({{0, 380}, {272, 28}});
    b->view()->addSubview(part);
    EXPECT_EQ(shown(*b->view()), CGRectMake(24, 0, 272, 408));

    touches.drag({10, 200}, {10, 10});
    touches.settle();

    EXPECT_EQ(shown(*part), CGRectMake(24, 212, 272, 28)) << "at the window's lower edge";
}

TEST_F(Place, AScreenThatIsScrolledHasAPhonesWidthWhateverTheWindowsScale) {
    const auto widthIn = [this](double window) { return pushInto({window, 400})->view()->bounds().size.width; };

    EXPECT_EQ(widthIn(380), 320);
    EXPECT_EQ(widthIn(440 / 1.1), 352); // which a double holds as a little less than 400
    EXPECT_EQ(widthIn(2000), 384);
}

TEST_F(Place, AScreenIsScrolledBelowTheBar) {
    const auto b = pushInto({720, 360});
    const auto part = UIView::alloc()->initWithFrame({{0, 44}, {384, 100}});
    b->view()->addSubview(part);
    EXPECT_EQ(shown(*part), CGRectMake(168, 44, 384, 100));

    touches.wheel({360, 200}, {0, 1000});
    touches.settle();
    EXPECT_EQ(shown(*b->view()), CGRectMake(168, 360 - 576, 384, 576));

    touches.wheel({360, 200}, {0, -1000});
    touches.settle();
    EXPECT_EQ(shown(*part), CGRectMake(168, 44, 384, 100));
}

TEST_F(Place, AScreenKeepsItsSizeInALargerWindow) {
    const auto b = make("b");
    push(b);

    scene.resize({1024, 916}, 1);
    touches.settle();

    EXPECT_EQ(shown(*b->view()), CGRectMake(352, 0, 320, 480));
}

TEST_F(Place, AScreenIsMadeSmallerBelowTheBarInANarrowerWindow) {
    const auto b = pushInto({384, 800});
    const auto part = UIView::alloc()->initWithFrame({{0, 44}, {384, 400}});
    b->view()->addSubview(part);

    scene.resize({192, 800}, 1);
    touches.settle();
    EXPECT_EQ(written(b->view()->bounds()), "0,0 384x768");
    EXPECT_EQ(shown(*part), CGRectMake(0, 44, 192, 200));

    scene.resize({384, 800}, 1);
    touches.settle();
    EXPECT_EQ(shown(*part), CGRectMake(0, 44, 384, 400));
    EXPECT_EQ(b->view()->transform(), CGAffineTransformIdentity);
}

TEST_F(Place, TouchesReachWhatIsMadeSmaller) {
    const auto b = pushInto({384, 800});
    const auto toggle = UISwitch::alloc()->initWithFrame({{100, 200}, {51, 31}});
    b->view()->addSubview(toggle);
    scene.resize({192, 800}, 1);
    touches.settle();

    touches.tap({62, 44 + (215 - 44) / 2.0});

    EXPECT_TRUE(toggle->isOn());
}

TEST_F(Place, AScreenThatWasCoveredWhileTheWindowChangedIsInTheMiddleWhenItComesBack) {
    push(make("b"));
    scene.resize({640, 916}, 1);
    touches.settle();

    navigation->popViewControllerAnimated(/*animated=*/true);
    touches.settle();

    EXPECT_EQ(shown(*a->view()), CGRectMake(160, 0, 320, 480));
}

TEST_F(Place, AScreenThatHasGoneLeavesNothingBehind) {
    const auto before = a->view()->superview()->superview()->subviews().size();
    push(make("b"));

    navigation->popViewControllerAnimated(/*animated=*/false);

    EXPECT_EQ(a->view()->superview()->superview()->subviews().size(), before);
}

TEST_F(Place, AListFillsTheWindow) {
    const auto screen = UITableViewController::alloc()->initWithStyle(UITableViewStyleGrouped);
    push(screen);
    scene.resize({1024, 768}, 1);
    touches.settle();

    EXPECT_EQ(written(screen->view()->frame()), "0,0 1024x768");
}

} // namespace
