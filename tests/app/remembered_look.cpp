#include "app/remembered_look.h"

#include "system/files/root.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

class RememberedLook : public ::testing::Test {
protected:
    RememberedLook() { seat::setRoot(root.path()); }
    ~RememberedLook() override { seat::setRoot({}); }

    void write(const std::string& text) const { std::ofstream(root.path() + "/.look") << text; }

    testing_support::CapturedLog log;
    testing_support::TemporaryFolder root;
};

TEST_F(RememberedLook, IsReadBackAsItWas) {
    EXPECT_FALSE(app::rememberedLook());
    const seat::DesktopLook plain{.colors = {}, .textScale = 1, .fontFamily = {}};
    const seat::DesktopLook other{
        .colors = {true, true, CGColor{0.5, 0.25, 1, 1}}, .textScale = 1.25, .fontFamily = "Noto Sans"};
    for (const auto& look : {plain, other}) {
        app::rememberLook(look);
        ASSERT_TRUE(app::rememberedLook());
        EXPECT_TRUE(*app::rememberedLook() == look);
    }
}

TEST_F(RememberedLook, GoesWhenNobodySaysAnything) {
    app::rememberLook(seat::DesktopLook{});
    app::rememberLook(std::nullopt);
    EXPECT_FALSE(app::rememberedLook());
    EXPECT_FALSE(std::filesystem::exists(root.path() + "/.look"));
}

TEST_F(RememberedLook, ThatIsNotOursIsNone) {
    for (const char* const text : {"", "1", "dark", "0 0 nan - ", "0 0 -2 -", "0 0 1 2,0,0", "0 0 1 0,1", "7 0 1 -"}) {
        write(text);
        EXPECT_FALSE(app::rememberedLook()) << text;
    }
}

TEST_F(RememberedLook, IsWrittenOnlyWhenItIsAnotherOne) {
    app::rememberLook(seat::DesktopLook{});
    const auto written = std::filesystem::last_write_time(root.path() + "/.look");
    std::filesystem::permissions(root.path(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    app::rememberLook(seat::DesktopLook{});
    std::filesystem::permissions(root.path(), std::filesystem::perms::owner_all);
    EXPECT_EQ(std::filesystem::last_write_time(root.path() + "/.look"), written);
    EXPECT_TRUE(log.lines().empty());
}

} // namespace
