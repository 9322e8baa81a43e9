// Asked of the desktop's real library, through its own tool.

#include "desktop/links/desktop_program.h"

#include "system/run_loop/PollLoop.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/LoggedLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

constexpr const char* mail = "message/rfc822";

class DesktopProgram : public testing::Test {
protected:
    // The entry's file name without its folder and ending.
    static std::string nameOf(const std::string& mediaType) {
        const auto program = seat::defaultProgram(mediaType);
        return program ? std::filesystem::path(program->entry).stem().string() : "none";
    }
    // Programs with entries; which is the default is the test's business.
    void addPrograms(std::initializer_list<const char*> names) const {
        for (const char* name : names) desktop.addDesktopFile(name, desktop.addProgram(name) + " %u");
    }
    static void write(const std::string& file, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        std::ofstream(file) << text;
    }
    // Whether the desktop's library could start it.
    bool start(const std::string& mediaType, const std::string& fileOrAddress) {
        const auto program = seat::defaultProgram(mediaType);
        return program && start(*program, fileOrAddress);
    }
    bool start(const seat::DesktopProgram& program, const std::string& fileOrAddress) {
        std::optional<bool> started;
        seat::startProgram(program, fileOrAddress, [&](bool isStarted) { started = isStarted; });
        loop.runUntil([&] { return started.has_value(); });
        return started.value_or(false);
    }
    std::vector<std::string> startedWith(const std::string& program) {
        loop.runUntil([&] { return !desktop.argumentsOf(program).empty(); });
        return desktop.argumentsOf(program);
    }

    testing_support::FakeDesktop desktop;
    testing_support::LoggedLines log;
    seat::PollLoop loop;
};

TEST_F(DesktopProgram, IsNobodyOnAnEmptyDesktop) { EXPECT_EQ(nameOf(mail), "none"); }

TEST_F(DesktopProgram, IsTheUsersChoiceBeforeTheSystems) {
    addPrograms({"own", "system"});
    write(desktop.file("system-config/mimeapps.list"), "[Default Applications]\nmessage/rfc822=system.desktop\n");
    EXPECT_EQ(nameOf(mail), "system");

    desktop.setDefault(mail, "own");

    EXPECT_EQ(nameOf(mail), "own");
    EXPECT_EQ(nameOf("text/html"), "none");
}

TEST_F(DesktopProgram, WithoutAChoiceTheInstalledOnesCountUnlessTheUserHasTakenThemOff) {
    addPrograms({"mailer"});
    write(desktop.applications() + "/mimeinfo.cache", "[MIME Cache]\nmessage/rfc822=mailer.desktop;\n");
    EXPECT_EQ(nameOf(mail), "mailer");

    write(desktop.config() + "/mimeapps.list", "[Removed Associations]\nmessage/rfc822=mailer.desktop;\n");

    EXPECT_EQ(nameOf(mail), "none");
}

TEST_F(DesktopProgram, AnEntryInAFolderIsFoundByItsNameWithADash) {
    addPrograms({"plain"});
    write(desktop.applications() + "/suite/mail-app.desktop",
          "[Desktop Entry]\nType=Application\nName=Suite\nExec=" + desktop.programs() + "/plain %u\n");
    desktop.setDefault(mail, "suite-mail-app");

    const auto program = seat::defaultProgram(mail);

    ASSERT_TRUE(program);
    EXPECT_EQ(program->entry, desktop.applications() + "/suite/mail-app.desktop");
}

TEST_F(DesktopProgram, OneThatIsNotInstalledAnyMoreDoesNotCount) {
    desktop.install(mail, "mailer");
    desktop.removeProgram("mailer");

    EXPECT_EQ(nameOf(mail), "none");
}

TEST_F(DesktopProgram, AMessageOfTheLibraryInTheUsersLanguageMakesNoDifference) {
    desktop.install(mail, "mailer");
    ::setenv("LANGUAGE", "de:fr", 1);

    EXPECT_EQ(nameOf(mail), "mailer");

    ::unsetenv("LANGUAGE");
}

TEST_F(DesktopProgram, IsStartedWithTheFileOrTheAddressInItsPlace) {
    desktop.addDesktopFile("mailer", desktop.addProgram("mailer") + " --new %u --last");
    desktop.setDefault(mail, "mailer");
    const std::string file = desktop.file("a b.eml");

    EXPECT_TRUE(start(mail, file));
    EXPECT_THAT(startedWith("mailer"), ElementsAre("--new", file, "--last"));
}

TEST_F(DesktopProgram, OneThatCannotBeStartedIsReportedAndLogged) {
    desktop.install(mail, "mailer");
    const auto program = seat::defaultProgram(mail);
    ASSERT_TRUE(program);
    desktop.removeProgram("mailer");

    std::optional<bool> started;
    seat::startProgram(*program, "mailto:", [&](bool isStarted) { started = isStarted; });
    EXPECT_FALSE(started) << "nobody waits";
    loop.runUntil([&] { return started.has_value(); });

    EXPECT_EQ(started, false);
    EXPECT_EQ(log.count("mailer.desktop could not be started"), 1u);
}

TEST_F(DesktopProgram, AScriptWithoutItsInterpreterIsReportedThoughTheDesktopsToolStartsIt) {
    desktop.install(mail, "mailer");
    write(desktop.programs() + "/mailer", "#!/nowhere/sh\n");

    EXPECT_FALSE(start(mail, "mailto:"));

    EXPECT_EQ(log.count("mailer.desktop could not be started: /nowhere/sh: No such file or directory"), 1u);
}

TEST_F(DesktopProgram, AFileThatMayNotBeExecutedIsReported) {
    desktop.addDesktopFile("mailer", "\"" + desktop.addProgram("mail er") + "\" %u");
    desktop.setDefault(mail, "mailer");
    const auto program = seat::defaultProgram(mail);
    ASSERT_TRUE(program);
    std::filesystem::permissions(desktop.programs() + "/mail er", std::filesystem::perms::owner_read);

    EXPECT_FALSE(start(*program, "mailto:"));

    EXPECT_EQ(log.count("/mail er: Permission denied"), 1u);
}

TEST_F(DesktopProgram, WithoutTheDesktopsToolThereIsNone) {
    desktop.install(mail, "mailer");
    const std::string path = ::getenv("PATH");
    ::setenv("PATH", "/nowhere", 1);

    EXPECT_EQ(nameOf(mail), "none");

    ::setenv("PATH", path.c_str(), 1);
}

TEST_F(DesktopProgram, AToolThatNeverAnswersIsWaitedForASecondAtMost) {
    desktop.install(mail, "mailer");
    write(desktop.programs() + "/gio", "#!/bin/sh\nexec sleep 100\n");
    std::filesystem::permissions(desktop.programs() + "/gio", std::filesystem::perms::owner_all);
    const std::string path = ::getenv("PATH");
    ::setenv("PATH", (desktop.programs() + ":" + path).c_str(), 1);

    EXPECT_EQ(nameOf(mail), "none");

    ::setenv("PATH", path.c_str(), 1);
}

} // namespace
