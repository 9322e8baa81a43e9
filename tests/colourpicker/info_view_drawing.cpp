// The swatch: what it is built of, how it follows its size, and what of a rectangle it draws.

#include "colourpicker/ZKColorInfoView.h"
#include "platform/uikit/UIImage.h"
#include "platform/uikit/UILabel.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

class ColorInfoDrawing : public ::testing::Test {
protected:
    CGImageRef drawn(CGRect rect) {
        UIGraphicsBeginImageContextWithOptions({66, 84}, /*opaque*/ false, 1);
        info->drawRect(rect);
        const auto image = UIGraphicsGetImageFromCurrentImageContext();
        UIGraphicsEndImageContext();
        return image->CGImage();
    }
    static std::uint32_t pixel(const CGImage& image, std::size_t x, std::size_t y) {
        return image.pixels[y * image.width + x];
    }

    PickerScene window{{200, 200}, 1};
    std::shared_ptr<ZKColorInfoView> info = ZKColorInfoView::alloc()->init();
};

} // namespace

TEST_F(ColorInfoDrawing, LabelIsClearAndTheBorderLiesAboveIt) {
    EXPECT_EQ(info->hexColorLabel()->superview(), info);
    EXPECT_TRUE(info->hexColorLabel()->backgroundColor()->isEqual(*UIColor::clearColor()));
    EXPECT_EQ(rgba(info->hexColorLabel()->textColor()).alpha, 1);
    const auto& layers = info->layer()->sublayers();
    ASSERT_EQ(layers.size(), 2u);
    EXPECT_EQ(layers[0], info->hexColorLabel()->layer());
    EXPECT_EQ(layers[1], info->borderLayer());
    EXPECT_FALSE(info->borderLayer()->backgroundColor()) << "a border and nothing in it";
}

TEST_F(ColorInfoDrawing, KeepsTheFrameItIsMadeWith) {
    EXPECT_EQ(ZKColorInfoView::alloc()->initWithFrame({{1, 2}, {66, 84}})->frame(), (CGRect{{1, 2}, {66, 84}}));
}

TEST_F(ColorInfoDrawing, LabelAndBorderFollowANewSize) {
    window.show(info, {{0, 0}, {66, 84}});
    info->setFrame({{20, 30}, {100, 50}});
    window.scene.prepareFrame();
    EXPECT_EQ(info->hexColorLabel()->frame(), (CGRect{{0, 32}, {100, 18}}));
    EXPECT_EQ(info->borderLayer()->frame(), (CGRect{{0, 0}, {100, 50}}));
}

TEST_F(ColorInfoDrawing, LabelOfALowSwatchReachesOutAbove) {
    window.show(info, {{0, 0}, {66, 10}});
    EXPECT_EQ(info->hexColorLabel()->frame(), (CGRect{{0, -8}, {66, 18}}));
    drawn({{0, 0}, {66, 10}});
}

TEST_F(ColorInfoDrawing, FillHasTheSizeOfTheRectangleToDrawAndBeginsAtTheOrigin) {
    info->setColor(rgb(0, 0, 1));
    const auto image = drawn({{20, 20}, {40, 50}});
    EXPECT_EQ(pixel(*image, 20, 31), 0xff0000ffu);
    EXPECT_EQ(pixel(*image, 39, 31), 0xff0000ffu);
    EXPECT_EQ(pixel(*image, 40, 16), 0u);
    EXPECT_EQ(pixel(*image, 20, 32), 0u);
}

TEST_F(ColorInfoDrawing, FillIsRoundedByFourPointsAndTheBorderByThree) {
    info->setColor(rgb(0, 0, 1));
    const auto image = drawn({{0, 0}, {66, 84}});
    EXPECT_NE(pixel(*image, 3, 0), 0xff0000ffu) << "the arc ends at the fourth point";
    EXPECT_EQ(pixel(*image, 4, 0), 0xff0000ffu);
    EXPECT_EQ(info->borderLayer()->cornerRadius(), 3);
}

TEST_F(ColorInfoDrawing, TranslucentColourIsDrawnTranslucentAndNamedWithoutItsAlpha) {
    info->setColor(rgb(1, 1, 1, 0.5));
    EXPECT_EQ(info->hexColorLabel()->text(), "#ffffff");
    EXPECT_EQ(pixel(*drawn({{0, 0}, {66, 84}}), 33, 33) >> 24, 128u);
}
