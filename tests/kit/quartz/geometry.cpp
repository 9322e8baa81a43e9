#include "kit/quartz/geometry.h"
#include "platform/quartz/CATransaction.h"
#include "platform/quartz/CGAffineTransform.h"
#include "platform/uikit/UIScreen.h"
#include "tests/kit/quartz/Surface.h"
#include "tests/kit/quartz/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

using test::nan;

TEST(Rectangles, IntersectionOfOverlappingOnesIsWhatBothCover) {
    EXPECT_EQ(CGRectIntersection({{0, 0}, {10, 10}}, {{5, -5}, {10, 10}}), (CGRect{{5, 0}, {5, 5}}));
}

TEST(Rectangles, ThatAreApartShareTheNullRectangle) {
    EXPECT_TRUE(CGRectIsNull(CGRectIntersection({{0, 0}, {10, 10}}, {{20, 0}, {10, 10}})));
    EXPECT_TRUE(CGRectIsNull(CGRectIntersection(CGRectNull, {{0, 0}, {10, 10}})));
    EXPECT_TRUE(CGRectIsNull(CGRectIntersection({{nan, 0}, {10, 10}}, {{0, 0}, {10, 10}})));
}

TEST(Rectangles, ThatOnlyTouchDoNotIntersect) {
    EXPECT_FALSE(CGRectIntersectsRect({{0, 0}, {10, 10}}, {{10, 0}, {10, 10}}));
    EXPECT_TRUE(CGRectIntersectsRect({{0, 0}, {10, 10}}, {{9.5, 0}, {10, 10}}));
}

TEST(Rectangles, NullIsNeutralInAUnion) {
    const CGRect rect{{1, 2}, {3, 4}};
    EXPECT_EQ(CGRectUnion(CGRectNull, rect), rect);
    EXPECT_EQ(CGRectUnion(rect, CGRectNull), rect);
    EXPECT_EQ(CGRectUnion(rect, {{10, 10}, {1, 1}}), (CGRect{{1, 2}, {10, 9}}));
}

TEST(AffineTransform, ConcatAppliesTheFirstArgumentFirst) {
    const auto t = CGAffineTransformConcat(CGAffineTransformMakeScale(2, 3), CGAffineTransformMakeTranslation(10, 20));
    EXPECT_EQ(CGPointApplyAffineTransform({1, 1}, t), (CGPoint{12, 23}));
}

TEST(AffineTransform, InverseUndoes) {
    const auto t =
        CGAffineTransformConcat(CGAffineTransformMakeRotation(0.7), CGAffineTransform{2, 0.5, -1, 3, 11, -4});
    const CGPoint back =
        CGPointApplyAffineTransform(CGPointApplyAffineTransform({5, 7}, t), CGAffineTransformInvert(t));
    EXPECT_NEAR(back.x, 5, 1e-12);
    EXPECT_NEAR(back.y, 7, 1e-12);
}

TEST(AffineTransform, ThatCannotBeInvertedComesBackAsItIs) {
    const auto flat = CGAffineTransformMakeScale(0, 1);
    EXPECT_EQ(CGAffineTransformInvert(flat), flat);
}

TEST(AffineTransform, MirroredRectangleHasItsOriginAtTheOtherEnd) {
    EXPECT_EQ(CGRectApplyAffineTransform({{1, 2}, {3, 4}}, CGAffineTransformMakeScale(-1, 1)), CGRectMake(-4, 2, 3, 4));
    EXPECT_EQ(CGRectApplyAffineTransform({{1, 2}, {3, 4}}, CGAffineTransformMakeScale(1, -2)),
              CGRectMake(1, -12, 3, 8));
}

TEST(AffineTransform, RectangleTurnedByAQuarterStandsUprightAgain) {
    const CGRect turned =
        CGRectApplyAffineTransform({{0, 0}, {10, 4}}, CGAffineTransformMakeRotation(std::numbers::pi / 2));
    EXPECT_NEAR(turned.origin.x, -4, 1e-12);
    EXPECT_NEAR(turned.origin.y, 0, 1e-12);
    EXPECT_NEAR(turned.size.width, 4, 1e-12);
    EXPECT_NEAR(turned.size.height, 10, 1e-12);
}

TEST(Transaction, NestedOnesStayDisabledInsideADisabledOne) {
    CATransaction::begin();
    CATransaction::setDisableActions(true);
    CATransaction::begin();
    EXPECT_TRUE(CATransaction::disableActions());
    CATransaction::commit();
    EXPECT_TRUE(CATransaction::disableActions());
    CATransaction::commit();
    EXPECT_FALSE(CATransaction::disableActions());
    CATransaction::commit();
    CATransaction::setDisableActions(true);
    EXPECT_FALSE(CATransaction::disableActions());
}

TEST(Screen, ScaleThatIsNoneCountsAsOne) {
    const test::ScreenScale unusable(nan);
    EXPECT_EQ(UIScreen::mainScreen()->scale(), 1);
    seat::setMainScreen({320, 480}, 3);
    EXPECT_EQ(UIScreen::mainScreen()->scale(), 3);
    EXPECT_EQ(UIScreen::mainScreen()->bounds(), CGRectMake(0, 0, 320, 480));
}

} // namespace
