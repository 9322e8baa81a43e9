// In which order the picker tells its parts, and which parts come into being when.

#include "colourpicker/ZKBrightnessSlider.h"
#include "colourpicker/ZKColorInfoView.h"
#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/ZKColorPickerView.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

using Notes = std::vector<std::string>;

// Parts of a client that write down what they are told.
class NotingMap final : public UIControl, public protocol::ZKColorMapView {
    NS_CLASS(NotingMap)
    std::shared_ptr<UIColor> color() override { return shown; }
    void setColor(std::shared_ptr<UIColor>) override { notes->emplace_back("map colour"); }
    double brightness() const override { return 0; }
    void setBrightness(double) override { notes->emplace_back("map brightness"); }
    CGSize intrinsicContentSize() const override {
        askedAt = frame();
        return {frame().size.width / 2, 200};
    }
    Notes* notes = nullptr;
    std::shared_ptr<UIColor> shown;
    mutable CGRect askedAt;
};
NS_CLASS_IMPLEMENTATION(NotingMap, UIControl)

class NotingSlider final : public UIControl, public protocol::ZKBrightnessSlider {
    NS_CLASS(NotingSlider)
    std::optional<NSNumber> brightness() const override { return bright; }
    std::shared_ptr<UIColor> color() override { return nullptr; }
    void setColor(std::shared_ptr<UIColor>) override { notes->emplace_back("slider colour"); }
    Notes* notes = nullptr;
    std::optional<NSNumber> bright;
};
NS_CLASS_IMPLEMENTATION(NotingSlider, UIControl)

class NotingInfo final : public UIView, public protocol::ZKColorInfoView {
    NS_CLASS(NotingInfo)
    std::shared_ptr<UIColor> color() override { return nullptr; }
    void setColor(std::shared_ptr<UIColor>) override { notes->emplace_back("swatch colour"); }
    Notes* notes = nullptr;
};
NS_CLASS_IMPLEMENTATION(NotingInfo, UIView)

template <class Part> std::shared_ptr<Part> make(Notes& notes) {
    const auto part = Part::alloc();
    part->init();
    part->notes = &notes;
    return part;
}

class PickerOrder : public ::testing::Test {
protected:
    void install() {
        picker->setColorMapView(map);
        picker->setBrightnessSlider(slider);
        picker->setColorInfoView(info);
    }
    Notes take() { return std::exchange(notes, {}); }
    void show(CGSize size) {
        window.show(picker, {{0, 0}, size});
        if (const auto own = std::dynamic_pointer_cast<ZKColorMapView>(picker->colorMapView().view())) window.keep(own);
    }

    Notes notes; // outlives the parts
    PickerScene window{{375, 623}, 2};
    std::shared_ptr<NotingMap> map = make<NotingMap>(notes);
    std::shared_ptr<NotingSlider> slider = make<NotingSlider>(notes);
    std::shared_ptr<NotingInfo> info = make<NotingInfo>(notes);
    std::shared_ptr<ZKColorPickerView> picker = ZKColorPickerView::alloc()->init();
};

} // namespace

TEST_F(PickerOrder, NewPartsAreToldTheColourAndAMapItsBrightnessBefore) {
    install();
    EXPECT_EQ(take(), (Notes{"map brightness", "map colour", "slider colour", "swatch colour"}));
}

TEST_F(PickerOrder, NewColourGoesToSliderSwatchAndMapWhoseBrightnessComesLast) {
    install();
    take();
    picker->setColor(rgb(1, 0, 0));
    EXPECT_EQ(take(), (Notes{"slider colour", "swatch colour", "map colour", "map brightness"}));
}

TEST_F(PickerOrder, NewBrightnessGoesToTheMapBeforeTheColourDoesAndThenToTheSwatch) {
    install();
    take();
    slider->bright = NSNumber::numberWithDouble(0.5);
    slider->sendActionsForControlEvents(UIControlEventValueChanged);
    EXPECT_EQ(take(), (Notes{"map brightness", "map colour", "swatch colour"}));
}

TEST_F(PickerOrder, ColourOfTheMapGoesToTheSliderAndThenToTheSwatch) {
    install();
    take();
    map->shown = rgb(0, 1, 0);
    map->sendActionsForControlEvents(UIControlEventValueChanged);
    EXPECT_EQ(take(), (Notes{"slider colour", "swatch colour"}));
}

TEST_F(PickerOrder, EndOfEditingTellsNoPart) {
    install();
    take();
    const auto reports = EventLog::listeningTo(*picker);
    map->sendActionsForControlEvents(UIControlEventEditingDidEnd);
    slider->sendActionsForControlEvents(UIControlEventEditingDidEnd);
    EXPECT_EQ(take(), Notes{});
    EXPECT_EQ(reports->take(), "value value");
}

TEST_F(PickerOrder, ValueOfAPartIsNoReportOfThePicker) {
    install();
    const auto reports = EventLog::listeningTo(*picker);
    map->shown = rgb(0, 1, 0);
    map->sendActionsForControlEvents(UIControlEventValueChanged);
    slider->sendActionsForControlEvents(UIControlEventValueChanged);
    EXPECT_EQ(reports->take(), "");
}

TEST_F(PickerOrder, SliderWithoutABrightnessMakesThePickerBlack) {
    install();
    picker->setColor(rgb(1, 0, 0));
    slider->sendActionsForControlEvents(UIControlEventValueChanged);
    EXPECT_EQ(hsba(picker->color()).brightness, 0);
}

