#include "kit/uikit/snapshot.h"
#include "tests/kit/controllers/screens.h"
#include "tests/support/golden.h"

namespace {

class BarLooks : public NavigationTest, public ::testing::WithParamInterface<int> {
protected:
    BarLooks() {
        scene.resize({320, 120}, GetParam());
        a->view()->setBackgroundColor(UIColor::colorWithWhite_alpha(0.9, 1));
        touches.settle();
    }
    void expectLooks(const std::string& name) {
        EXPECT_EQ(testing_support::compareWithGolden(seat::snapshot(scene), GOLDEN_FOLDER,
                                                     name + "@" + std::to_string(GetParam()) + "x", FAILURES_FOLDER,
                                                     {.channel = 40, .share = 0.02}),
                  "");
    }
};

TEST_P(BarLooks, TitleAndBackButton) {
    a->setTitle("Joyvane");
    push(make("LED Color"));
    touches.settle();
    expectLooks("bar");
}

TEST_P(BarLooks, LongTitles) {
    a->setTitle("A Root With a Title That Goes On and On");
    push(make("Another Title That Would Like the Whole Bar"));
    touches.settle();
    expectLooks("long-bar");
}

TEST_P(BarLooks, HalfWay) {
    a->setTitle("Joyvane");
    const auto b = make("LED Color");
    b->view()->setBackgroundColor(UIColor::colorWithWhite_alpha(0.75, 1));
    push(b, /*animated=*/true);
    touches.wait(0.175);
    expectLooks("half-way");
}

INSTANTIATE_TEST_SUITE_P(Scales, BarLooks, ::testing::Values(1, 2, 3));

} // namespace
