// The face that the desktop wants, among those that are there.

#include "desktop/painting/fonts.h"
#include "kit/quartz/text_runs.h"
#include "kit/quartz/text_size.h"
#include "kit/seat.h"

#include <QFontDatabase>
#include <QStringList>
#include <gtest/gtest.h>

namespace {

class FontFamily : public ::testing::Test {
protected:
    ~FontFamily() override { seat::setFontFamily(""); }

    static QString family() { return seat::toolkitFont(*UIFont::systemFontOfSize(17), 1).families().first(); }
    static double width() {
        return seat::measureText(seat::textRuns("Controller", UIFont::systemFontOfSize(17), nullptr), 1e6, 1)
            .size.width;
    }
    // Of letters of different widths, and not the one that is used by itself; empty when there is no other.
    static QString another() {
        for (const QString& name : QFontDatabase::families())
            if (name != family() && !QFontDatabase::isFixedPitch(name) && name.startsWith("DejaVu S")) return name;
        return {};
    }
};

TEST_F(FontFamily, IsTheOneThatIsWantedAndTextIsMeasuredAnew) {
    const QString wanted = another();
    if (wanted.isEmpty()) GTEST_SKIP() << "there is one family only";
    const double before = width();
    const unsigned generation = seat::textGeneration();

    seat::setFontFamily(wanted.toStdString() + " Medium");

    EXPECT_EQ(family(), wanted);
    EXPECT_NE(width(), before);
    EXPECT_NE(seat::textGeneration(), generation);
}

TEST_F(FontFamily, ThatIsNotThereOrOfFixedPitchIsPassedOver) {
    const QString usual = family();
    const unsigned generation = seat::textGeneration();
    for (const char* const name : {"Nobody Has This", "Sans Serif", "DejaVu Sans Mono", " ", "11"}) {
        seat::setFontFamily(name);
        EXPECT_EQ(family(), usual) << name;
    }
    EXPECT_EQ(seat::textGeneration(), generation) << "nothing to lay out anew";
}

} // namespace
