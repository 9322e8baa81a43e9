#include "colourpicker/TileGrid.h"
#include "colourpicker/ZKColorMapView.h"
#include "kit/quartz/screen.h"
#include "platform/uikit/UIImage.h"
#include "tests/colourpicker/reference_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// A pixel as the arithmetic has it, premultiplied, from 0 to 1.
struct Exact {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    void paint(double r, double g, double b, double cover) {
        red = r * cover + red * (1 - cover);
        green = g * cover + green * (1 - cover);
        blue = b * cover + blue * (1 - cover);
        alpha = cover + alpha * (1 - cover);
    }
};

// Which pixels of a line are a stripe's: those whose middle it holds. The last stripe goes on to the end.
std::vector<double> covers(std::size_t pixels, double from, double to, bool isLast) {
    std::vector<double> result(pixels);
    for (std::size_t i = 0; i < pixels; ++i) {
        const double middle = static_cast<double>(i) + 0.5;
        result[i] = middle > from && (middle <= to || isLast) ? 1 : 0;
    }
    return result;
}

int worstDifference(const CGImage& image, const ReferenceField& field, double scale) {
    std::vector<Exact> exact(image.width * image.height);
    const double t = field.tile * scale;
    const auto pure = [&](int column) {
        // The tile in the top row has the pure hue; the table has it at three quarters of the brightness.
        const auto* const tile = std::ranges::find_if(referenceTiles, [&](const ReferenceTile& at) {
            return &referenceFields[at.field] == &field && at.column == column && at.row == 0;
        });
        return Exact{tile->red / 0.75, tile->green / 0.75, tile->blue / 0.75, 1};
    };
    const auto down = covers(image.height, 0, field.rows * t, /*isLast=*/true);
    for (int i = 0; i < field.columns; ++i) {
        const Exact color = pure(i);
        const auto across = covers(image.width, i * t, (i + 1) * t, i + 1 == field.columns);
        for (std::size_t y = 0; y < image.height; ++y)
            for (std::size_t x = 0; x < image.width; ++x)
                if (across[x] > 0)
                    exact[y * image.width + x].paint(color.red, color.green, color.blue, across[x] * down[y]);
    }
    const auto across = covers(image.width, 0, field.columns * t, /*isLast=*/true);
    for (int j = 0; j < field.rows; ++j) {
        const double white = field.limit * j / (field.rows - 1);
        const auto rowCovers = covers(image.height, j * t, (j + 1) * t, j + 1 == field.rows);
        for (std::size_t y = 0; y < image.height; ++y)
            for (std::size_t x = 0; x < image.width; ++x)
                if (rowCovers[y] > 0) exact[y * image.width + x].paint(1, 1, 1, white * rowCovers[y] * across[x]);
    }

    double worst = 0;
    for (std::size_t at = 0; at < exact.size(); ++at) {
        const double channels[] = {exact[at].blue, exact[at].green, exact[at].red, exact[at].alpha};
        for (int channel = 0; channel < 4; ++channel) {
            const double shown = image.pixels[at] >> (8 * channel) & 0xff;
            worst = std::max(worst, std::abs(shown - channels[channel] * 255));
        }
    }
    return static_cast<int>(std::ceil(worst - 1e-9));
}

class ColorField : public ::testing::TestWithParam<int> {
protected:
    ColorField() { seat::setMainScreen({375, 667}, GetParam()); }
    ~ColorField() override { seat::setMainScreen({375, 667}, 1); }
};

} // namespace

TEST_P(ColorField, EveryPixelOfFiveFieldsIsWithinOneStepOfExactBlending) {
    for (const ReferenceField& field : referenceFields) {
        const auto image = ZKColorMapView::colorMapImageWithSize_tileSize_saturationUpperLimit(
            {field.width, field.height}, field.tile, field.limit);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->size(), (CGSize{field.columns * field.tile, field.rows * field.tile}));
        EXPECT_LE(worstDifference(*image->CGImage(), field, GetParam()), 1) << field.width << " x " << field.height;
    }
}

