// Run without any font in the system.

#include "host/quartz/fonts.h"
#include "host/quartz/text.h"
#include "tests/quartz/surface.h"

#include <gtest/gtest.h>

namespace {

TEST(WithoutFonts, TextHasAHeightAndDrawsNothing) {
    ASSERT_FALSE(host::fontsAreThere());
    const auto runs = host::textRuns("Controller\n⇧⌘ Type", UIFont::systemFontOfSize(17), test::rgb(0, 0, 0));
    const auto size = host::measureText(runs, 100, 0);
    EXPECT_GT(size.size.height, 15);
    EXPECT_EQ(size.size.width, 0);

    UIGraphicsBeginImageContextWithOptions({100, 40}, /*opaque*/ false, 1);
    host::drawText(UIGraphicsGetCurrentContext(), runs, {{0, 0}, {100, 40}}, host::TextAlignment::Center, 0);
    const auto image = UIGraphicsGetImageFromCurrentImageContext()->CGImage();
    UIGraphicsEndImageContext();
    for (const auto pixel : image->pixels) ASSERT_EQ(pixel, 0U);
}

TEST(WithoutFonts, FontsStillHaveMetrics) {
    EXPECT_GT(UIFont::systemFontOfSize(17)->lineHeight(), 15);
    EXPECT_GT(UIFont::boldSystemFontOfSize(17)->ascender(), 10);
}

} // namespace
