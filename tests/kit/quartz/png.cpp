#include "desktop/painting/png.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace {

class Png : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "pngXXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::filesystem::path folder;
};

TEST_F(Png, BringsBackEveryPixel) {
    CGImage image;
    image.width = 7;
    image.height = 3;
    for (std::uint32_t i = 0; i < 21; ++i) image.pixels.push_back(0xff000000U | (i * 0x0b0703U));
    image.pixels[4] = 0;

    ASSERT_TRUE(seat::writePng(folder / "a.png", image));
    const auto back = seat::readPng(folder / "a.png");

    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->width, 7U);
    EXPECT_EQ(back->height, 3U);
    EXPECT_EQ(back->pixels, image.pixels);
}

TEST_F(Png, FileThatIsNoneOrCannotBeWrittenFails) {
    EXPECT_EQ(seat::readPng(folder / "missing.png"), nullptr);
    CGImage image;
    image.width = image.height = 1;
    image.pixels = {0};
    EXPECT_FALSE(seat::writePng(folder / "no such folder" / "a.png", image));
    EXPECT_FALSE(seat::writePng(folder / "empty.png", CGImage{}));
}

} // namespace