TEST_F(PickerOrder, MapWithAColourWithoutATripleLeavesThePickers) {
    install();
    picker->setColor(rgb(1, 0, 0));
    for (const auto& color : {UIColor::patternColor(), std::shared_ptr<UIColor>()}) {
        map->shown = color;
        map->sendActionsForControlEvents(UIControlEventValueChanged);
        EXPECT_EQ(rgba(picker->color()).red, 1);
    }
}

TEST_F(PickerOrder, SliderThatMovesMakesMapAndSwatch) {
    picker->setBrightnessSlider(slider);
    slider->bright = NSNumber::numberWithDouble(0.5);
    slider->sendActionsForControlEvents(UIControlEventValueChanged);

    ASSERT_EQ(picker->subviews().size(), 2u);
    EXPECT_TRUE(std::dynamic_pointer_cast<ZKColorInfoView>(picker->subviews()[1]));
    const auto made = std::dynamic_pointer_cast<ZKColorMapView>(picker->subviews()[0]);
    ASSERT_TRUE(made);
    EXPECT_EQ(window.keep(made)->brightness(), 0.5);
}

TEST_F(PickerOrder, MapThatMovesMakesSliderAndSwatch) {
    picker->setColorMapView(map);
    map->shown = rgb(0, 0.5, 0);
    map->sendActionsForControlEvents(UIControlEventValueChanged);

    ASSERT_EQ(picker->subviews().size(), 2u);
    const auto made = std::dynamic_pointer_cast<ZKBrightnessSlider>(picker->subviews()[0]);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->brightness()->doubleValue(), 0.5);
    EXPECT_TRUE(std::dynamic_pointer_cast<ZKColorInfoView>(picker->subviews()[1]));
}

TEST_F(PickerOrder, PartsAreMadeOnce) {
    const auto made = std::static_pointer_cast<ZKColorMapView>(picker->colorMapView().view());
    window.keep(made);
    EXPECT_EQ(picker->colorMapView().view(), made);
    EXPECT_EQ(picker->brightnessSlider().view(), picker->brightnessSlider().view());
    EXPECT_EQ(picker->colorInfoView().view(), picker->colorInfoView().view());
    EXPECT_EQ(picker->subviews().size(), 3u);
}

TEST_F(PickerOrder, EndOfEditingIsHeardOfTheDefaultPartsToo) {
    show({375, 623});
    const auto reports = EventLog::listeningTo(*picker);
    picker->colorMapView().view()->sendActionsForControlEvents(UIControlEventEditingDidEnd);
    picker->brightnessSlider().view()->sendActionsForControlEvents(UIControlEventEditingDidEnd);
    EXPECT_EQ(reports->take(), "value value");
}

TEST_F(PickerOrder, ReplacedMapAndSwatchStayOnScreenAndTheMapIsStillHeard) {
    show({375, 623});
    const auto oldMap = picker->colorMapView().view();
    const auto oldInfo = picker->colorInfoView().view();
    picker->setColorMapView(map);
    picker->setColorInfoView(info);
    EXPECT_EQ(oldMap->superview(), picker);
    EXPECT_EQ(oldInfo->superview(), picker);

    std::static_pointer_cast<ZKColorMapView>(oldMap)->setColor(rgb(0, 1, 0));
    oldMap->sendActionsForControlEvents(UIControlEventValueChanged);
    EXPECT_EQ(rgba(picker->color()).green, 1);
}

TEST_F(PickerOrder, NilMapMakesWayForANewDefaultOne) {
    install();
    picker->setColorMapView(nullptr);
    const auto made = std::dynamic_pointer_cast<ZKColorMapView>(picker->colorMapView().view());
    ASSERT_TRUE(made);
    EXPECT_EQ(window.keep(made)->superview(), picker);
}

TEST_F(PickerOrder, MapIsAskedForItsSizeOnceItHasAllThatIsFreeBelowTheBand) {
    picker->setColorMapView(map);
    show({300, 500});
    EXPECT_EQ(map->askedAt, (CGRect{{0, 104}, {300, 396}}));
    EXPECT_EQ(map->frame(), (CGRect{{0, 300}, {150, 200}}));
}

TEST_F(PickerOrder, SwatchStandsInTheMiddleOfTheBandAndTheSliderEndsNinePointsFromTheEdge) {
    show({375, 623});
    const double mapTop = picker->colorMapView().view()->frame().origin.y;
    EXPECT_EQ(mapTop, 623 - 512);
    EXPECT_EQ(picker->colorInfoView().view()->frame(), (CGRect{{8, (mapTop - 84) / 2}, {66, 84}}));
    const auto& bar = picker->brightnessSlider().view();
    EXPECT_EQ(bar->alignmentRectForFrame(bar->frame()),
              (CGRect{{83, (mapTop - 84) / 2 + 84 - 29}, {375 - 9 - 83, 11}}));
}

TEST_F(PickerOrder, KeepsTheFrameItIsMadeWithAndIsWhite) {
    const auto made = ZKColorPickerView::alloc()->initWithFrame({{1, 2}, {320, 460}});
    EXPECT_EQ(made->frame(), (CGRect{{1, 2}, {320, 460}}));
    EXPECT_TRUE(made->backgroundColor()->isEqual(*UIColor::whiteColor()));
    EXPECT_TRUE(made->subviews().empty());
}

TEST_F(PickerOrder, AnswersToItsThreeActionsByName) {
    for (const char* action : {"brightnessChanged:", "colorMapColorChanged:", "sendActions"})
        EXPECT_TRUE(picker->respondsToSelector(action)) << action;
}
