#include "kit/alerts/progress_canceller.h"
#include "kit/uikit/snapshot.h"
#include "platform/uikit/UIProgressHUD.h"
#include "tests/kit/alerts/AlertTest.h"
#include "tests/support/golden.h"

namespace {

class AlertLooks : public AlertTest, public ::testing::WithParamInterface<int> {
protected:
    AlertLooks() {
        scene.resize({320, 480}, GetParam());
        scene.window()->setBackgroundColor(UIColor::colorWithRed_green_blue_alpha(0.949, 0.949, 0.969, 1));
    }
    void expectLooks(const std::string& name) {
        EXPECT_EQ(testing_support::compareWithGolden(seat::snapshot(scene), GOLDEN_FOLDER,
                                                     name + "@" + std::to_string(GetParam()) + "x", FAILURES_FOLDER,
                                                     {.channel = 40, .share = 0.02}),
                  "");
    }
};

TEST_P(AlertLooks, Warning) {
    show("Important!", {},
         "Your controller is missing some buttons the extended gamepad requires. By forcing this profile you may have "
         "poor gaming experience. Please turn this off unless you know what this means.");
    expectLooks("alert");
}

TEST_P(AlertLooks, Choice) {
    show("Forget This Controller?", {"Forget"}, "You have to pair it again.");
    touches.press(button(*scene.window(), "Forget")->convertPoint_toView({60, 20}, nullptr));
    touches.wait(0.1);
    expectLooks("choice");
}

TEST_P(AlertLooks, Progress) {
    const auto page = add({{0, 0}, {320, 480}});
    const auto hud = UIProgressHUD::alloc()->init();
    hud->showInView(page);
    hud->setText("Searching...\nPress both the Share and PS buttons until your PS4 controller blinks.");
    expectLooks("progress");
}

TEST_P(AlertLooks, ProgressThatCanBeCancelled) {
    seat::setProgressCanceller([] {});
    const auto page = add({{0, 0}, {320, 480}});
    const auto hud = UIProgressHUD::alloc()->init();
    hud->showInView(page);
    hud->setText("Searching...\nHold the X and the HOME buttons until the SEARCH light blinks.");
    expectLooks("progress-cancel");
    seat::setProgressCanceller({});
}

INSTANTIATE_TEST_SUITE_P(Scales, AlertLooks, ::testing::Values(1, 2, 3));

} // namespace
