// The picker's colour, the parts that it makes itself, and where it puts them.

#include "platform/uikit/UIColor.h"
#include "tests/colourpicker/ColorPicker.h"

TEST_F(ColorPicker, IsBlackAndOpaqueUntilAColourIsSet) {
    EXPECT_EQ(color().brightness, 0);
    EXPECT_EQ(color().alpha, 1);
    EXPECT_TRUE(picker->backgroundColor()->isEqual(*UIColor::whiteColor()));
}

TEST_F(ColorPicker, AlphaIsDroppedAndEachReadMakesANewColour) {
    picker->setColor(rgb(0, 0.5, 1, 0.5));
    EXPECT_EQ(rgba(picker->color()).alpha, 1);
    EXPECT_NEAR(rgba(picker->color()).green, 0.5, 1e-15);
    EXPECT_NE(picker->color(), picker->color());
}

TEST_F(ColorPicker, PatternAndNilLeaveTheColour) {
    picker->setColor(rgb(1, 0, 0));
    picker->setColor(UIColor::patternColor());
    picker->setColor(nullptr);
    EXPECT_EQ(rgba(picker->color()).red, 1);
}

TEST_F(ColorPicker, SettingTheColourMakesNoPart) {
    picker->setColor(rgb(1, 0, 0));
    EXPECT_TRUE(picker->subviews().empty());
}

TEST_F(ColorPicker, FirstLayoutMakesMapThenInfoThenSliderWithTheColour) {
    picker->setColor(hsb(0.6, 0.8, 0.75));
    show();

    ASSERT_EQ(picker->subviews().size(), 3u);
    EXPECT_TRUE(std::dynamic_pointer_cast<ZKColorMapView>(picker->subviews()[0]));
    EXPECT_TRUE(std::dynamic_pointer_cast<ZKColorInfoView>(picker->subviews()[1]));
    EXPECT_TRUE(std::dynamic_pointer_cast<ZKBrightnessSlider>(picker->subviews()[2]));
    for (const auto& shown : {map().color(), info().color(), slider().color()}) {
        EXPECT_NEAR(hsba(shown).hue, 0.6, 1e-6);
        EXPECT_NEAR(hsba(shown).brightness, 0.75, 1e-6);
    }
    EXPECT_EQ(map().brightness(), 0.75);
}

TEST_F(ColorPicker, DefaultPartsAreSetUp) {
    show();
    EXPECT_EQ(map().tileSize()->intValue(), 16);
    EXPECT_EQ(map().tileSize()->type(), NSNumber::Type::Int);
    EXPECT_EQ(map().saturationUpperLimit()->floatValue(), 0.9f);
    EXPECT_TRUE(map().backgroundColor()->isEqual(*UIColor::redColor()));
    EXPECT_EQ(slider().brightnessLowerLimit()->doubleValue(), 0.4);
    EXPECT_EQ(slider().brightnessLowerLimit()->type(), NSNumber::Type::Double);
    EXPECT_EQ(map().lineLayer()->frame().size.width, 0) << "the map was made without a size";
}

TEST_F(ColorPicker, MapStandsFlushWithTheBottomLeftInWholeTiles) {
    show({330, 475});
    EXPECT_EQ(map().frame(), (CGRect{{0, 475 - 368}, {320, 368}}));
}

TEST_F(ColorPicker, MapOfALowPickerIsAsHighAsThePickerIsWide) {
    show({320, 300});
    EXPECT_EQ(map().frame(), (CGRect{{0, -20}, {320, 320}}));
}

TEST_F(ColorPicker, FieldIsDrawnAtTheSizeOfTheFirstLayoutOnly) {
    show({320, 460});
    picker->setFrame({{0, 0}, {400, 600}});
    window.scene.prepareFrame();
    EXPECT_EQ(map().frame().size, (CGSize{400, 496}));
    EXPECT_EQ(map().colorMapLayer()->frame().size, (CGSize{320, 352}));
}

TEST_F(ColorPicker, WithAConstraintNothingIsPlacedOrMade) {
    picker->addConstraint(NSLayoutConstraint::alloc());
    EXPECT_TRUE(picker->usingAutoLayout());
    window.show(picker, {{0, 0}, {320, 460}});
    EXPECT_TRUE(picker->subviews().empty());
}

TEST_F(ColorPicker, OneFromAnArchiveKeepsItsBackground) {
    const auto archived = ZKColorPickerView::alloc()->initWithCoder(NSCoder::coderWithDictionary(nullptr));
    EXPECT_FALSE(archived->backgroundColor());
    EXPECT_FALSE(archived->usingAutoLayout());
}

TEST_F(ColorPicker, GreyKeepsHueZeroSoThatItGoesOnFromRed) {
    picker->setColor(UIColor::colorWithWhite_alpha(0.5, 1));
    EXPECT_EQ(color().hue, 0);
    EXPECT_EQ(color().saturation, 0);
}
