#include "app/tour/StandInDesktop.h"

#include "desktop/links/desktop_program.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace {

bool has(const char* mediaType) { return seat::defaultProgram(mediaType).has_value(); }

TEST(StandInDesktop, HasABrowserAndMailOnlyWhenItIsToHaveIt) {
    const testing_support::TemporaryFolder folder;
    app::StandInDesktop desktop(folder.path());
    ASSERT_TRUE(desktop.isThere());

    EXPECT_TRUE(has("x-scheme-handler/http"));
    EXPECT_FALSE(has("message/rfc822"));
    EXPECT_TRUE(desktop.installMail(folder.file("it's a message.eml")));
    EXPECT_TRUE(has("message/rfc822"));
    EXPECT_TRUE(desktop.removeMail());
    EXPECT_FALSE(has("message/rfc822"));
}

TEST(StandInDesktop, LeavesTheUsersFoldersAndItsOwnFolderAsTheyWere) {
    const testing_support::TemporaryFolder folder;
    ::setenv("XDG_DATA_HOME", "/the/users/own", 1);
    ::unsetenv("XDG_CONFIG_HOME");
    {
        const app::StandInDesktop desktop(folder.path());
        EXPECT_STRNE("/the/users/own", ::getenv("XDG_DATA_HOME"));
        EXPECT_TRUE(::getenv("XDG_CONFIG_HOME"));
    }
    EXPECT_STREQ("/the/users/own", ::getenv("XDG_DATA_HOME"));
    EXPECT_FALSE(::getenv("XDG_CONFIG_HOME"));
    EXPECT_FALSE(std::filesystem::exists(folder.path())) << "it was for this desktop alone";
    ::unsetenv("XDG_DATA_HOME");
}

TEST(StandInDesktop, InAFolderThatCannotBeWrittenIsNotThere) {
    const app::StandInDesktop desktop("/proc/self");
    EXPECT_FALSE(desktop.isThere());
}

} // namespace
