// Run without any font in the system.

#include "desktop/painting/fonts.h"
#include "kit/quartz/text_runs.h"
#include "kit/seat.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

namespace {

TEST(WithoutFonts, TextHasAHeightAndDrawsNothing) {
    ASSERT_FALSE(seat::fontsAreThere());
    const auto runs = seat::textRuns("Controller\n⇧⌘ Type", UIFont::systemFontOfSize(17), test::rgb(0, 0, 0));
    const auto size = seat::measureText(runs, 100, 0);
    EXPECT_GT(size.size.height, 15);
    EXPECT_EQ(size.size.width, 0);

    UIGraphicsBeginImageContextWithOptions({100, 40}, /*opaque*/ false, 1);
    seat::drawText(UIGraphicsGetCurrentContext(), runs, {{0, 0}, {100, 40}}, seat::TextAlignment::Center, 0);
    const auto image = UIGraphicsGetImageFromCurrentImageContext()->CGImage();
    UIGraphicsEndImageContext();
    for (const auto pixel : image->pixels) ASSERT_EQ(pixel, 0U);
}

TEST(WithoutFonts, FontsStillHaveMetrics) {
    EXPECT_GT(UIFont::systemFontOfSize(17)->lineHeight(), 15);
    EXPECT_GT(UIFont::boldSystemFontOfSize(17)->ascender(), 10);
}

} // namespace
