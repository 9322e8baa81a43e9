#include "app/window_size.h"

#include "system/files/root.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/TestRoot.h"

#include <gtest/gtest.h>

namespace {

using app::rememberedWindowSize;
using app::rememberWindowSize;

class WindowSize : public testing::Test {
protected:
    testing_support::TestRoot root;
    testing_support::CapturedLog log;
};

TEST_F(WindowSize, IsKeptForEachScreen) {
    EXPECT_EQ(rememberedWindowSize("HDMI 1 1920x1080"), std::nullopt);

    rememberWindowSize("HDMI 1 1920x1080", {500, 600});
    rememberWindowSize("eDP 1366x768", {384, 700});
    rememberWindowSize("HDMI 1 1920x1080", {510, 610});

    EXPECT_EQ(rememberedWindowSize("HDMI 1 1920x1080"), (CGSize{510, 610}));
    EXPECT_EQ(rememberedWindowSize("eDP 1366x768"), (CGSize{384, 700}));
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(WindowSize, OfTheLatestScreensAreKeptAndNoMore) {
    for (int i = 0; i < 100; ++i) rememberWindowSize("screen " + std::to_string(i), {400.0 + i, 600});

    EXPECT_EQ(rememberedWindowSize("screen 0"), std::nullopt);
    EXPECT_EQ(rememberedWindowSize("screen 99"), (CGSize{499, 600}));
}

TEST_F(WindowSize, ThatNoWindowCanHaveIsNotBelieved) {
    const std::string path = seat::root() + "/.window-sizes";
    for (const char* const text : {"10 10 here\n", "1e9 600 here\n", "nan 600 here\n", "here\n", "500 600\n", ""}) {
        testing_support::TestRoot::write(path, text);
        EXPECT_EQ(rememberedWindowSize("here"), std::nullopt) << text;
    }
    testing_support::TestRoot::write(path, std::string(100'000, 'x'));
    EXPECT_EQ(rememberedWindowSize("here"), std::nullopt);
    EXPECT_EQ(log.lines().size(), 1u) << "that it is too large";
}

} // namespace
