// Run with fonts, but without a font cache that can be read or written, and without the system's rules for fonts.

#include "desktop/painting/fonts.h"
#include "kit/quartz/text_runs.h"
#include "kit/seat.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace {

TEST(WithoutAFontCache, TextIsDrawn) {
    ASSERT_TRUE(seat::fontsAreThere());
    const auto runs = seat::textRuns("Controller", UIFont::systemFontOfSize(17), test::rgb(0, 0, 0));
    EXPECT_GT(seat::measureText(runs, 1000, 1).size.width, 60);
}

TEST(WithoutAFontCache, VagueNamesDoNotLeadToASurprise) {
    if (!seat::toolkitFont(*UIFont::systemFontOfSize(17), 1).families().contains("DejaVu Sans")) GTEST_SKIP();
    EXPECT_EQ(seat::toolkitFont(*UIFont::systemFontOfSize(17), 1).families().first(), "DejaVu Sans");
}

} // namespace