TEST_P(ColorField, TilesMeetWithoutSeams) {
    const auto image = ZKColorMapView::colorMapImageWithSize_tileSize_saturationUpperLimit({320, 352}, 16, 0.9f);
    const CGImage& pixels = *image->CGImage();
    const std::size_t tile = 16u * GetParam();
    for (std::size_t y = 0; y < pixels.height; ++y) {
        for (std::size_t x = 0; x < pixels.width; ++x) {
            const std::size_t corner = y / tile * tile * pixels.width + x / tile * tile;
            ASSERT_EQ(pixels.pixels[y * pixels.width + x], pixels.pixels[corner]) << x << ", " << y;
        }
    }
}

TEST_P(ColorField, BackgroundOfWholeTilesIsBlackAllOver) {
    const auto image = ZKColorMapView::backgroundImageWithSize_tileSize({330, 359}, 16);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (CGSize{320, 352}));
    EXPECT_EQ(image->CGImage()->width, 320u * GetParam());
    for (const std::uint32_t pixel : image->CGImage()->pixels) ASSERT_EQ(pixel, 0xff000000);
}

TEST_P(ColorField, WithoutWholeTilesThereIsNoPicture) {
    EXPECT_FALSE(ZKColorMapView::colorMapImageWithSize_tileSize_saturationUpperLimit({10, 352}, 16, 0.9));
    EXPECT_FALSE(ZKColorMapView::backgroundImageWithSize_tileSize({320, 10}, 16));
    EXPECT_FALSE(ZKColorMapView::backgroundImageWithSize_tileSize({320, 352}, 0));
}

INSTANTIATE_TEST_SUITE_P(AtScale, ColorField, ::testing::Values(1, 2, 3));

namespace {

// The tile of 16 points that holds the middle of each pixel of a line, at a scale of so many tenths: in whole numbers.
std::vector<int> ownersOfPixels(int tiles, int tenths) {
    const int pixels = (16 * tiles * tenths + 9) / 10;
    std::vector<int> owners(static_cast<std::size_t>(pixels));
    for (int p = 0; p < pixels; ++p)
        owners[static_cast<std::size_t>(p)] = std::min((2 * p + 1) * 5 / (16 * tenths), tiles - 1);
    return owners;
}

class FieldAtAnyScale : public ::testing::Test {
protected:
    ~FieldAtAnyScale() override { seat::setMainScreen({375, 667}, 1); }
};

} // namespace

TEST_F(FieldAtAnyScale, EachPixelIsWhollyOneTilesAndTheOneThatHoldsItsMiddle) {
    constexpr int columns = 6;
    constexpr int rows = 4;
    for (int tenths = 5; tenths <= 80; ++tenths) {
        seat::setMainScreen({375, 667}, tenths / 10.0);
        const auto map =
            ZKColorMapView::colorMapImageWithSize_tileSize_saturationUpperLimit({16 * columns, 16 * rows}, 16, 1);
        const auto background = ZKColorMapView::backgroundImageWithSize_tileSize({16 * columns, 16 * rows}, 16);
        ASSERT_TRUE(map && background) << tenths;
        const CGImage& image = *map->CGImage();
        const auto across = ownersOfPixels(columns, tenths);
        const auto down = ownersOfPixels(rows, tenths);
        ASSERT_EQ(image.width, across.size()) << tenths;
        ASSERT_EQ(image.height, down.size()) << tenths;
        // Six columns are the six pure colours; four rows are none to three thirds of white.
        constexpr int pure[columns][3] = {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 1, 1}, {0, 0, 1}, {1, 0, 1}};
        std::size_t wrong = 0;
        for (std::size_t y = 0; y < image.height; ++y)
            for (std::size_t x = 0; x < image.width; ++x) {
                const std::uint32_t pixel = image.pixels[y * image.width + x];
                const int white = 85 * down[y];
                std::uint32_t exact = 0xff;
                for (const int channel : pure[across[x]])
                    exact = exact << 8 | static_cast<std::uint32_t>(channel == 1 ? 255 : white);
                wrong += pixel != exact;
            }
        EXPECT_EQ(wrong, 0u) << tenths;
        ASSERT_EQ(background->CGImage()->pixels.size(), image.pixels.size());
        const auto& below = background->CGImage()->pixels;
        EXPECT_EQ(std::ranges::count(below, 0xff000000), std::ssize(below)) << tenths;
    }
}
