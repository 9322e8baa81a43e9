#include "colourpicker/ZKColorPickerView.h"

#include "colourpicker/ZKBrightnessCursor.h"
#include "colourpicker/ZKBrightnessSlider.h"
#include "colourpicker/ZKColorInfoView.h"
#include "colourpicker/ZKColorMapView.h"
#include "platform/foundation/NSArray.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UILabel.h"
#include "tests/colourpicker/picker_scene.h"

#include <gtest/gtest.h>

namespace {

constexpr double float04 = 0.4f;

class ColorPicker : public ::testing::Test {
protected:
    ZKColorMapView& map() {
        const auto& view = picker->colorMapView().view();
        return *std::static_pointer_cast<ZKColorMapView>(view);
    }
    ZKBrightnessSlider& slider() {
        return *std::static_pointer_cast<ZKBrightnessSlider>(picker->brightnessSlider().view());
    }
    ZKColorInfoView& info() { return *std::static_pointer_cast<ZKColorInfoView>(picker->colorInfoView().view()); }
    void show(CGSize size = {320, 460}) {
        window.show(picker, {{0, 0}, size});
        window.keep(std::static_pointer_cast<ZKColorMapView>(picker->colorMapView().view()));
        window.waitForField(map());
    }
    CGPoint onTile(double column, double row) {
        return map().convertPoint_toView({column * 16 + 8, row * 16 + 8}, nullptr);
    }
    CGPoint onTrack(double fraction) { return slider().convertPoint_toView({28 + 212 * fraction, 15}, nullptr); }
    HSBA color() { return hsba(picker->color()); }

    PickerScene window{{320, 460}, 2};
    std::shared_ptr<ZKColorPickerView> picker = ZKColorPickerView::alloc()->init();
};

// A client's parts.
class OwnMap final : public UIControl, public protocol::ZKColorMapView {
    NS_CLASS(OwnMap)
    std::shared_ptr<UIColor> color() override { return shown; }
    void setColor(std::shared_ptr<UIColor> color) override { shown = std::move(color); }
    double brightness() const override { return bright; }
    void setBrightness(double brightness) override { bright = brightness; }
    CGSize intrinsicContentSize() const override { return wanted; }
    std::shared_ptr<UIColor> shown;
    double bright = -1;
    CGSize wanted{320, 320};
};
NS_CLASS_IMPLEMENTATION(OwnMap, UIControl)

class OwnSlider final : public UIControl, public protocol::ZKBrightnessSlider {
    NS_CLASS(OwnSlider)
    std::optional<NSNumber> brightness() const override { return bright; }
    std::shared_ptr<UIColor> color() override { return shown; }
    void setColor(std::shared_ptr<UIColor> color) override { shown = std::move(color); }
    std::shared_ptr<UIColor> shown;
    std::optional<NSNumber> bright;
};
NS_CLASS_IMPLEMENTATION(OwnSlider, UIControl)

class OwnInfo final : public UIView, public protocol::ZKColorInfoView {
    NS_CLASS(OwnInfo)
    std::shared_ptr<UIColor> color() override { return shown; }
    void setColor(std::shared_ptr<UIColor> color) override { shown = std::move(color); }
    std::shared_ptr<UIColor> shown;
};
NS_CLASS_IMPLEMENTATION(OwnInfo, UIView)

// Reads the picker's colour in its action, as a client does.
class Client final : public NSObject {
    NS_CLASS(Client)
    void changed(const std::shared_ptr<ZKColorPickerView>& sender) { heard.push_back(hsba(sender->color())); }
    std::vector<HSBA> heard;
};
NS_CLASS_IMPLEMENTATION(Client, NSObject, method<&Client::changed>("changed:"))

std::shared_ptr<Client> clientOf(ZKColorPickerView& picker) {
    auto client = Client::alloc();
    picker.addTarget_action_forControlEvents(client, "changed:", UIControlEventValueChanged);
    return client;
}

} // namespace

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

