// Run with fonts, but without a font cache that can be read or written, and without the system's rules for fonts.

#include "host/quartz/fonts.h"
#include "host/quartz/text.h"
#include "tests/quartz/surface.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace {

TEST(WithoutAFontCache, TextIsDrawn) {
    ASSERT_TRUE(host::fontsAreThere());
    const auto runs = host::textRuns("Controller", UIFont::systemFontOfSize(17), test::rgb(0, 0, 0));
    EXPECT_GT(host::measureText(runs, 1000, 1).size.width, 60);
}

TEST(WithoutAFontCache, VagueNamesDoNotLeadToASurprise) {
    if (!host::toolkitFont(*UIFont::systemFontOfSize(17), 1).families().contains("DejaVu Sans")) GTEST_SKIP();
    EXPECT_EQ(host::toolkitFont(*UIFont::systemFontOfSize(17), 1).families().first(), "DejaVu Sans");
}

} // namespace
