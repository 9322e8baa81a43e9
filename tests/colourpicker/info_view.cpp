#include "colourpicker/ZKColorInfoView.h"

#include "platform/uikit/UIImage.h"
#include "platform/uikit/UILabel.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

class ColorInfoView : public ::testing::TestWithParam<int> {
protected:
    std::shared_ptr<ZKColorInfoView> show() {
        const auto info = ZKColorInfoView::alloc()->init();
        window.show(info, {{0, 0}, {66, 84}});
        return info;
    }
    // What the view draws by itself, in pixels.
    static CGImageRef drawn(ZKColorInfoView& info) {
        UIGraphicsBeginImageContextWithOptions({66, 84}, /*opaque*/ false, 0);
        info.drawRect({{0, 0}, {66, 84}});
        const auto image = UIGraphicsGetImageFromCurrentImageContext();
        UIGraphicsEndImageContext();
        return image->CGImage();
    }
    static std::uint32_t pixel(const CGImage& image, double x, double y) {
        return image
            .pixels[static_cast<std::size_t>(y * GetParam()) * image.width + static_cast<std::size_t>(x * GetParam())];
    }

    PickerScene window{{66, 84}, static_cast<double>(GetParam())};
};

} // namespace

TEST_P(ColorInfoView, HasNeitherColourNorTextWhenMade) {
    const auto info = ZKColorInfoView::alloc()->init();
    EXPECT_FALSE(info->color());
    EXPECT_EQ(info->hexColorLabel()->text(), "");
    EXPECT_EQ(info->frame(), CGRectZero);
    EXPECT_TRUE(info->backgroundColor()->isEqual(*UIColor::clearColor()));
}

TEST_P(ColorInfoView, TextIsTheHexCodeCutAndNotRounded) {
    const auto info = ZKColorInfoView::alloc()->init();
    const std::pair<std::shared_ptr<UIColor>, const char*> cases[] = {
        {rgb(1, 0.5, 0), "#ff7f00"},      {UIColor::whiteColor(), "#ffffff"},   {UIColor::blackColor(), "#000000"},
        {rgb(0.999, 0, 1, 0), "#fe00ff"}, {rgb(2, 0, 0), "#1fe0000"},           {rgb(0, 2, 0), "#01fe00"},
        {rgb(0, 0, -1), "#ffffff01"},     {UIColor::patternColor(), "#000000"}, {nullptr, "#000000"},
    };
    for (const auto& [color, text] : cases) {
        info->setColor(color);
        EXPECT_EQ(info->hexColorLabel()->text(), text);
        EXPECT_EQ(info->color(), color);
    }
}

TEST_P(ColorInfoView, LabelIsTheStripAtTheBottomAndTheBorderGoesRoundAll) {
    const auto info = show();
    EXPECT_EQ(info->hexColorLabel()->frame(), (CGRect{{0, 66}, {66, 18}}));
    EXPECT_EQ(info->hexColorLabel()->font()->pointSize(), 12);
    EXPECT_EQ(info->hexColorLabel()->textAlignment(), NSTextAlignmentCenter);
    EXPECT_EQ(rgba(info->hexColorLabel()->textColor()).red, 0.5);
    EXPECT_EQ(info->borderLayer()->frame(), (CGRect{{0, 0}, {66, 84}}));
    EXPECT_EQ(info->borderLayer()->cornerRadius(), 3);
    EXPECT_EQ(info->borderLayer()->borderColor(), UIColor::lightGrayColor()->CGColor());
    EXPECT_EQ(info->borderLayer()->borderWidth(), 1.0 / GetParam()) << "one device pixel";
    EXPECT_EQ(info->viewForBaselineLayout(), info->hexColorLabel());
}

TEST_P(ColorInfoView, ConstantsAreThoseOfTheLayout) {
    EXPECT_EQ(kZKColorInfoViewLabelHeight, 18.0);
    EXPECT_EQ(kZKColorInfoViewCornerRadius, 3.0);
}

TEST_P(ColorInfoView, FillsAllButTheStripWithRoundedTopCorners) {
    const auto info = ZKColorInfoView::alloc()->init();
    info->setColor(rgb(0, 0, 1));
    const auto image = drawn(*info);

    EXPECT_EQ(pixel(*image, 33, 33), 0xff0000ffu);
    EXPECT_EQ(pixel(*image, 33, 0), 0xff0000ffu);
    EXPECT_EQ(pixel(*image, 0, 65), 0xff0000ffu) << "bottom corners are square";
    EXPECT_EQ(pixel(*image, 65, 65), 0xff0000ffu);
    EXPECT_LT(pixel(*image, 0, 0) >> 24, 0x80u);
    EXPECT_LT(pixel(*image, 65.9, 0) >> 24, 0x80u);
    EXPECT_EQ(pixel(*image, 33, 66), 0u) << "the strip stays clear";
    EXPECT_EQ(pixel(*image, 33, 83), 0u);
}

TEST_P(ColorInfoView, WithoutAColourTheContextsOwnFillIsUsed) {
    const auto info = ZKColorInfoView::alloc()->init();
    EXPECT_EQ(pixel(*drawn(*info), 33, 33), 0xff000000u);
}

TEST_P(ColorInfoView, SameColourAgainStillRedraws) {
    const auto info = show();
    const auto color = rgb(0, 0, 1);
    info->setColor(color);
    window.finger.settle();
    EXPECT_TRUE(window.scene.prepareFrame().empty());

    info->setColor(color);

    EXPECT_FALSE(window.scene.prepareFrame().empty());
}

TEST_P(ColorInfoView, OneFromAnArchiveIsBuiltTheSameWay) {
    const auto info = ZKColorInfoView::alloc()->initWithCoder(NSCoder::coderWithDictionary(nullptr));
    ASSERT_TRUE(info);
    EXPECT_TRUE(info->hexColorLabel());
    EXPECT_TRUE(info->borderLayer());
}

INSTANTIATE_TEST_SUITE_P(AtScale, ColorInfoView, ::testing::Values(1, 2, 3));