TEST_F(ColorPicker, PlacesItsPartsInThreeHundredTwentyByFourHundredSixty) {
    const auto own = OwnMap::alloc();
    own->init();
    picker->setColorMapView(own);
    window.show(picker, {{0, 0}, {320, 460}});

    EXPECT_EQ(own->frame(), (CGRect{{0, 140}, {320, 320}}));
    EXPECT_EQ(info().frame(), (CGRect{{8, 28}, {66, 84}}));
    EXPECT_EQ(slider().alignmentRectForFrame(slider().frame()), (CGRect{{83, 83}, {228, 11}}));
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

TEST_F(ColorPicker, SetColourReachesThePartsAndSendsNothing) {
    show();
    const auto client = clientOf(*picker);
    picker->setColor(hsb(0.25, 0.5, 0.625));

    EXPECT_NEAR(hsba(map().color()).hue, 0.25, 1e-12);
    EXPECT_EQ(map().brightness(), 0.625);
    EXPECT_EQ(slider().brightness()->doubleValue(), 0.625);
    EXPECT_NEAR(hsba(info().color()).saturation, 0.5, 1e-12);
    EXPECT_TRUE(client->heard.empty());
}

TEST_F(ColorPicker, SliderDragChangesMapAndSwatchAtOnceAndReportsNothing) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    const auto client = clientOf(*picker);

    window.finger.press(onTrack(0));
    window.finger.move(onTrack(0.2));
    window.finger.move(onTrack(0.5));
    EXPECT_NEAR(map().brightness(), 0.7, 1e-6);
    EXPECT_NEAR(map().colorMapLayer()->opacity(), 0.7, 1e-6);
    EXPECT_NEAR(hsba(info().color()).brightness, 0.7, 1e-6);
    EXPECT_NEAR(hsba(map().color()).brightness, 0.7, 1e-6);
    window.finger.release();

    EXPECT_NEAR(color().brightness, 0.7, 1e-6);
    EXPECT_TRUE(client->heard.empty()) << "the slider's drag ends without a word";
}

TEST_F(ColorPicker, BrightnessIsTakenInSinglePrecision) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    window.finger.tap(onTrack(0.5));
    EXPECT_EQ(color().brightness, static_cast<double>(slider().brightness()->floatValue()));
    EXPECT_NE(color().brightness, slider().brightness()->doubleValue());
}

TEST_F(ColorPicker, SliderIsNotToldItsOwnColour) {
    const auto own = OwnSlider::alloc();
    own->init();
    show();
    picker->setBrightnessSlider(own);
    own->shown = nullptr;
    own->bright = NSNumber::numberWithDouble(0.5);
    own->sendActionsForControlEvents(UIControlEventValueChanged);
    EXPECT_FALSE(own->shown);
    EXPECT_EQ(map().brightness(), 0.5);
}

TEST_F(ColorPicker, TapReportsTheColourFromBeforeIt) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    const auto client = clientOf(*picker);

    window.finger.tap(onTile(5, 0));

    ASSERT_EQ(client->heard.size(), 1u);
    EXPECT_NEAR(client->heard[0].hue, 0.6, 1e-12);
    EXPECT_NEAR(color().hue, 0.25, 1e-12) << "the tapped colour is shown, and reported by the next gesture";
}

TEST_F(ColorPicker, MapDragReportsItsLastColourOnceAtTheEnd) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    const auto client = clientOf(*picker);

    window.finger.drag(onTile(1, 0), onTile(5, 0));

    ASSERT_EQ(client->heard.size(), 1u);
    EXPECT_NEAR(client->heard[0].hue, 0.25, 1e-12);
}

TEST_F(ColorPicker, TapAfterASliderDragReportsTheDraggedBrightness) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    const auto client = clientOf(*picker);
    window.finger.drag(onTrack(0), onTrack(0.5));

    window.finger.tap(onTrack(0.75));

    ASSERT_EQ(client->heard.size(), 1u);
    EXPECT_NEAR(client->heard[0].brightness, 0.7, 1e-6);
    EXPECT_NEAR(color().brightness, 0.55, 1e-6);
}

TEST_F(ColorPicker, MapDragThatEndsOutsideReportsNothing) {
    picker->setColor(hsb(0.6, 0.8, 1));
    show();
    const auto client = clientOf(*picker);
    window.finger.drag(onTile(1, 5), onTile(5, -5));
    EXPECT_TRUE(client->heard.empty());
    EXPECT_NE(color().hue, 0.6);
}

TEST_F(ColorPicker, TwoGesturesTenMillisecondsApartBothReport) {
    show();
    const auto client = clientOf(*picker);
    const auto tap = ScriptedTap::on(picker->colorMapView().view());
    tap->send(UIGestureRecognizerStateEnded, CGPoint{8, 8});
    window.clock.advance(0.01);
    tap->send(UIGestureRecognizerStateEnded, CGPoint{80, 8});
    EXPECT_EQ(client->heard.size(), 2u);
}

TEST_F(ColorPicker, ReportsGoOutWhateverTheClockDoes) {
    show();
    const auto client = clientOf(*picker);
    const auto tap = ScriptedTap::on(picker->colorMapView().view());
    for (const platform::timeval time : {platform::timeval{5, 0}, platform::timeval{4, 999999},
                                         platform::timeval{2000000000, 1}, platform::timeval{2000000000, 66667}}) {
        window.clock.setTimeOfDay(time);
        tap->send(UIGestureRecognizerStateEnded, CGPoint{8, 8});
    }
    EXPECT_EQ(client->heard.size(), 4u);
}

