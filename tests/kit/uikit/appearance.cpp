// The colours of the interface: every text can be read on every ground, in every look.

#include "kit/uikit/appearance.h"

#include "kit/uikit/contrast.h"
#include "kit/uikit/snapshot.h"
#include "tests/kit/uikit/SceneTest.h"

#include <algorithm>

namespace appearance_tests {
namespace {

using namespace seat::appearance;
using seat::contrast;

CGColor colorOf(const std::shared_ptr<UIColor>& color) { return *color->CGColor(); }

class Appearance : public SceneTest {
protected:
    ~Appearance() override { setLook({}); }

    static std::vector<Look> looks() {
        std::vector<Look> all;
        for (const bool isDark : {false, true})
            for (const bool hasHighContrast : {false, true}) {
                all.push_back({isDark, hasHighContrast, std::nullopt});
                for (const CGColor accent :
                     {CGColor{1, 1, 0, 1}, CGColor{0, 0, 0, 1}, CGColor{1, 1, 1, 1}, CGColor{0.21, 0.52, 0.89, 1},
                      CGColor{0.55, 0.1, 0.6, 1}, CGColor{1, 0.47, 0, 1}, CGColor{0.5, 0.5, 0.5, 1}})
                    all.push_back({isDark, hasHighContrast, accent});
            }
        return all;
    }
};

TEST_F(Appearance, EveryTextCanBeReadOnEveryGround) {
    for (const Look& look : looks()) {
        setLook(look);
        const double least = look.hasHighContrast ? 7 : 4.5;
        for (const auto& text : {textColor(), secondaryTextColor(), errorTextColor(), tintColor()})
            for (const auto& ground : {pageColor(), cardColor(), pressedColor(), barColor()}) {
                const CGColor on = colorOf(ground);
                EXPECT_GE(contrast(colorOf(text), on), least)
                    << colorOf(text).red << " " << on.red << " " << look.isDark << look.hasHighContrast;
                if (ground != pressedColor() && ground != barColor())
                    EXPECT_GE(contrast(seat::blended(colorOf(text), disabledAlpha, on), on), 3) << "disabled";
            }
        const CGColor panel = colorOf(panelColor());
        const CGColor throughIt = seat::blended(panel, panel.alpha, colorOf(cardColor()));
        EXPECT_GE(contrast({1, 1, 1, 1}, throughIt), least) << "white text on a panel";
    }
}

TEST_F(Appearance, WhatIsNoTextCanBeToldFromItsGround) {
    for (const Look& look : looks()) {
        setLook(look);
        EXPECT_GE(contrast(colorOf(markColor()), colorOf(cardColor())), 3) << look.isDark << look.hasHighContrast;
        EXPECT_GE(contrast(colorOf(markColor()), {1, 1, 1, 1}), 3) << "the knob of a switch that is off";
        if (look.hasHighContrast || look.accent)
            EXPECT_GE(contrast(colorOf(switchOnColor()), {1, 1, 1, 1}), 3) << "of one that is on";
    }
}

TEST_F(Appearance, ColoursStayTheObjectsThatTheyAre) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): what it is now, should another be put there
    const auto before = textColor();
    const CGColor light = colorOf(before);

    setLook({.isDark = true});

    EXPECT_EQ(before, textColor());
    EXPECT_NE(colorOf(before), light);
}

TEST_F(Appearance, PlainBlackAndBlueTextIsReadableInTheDark) {
    const auto label = add<UILabel>({{0, 0}, {320, 480}});
    label->setText("text");
    label->setFont(UIFont::boldSystemFontOfSize(60));
    setLook({.isDark = true});
    for (const auto& color : {UIColor::blackColor(), UIColor::blueColor()}) {
        label->setTextColor(color);
        const auto picture = seat::snapshot(scene);
        double best = 1;
        for (const std::uint32_t pixel : picture->pixels) {
            const auto channel = [pixel](int shift) { return ((pixel >> shift) & 0xff) / 255.0; };
            best = std::max(best, contrast({channel(16), channel(8), channel(0), 1}, colorOf(cardColor())));
        }
        EXPECT_GE(best, 4.5);
        EXPECT_EQ(label->textColor(), color) << "what was asked for is answered";
    }
}

TEST_F(Appearance, AnAccentIsKeptWhereItCanBeReadAndIsMadeReadableWhereNot) {
    const CGColor blue{0.0, 0.2, 0.7, 1};
    setLook({.accent = blue});
    EXPECT_EQ(colorOf(tintColor()), blue);

    setLook({.accent = CGColor{1, 0.9, 0, 1}});
    EXPECT_NE(colorOf(tintColor()), (CGColor{1, 0.9, 0, 1}));
    EXPECT_GT(colorOf(tintColor()).red, colorOf(tintColor()).blue) << "still a yellow";
}

TEST(Contrast, IsThatOfTheGuidelines) {
    EXPECT_NEAR(contrast({0, 0, 0, 1}, {1, 1, 1, 1}), 21, 1e-9);
    EXPECT_NEAR(contrast({1, 1, 1, 1}, {1, 1, 1, 1}), 1, 1e-9);
    const double grey = 0x76 / 255.0;
    EXPECT_NEAR(contrast({grey, grey, grey, 1}, {1, 1, 1, 1}), 4.54, 0.01);
}

} // namespace
} // namespace appearance_tests
