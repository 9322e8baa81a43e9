#include "desktop/links/DefaultApplication.h"

#include "tests/support/FakeDesktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* mail = "message/rfc822";

class DefaultApplication : public testing::Test {
protected:
    static std::string nameOf(const std::string& mediaType) {
        const auto application = seat::defaultApplication(mediaType);
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

    const auto application = seat::defaultApplication(mail);

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
    EXPECT_THAT(seat::splitExecLine("mailer --compose  %u"), ElementsAre("mailer", "--compose", "%u"));
    EXPECT_THAT(seat::splitExecLine("\"/opt/my mailer/run\" \"a \\\"b\\\"\" \"\""),
                ElementsAre("/opt/my mailer/run", "a \"b\"", ""));
}

TEST_F(DefaultApplication, DeletedEntryHidesTheSystemsOwn) {
    addPrograms({"mailer"});
    desktop.setDefault(mail, "mailer");
    write(desktop.file("system-data/applications/mailer.desktop"),
          "[Desktop Entry]\nName=System\nExec=" + desktop.programs() + "/mailer %u\n");
    write(desktop.applications() + "/mailer.desktop", "[Desktop Entry]\nName=mailer\nExec=mailer\nHidden=true\n");

    EXPECT_EQ(nameOf(mail), "none");
}

TEST_F(DefaultApplication, ProgramForATerminalDoesNotCount) {
    const std::string program = desktop.addProgram("reader");
    desktop.setDefault(mail, "reader");
    write(desktop.applications() + "/reader.desktop",
          "[Desktop Entry]\nName=reader\nExec=" + program + " %u\nTerminal=true\n");

    EXPECT_EQ(nameOf(mail), "none");
}

TEST_F(DefaultApplication, EscapesOfTheFileComeBeforeThoseOfTheLine) {
    desktop.addProgram("mailer");
    desktop.setDefault(mail, "mailer");
    write(desktop.applications() + "/mailer.desktop",
          "[Desktop Entry]\nName=mailer\nExec=" + desktop.programs() + "/mailer \"a\\\\\\\\b\"\\s%u\n");

    const auto application = seat::defaultApplication(mail);

    ASSERT_TRUE(application);
    EXPECT_THAT(application->command, ElementsAre(desktop.programs() + "/mailer", "a\\b", "%u"));
}

TEST(ExecLine, UnclosedQuoteMakesItMalformed) { EXPECT_THAT(seat::splitExecLine("mailer \"a b"), IsEmpty()); }

std::vector<std::string> argumentsFor(std::vector<std::string> command) {
    command.insert(command.begin(), "/usr/bin/mailer");
    return seat::argumentsFor({"The Mailer", std::move(command)}, "/tmp/a b.eml");
}

TEST(ExecArguments, CodeInsideALongerArgumentIsReplaced) {
    EXPECT_THAT(argumentsFor({"--open=%u", "-x"}), ElementsAre("--open=/tmp/a b.eml", "-x"));
    EXPECT_THAT(argumentsFor({"a%fb"}), ElementsAre("a/tmp/a b.emlb"));
}

TEST(ExecArguments, TwoPercentSignsAreOne) {
    EXPECT_THAT(argumentsFor({"100%%", "%%u", "%u"}), ElementsAre("100%", "%u", "/tmp/a b.eml"));
}

TEST(ExecArguments, CodesForNothingGoAndTakeTheirArgumentWithThem) {
    EXPECT_THAT(argumentsFor({"%i", "%k", "%m", "-t%k", "", "%U"}), ElementsAre("-t", "", "/tmp/a b.eml"));
}

TEST(ExecArguments, ProgramHearsItsName) {
    EXPECT_THAT(argumentsFor({"-n", "%c", "%F"}), ElementsAre("-n", "The Mailer", "/tmp/a b.eml"));
}

TEST(ExecArguments, SignAtTheEndIsItself) { EXPECT_THAT(argumentsFor({"50%"}), ElementsAre("50%", "/tmp/a b.eml")); }

} // namespace
