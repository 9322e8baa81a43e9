#include "host/mail/default_application.h"

#include "tests/support/fake_desktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* mail = "message/rfc822";

class DefaultApplication : public testing::Test {
protected:
    static std::string nameOf(const std::string& mediaType) {
        const auto application = host::defaultApplication(mediaType);
        return application ? application->name : "none";
    }
    // Programs with desktop files; which is the default is the test's business.
    void addPrograms(std::initializer_list<const char*> names) const {
        for (const char* name : names) desktop.addDesktopFile(name, desktop.addProgram(name) + " %u");
    }
    static void write(const std::string& file, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        std::ofstream(file) << text;
    }

    testing_support::FakeDesktop desktop;
};

TEST_F(DefaultApplication, IsNobodyOnAnEmptyDesktop) { EXPECT_EQ(nameOf(mail), "none"); }

TEST_F(DefaultApplication, IsTheUsersChoice) {
    desktop.install(mail, "mailer");

    const auto application = host::defaultApplication(mail);

    ASSERT_TRUE(application);
    EXPECT_EQ(application->name, "mailer");
    EXPECT_THAT(application->command, ElementsAre(desktop.programs() + "/mailer", "%u"));
    EXPECT_EQ(nameOf("text/html"), "none");
}

TEST_F(DefaultApplication, TypesThatOnlyBeginAlikeAreOthers) {
    desktop.install("message/rfc822-headers", "mailer");
    EXPECT_EQ(nameOf(mail), "none");
}

TEST_F(DefaultApplication, UsersListComesBeforeTheSystems) {
    addPrograms({"own", "system"});
    write(desktop.file("system-config/mimeapps.list"), "[Default Applications]\nmessage/rfc822=system.desktop\n");
    EXPECT_EQ(nameOf(mail), "system");

    desktop.setDefault(mail, "own");

    EXPECT_EQ(nameOf(mail), "own");
}

TEST_F(DefaultApplication, ListOfTheRunningDesktopComesFirst) {
    addPrograms({"plain", "special"});
    desktop.setDefault(mail, "plain");
    write(desktop.config() + "/quartzite-mimeapps.list", "[Default Applications]\nmessage/rfc822=special.desktop\n");
    EXPECT_EQ(nameOf(mail), "plain");

    ::setenv("XDG_CURRENT_DESKTOP", "Quartzite:Other", 1);

    EXPECT_EQ(nameOf(mail), "special");
}

TEST_F(DefaultApplication, WithoutAChoiceTheInstalledOnesCount) {
    addPrograms({"mailer"});
    write(desktop.applications() + "/mimeinfo.cache", "[MIME Cache]\nmessage/rfc822=mailer.desktop;\n");

    EXPECT_EQ(nameOf(mail), "mailer");
}

TEST_F(DefaultApplication, IsTheFirstOfTheListedThatExists) {
    addPrograms({"there"});
    write(desktop.config() + "/mimeapps.list",
          "[Default Applications]\nmessage/rfc822=gone.desktop;../evil.desktop;there.desktop;\n");

    EXPECT_EQ(nameOf(mail), "there");
}

TEST_F(DefaultApplication, ProgramThatIsNotThereDoesNotCount) {
    desktop.install(mail, "mailer");
    desktop.removeProgram("mailer");

    EXPECT_EQ(nameOf(mail), "none");
}

TEST_F(DefaultApplication, ChoicesUnderOtherHeadingsDoNotCount) {
    addPrograms({"mailer"});
    write(desktop.config() + "/mimeapps.list", "[Removed Associations]\nmessage/rfc822=mailer.desktop;\n");

    EXPECT_EQ(nameOf(mail), "none");
}

TEST(ExecLine, IsSplitAtBlanksOutsideQuotes) {
    EXPECT_THAT(host::splitExecLine("mailer --compose  %u"), ElementsAre("mailer", "--compose", "%u"));
    EXPECT_THAT(host::splitExecLine("\"/opt/my mailer/run\" \"a \\\"b\\\"\" \"\""),
                ElementsAre("/opt/my mailer/run", "a \"b\"", ""));
}

TEST(ExecLine, UnclosedQuoteMakesItMalformed) { EXPECT_THAT(host::splitExecLine("mailer \"a b"), IsEmpty()); }

} // namespace