TEST_F(ColorPicker, SliderGetsTheMapsVeryColourAndPickerItsBrightness) {
    const auto ownMap = OwnMap::alloc();
    ownMap->init();
    const auto ownSlider = OwnSlider::alloc();
    ownSlider->init();
    picker->setColorMapView(ownMap);
    picker->setBrightnessSlider(ownSlider);
    const auto picked = rgb(0.25, 0.5, 0.125);
    ownMap->shown = picked;

    ownMap->sendActionsForControlEvents(UIControlEventValueChanged);

    EXPECT_EQ(ownSlider->shown, picked);
    EXPECT_EQ(color().brightness, 0.5);
    EXPECT_NE(info().color(), picked);
    EXPECT_TRUE(info().color()->isEqual(*picker->color()));
}

TEST_F(ColorPicker, ClientsPartsAreToldTheColourButNotPlaced) {
    picker->setColor(hsb(0.5, 1, 0.75));
    const auto map = OwnMap::alloc();
    map->init();
    const auto slider = OwnSlider::alloc();
    slider->init();
    const auto info = OwnInfo::alloc();
    info->init();

    picker->setColorMapView(map);
    picker->setBrightnessSlider(slider);
    picker->setColorInfoView(info);

    EXPECT_TRUE(picker->subviews().empty());
    EXPECT_EQ(map->bright, 0.75);
    for (const auto& shown : {map->shown, slider->shown, info->shown}) EXPECT_TRUE(shown->isEqual(*picker->color()));
    EXPECT_EQ(picker->colorMapView().view(), map);
    EXPECT_EQ(picker->colorInfoView().view(), info);
}

TEST_F(ColorPicker, ReplacedSliderStaysOnScreenAndIsStillHeard) {
    show();
    const auto old = picker->brightnessSlider().view();
    const auto own = OwnSlider::alloc();
    own->init();

    picker->setBrightnessSlider(own);

    EXPECT_EQ(old->superview(), picker);
    ScriptedTap::on(old)->send(UIGestureRecognizerStateEnded, CGPoint{28, 15});
    EXPECT_EQ(color().brightness, 1);
}

TEST_F(ColorPicker, PartSetTwiceIsHeardOnce) {
    const auto own = OwnMap::alloc();
    own->init();
    picker->setColorMapView(own);
    picker->setColorMapView(own);
    const auto client = clientOf(*picker);
    own->sendActionsForControlEvents(UIControlEventEditingDidEnd);
    EXPECT_EQ(client->heard.size(), 1u);
}

TEST_F(ColorPicker, NilPartMakesWayForANewDefaultOne) {
    show();
    const auto old = picker->brightnessSlider().view();
    picker->setBrightnessSlider(nullptr);
    EXPECT_TRUE(std::dynamic_pointer_cast<ZKBrightnessSlider>(picker->brightnessSlider().view()));
    EXPECT_NE(picker->brightnessSlider().view(), old);
    picker->setColorInfoView(nullptr);
    EXPECT_TRUE(picker->colorInfoView());
}

TEST_F(ColorPicker, BlackHasItsSliderCursorBeyondTheBarAndATapOnTheSliderRepairsTheBrightness) {
    picker->setColor(UIColor::blackColor());
    show();
    EXPECT_GT(slider().brightnessCursor()->center().x, 240);

    window.finger.tap(onTile(5, 3));
    EXPECT_EQ(color().brightness, 0) << "a black field gives black";

    window.finger.tap(onTrack(0));
    EXPECT_EQ(color().brightness, 1);
    EXPECT_EQ(color().hue, 0) << "hue begins again at red";
}

TEST_F(ColorPicker, GreyKeepsHueZeroSoThatItGoesOnFromRed) {
    picker->setColor(UIColor::colorWithWhite_alpha(0.5, 1));
    EXPECT_EQ(color().hue, 0);
    EXPECT_EQ(color().saturation, 0);
}

TEST_F(ColorPicker, DarkestOfTheSliderIsFourTenths) {
    show();
    picker->setColor(hsb(0.5, 1, 1));
    window.finger.tap(onTrack(1.05));
    EXPECT_EQ(color().brightness, float04);
}

TEST_F(ColorPicker, SlidersMayOutliveThePicker) {
    show();
    const auto old = picker->brightnessSlider().view();
    picker->removeFromSuperview();
    picker.reset();
    old->sendActionsForControlEvents(UIControlEventValueChanged | UIControlEventEditingDidEnd);
    SUCCEED();
}
