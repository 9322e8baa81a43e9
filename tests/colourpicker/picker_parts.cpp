// Parts that a client brings, and what becomes of the former ones.

#include "platform/uikit/UIColor.h"
#include "tests/colourpicker/ColorPicker.h"

namespace {

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

} // namespace

TEST_F(ColorPicker, PlacesItsPartsInThreeHundredTwentyByFourHundredSixty) {
    const auto own = OwnMap::alloc();
    own->init();
    picker->setColorMapView(own);
    window.show(picker, {{0, 0}, {320, 460}});

    EXPECT_EQ(own->frame(), (CGRect{{0, 140}, {320, 320}}));
    EXPECT_EQ(info().frame(), (CGRect{{8, 28}, {66, 84}}));
    EXPECT_EQ(slider().alignmentRectForFrame(slider().frame()), (CGRect{{83, 83}, {228, 11}}));
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

TEST_F(ColorPicker, SlidersMayOutliveThePicker) {
    show();
    const auto old = picker->brightnessSlider().view();
    picker->removeFromSuperview();
    picker.reset();
    old->sendActionsForControlEvents(UIControlEventValueChanged | UIControlEventEditingDidEnd);
    SUCCEED();
}
