#include "services/jvninputd/PadInputs.h"

#include <gtest/gtest.h>

using namespace jvninputd;

namespace {

TEST(PadInputs, AnInputIsUpWhenTheLastOfItsKeysIsUp) {
    PadInputs inputs;
    inputs.press(native::a);
    inputs.press(native::a);

    inputs.release(native::a);
    EXPECT_EQ(inputs.down(), bitOf(native::a));

    inputs.release(native::a);
    EXPECT_EQ(inputs.down(), 0U);
}

TEST(PadInputs, AReleaseWithoutAPressDoesNothing) {
    PadInputs inputs;
    inputs.release(native::a);
    inputs.press(native::a);

    EXPECT_EQ(inputs.down(), bitOf(native::a));
}

struct Opposites {
    native::Code one, other;
};
class PadInputsOpposites : public ::testing::TestWithParam<Opposites> {};

TEST_P(PadInputsOpposites, TheOnePressedLastWinsAndTheOtherComesBack) {
    const auto [one, other] = GetParam();
    PadInputs inputs;

    inputs.press(one);
    inputs.press(other);
    EXPECT_EQ(inputs.down(), bitOf(other));
    inputs.release(other);
    EXPECT_EQ(inputs.down(), bitOf(one));

    inputs.press(other);
    inputs.release(one);
    EXPECT_EQ(inputs.down(), bitOf(other));
    inputs.press(one);
    EXPECT_EQ(inputs.down(), bitOf(one));
}

INSTANTIATE_TEST_SUITE_P(EveryAxis, PadInputsOpposites,
                         ::testing::Values(Opposites{native::dpadLeft, native::dpadRight},
                                           Opposites{native::dpadUp, native::dpadDown},
                                           Opposites{native::leftStickLeft, native::leftStickRight},
                                           Opposites{native::leftStickUp, native::leftStickDown},
                                           Opposites{native::rightStickLeft, native::rightStickRight},
                                           Opposites{native::rightStickUp, native::rightStickDown}));

TEST(PadInputs, ASecondKeyOfADirectionIsItsLastPress) {
    PadInputs inputs;
    inputs.press(native::dpadLeft);
    inputs.press(native::dpadRight);

    inputs.press(native::dpadLeft);
    EXPECT_EQ(inputs.down(), bitOf(native::dpadLeft));

    inputs.release(native::dpadLeft);
    EXPECT_EQ(inputs.down(), bitOf(native::dpadLeft)) << "the first key still holds it";
}

TEST(PadInputs, DirectionsOfDifferentAxesStandTogether) {
    PadInputs inputs;
    inputs.press(native::dpadUp);
    inputs.press(native::dpadRight);
    inputs.press(native::leftStickLeft);

    EXPECT_EQ(inputs.down(), bitOf(native::dpadUp) | bitOf(native::dpadRight) | bitOf(native::leftStickLeft));
}

} // namespace
