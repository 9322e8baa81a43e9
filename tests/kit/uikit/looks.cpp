#include "kit/uikit/hid_keys.h"
#include "kit/uikit/snapshot.h"
#include "tests/kit/uikit/SceneTest.h"
#include "tests/support/golden.h"

#include <tuple>

namespace {

// Pictures without text: the same on every machine.
class Looks : public SceneTest, public ::testing::WithParamInterface<double> {
protected:
    Looks() {
        scene.resize({200, 120}, GetParam());
        scene.window()->setBackgroundColor(UIColor::colorWithRed_green_blue_alpha(0.937, 0.937, 0.957, 1));
    }
    void expectPicture(const std::string& name) {
        const std::string file = name + "@" + std::to_string(static_cast<int>(GetParam())) + "x";
        EXPECT_EQ(testing_support::compareWithGolden(seat::snapshot(scene), GOLDEN_FOLDER, file, FAILURES_FOLDER,
                                                     {.channel = 2}),
                  "");
    }
};

} // namespace

TEST_P(Looks, SwitchesOnOffAndDisabled) {
    const auto at = [&](double x, double y, bool on, bool enabled) {
        const auto toggle = add<UISwitch>({{x, y}, {51, 31}});
        toggle->setOn_animated(on, /*animated=*/false);
        toggle->setEnabled(enabled);
    };
    at(20, 15, true, true);
    at(100, 15, false, true);
    at(20, 65, true, false);
    at(100, 65, false, false);

    expectPicture("switches");
}

TEST_P(Looks, SwitchUnderAFingerAndOnItsWay) {
    const auto pressed = add<UISwitch>({{20, 15}, {51, 31}});
    const auto moving = add<UISwitch>({{100, 15}, {51, 31}});
    scene.prepareFrame();
    moving->setOn_animated(true, /*animated=*/true);
    scene.prepareFrame();
    scene.window()->touchBegan(1, {30, 30}, clock.mediaTime());
    clock.advance(0.125);

    expectPicture("switch-movement");
}

TEST_P(Looks, FocusRingFollowsASwitchsOutline) {
    add<UISwitch>({{20, 15}, {51, 31}});
    touches.key(seat::hid::tab);

    expectPicture("focus-ring");
}

TEST_P(Looks, IndicatorWhileContentMoves) {
    const auto scroll = add<UIScrollView>({{0, 0}, {200, 120}});
    scroll->setContentSize({200, 400});
    touches.press({100, 100});
    touches.move({100, 60});

    expectPicture("scroll-indicator");
}

INSTANTIATE_TEST_SUITE_P(Scales, Looks, ::testing::Values(1.0, 2.0, 3.0));
