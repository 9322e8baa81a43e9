// Opening things with programs: real programs, really started.

#include "desktop/links/browser.h"

#include "system/run_loop/PollLoop.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/LoggedLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

class Browser : public testing::Test {
protected:
    // The program's arguments, once it has noted any.
    std::vector<std::string> startedWith(const std::string& program) {
        loop.runUntil([&] { return !desktop.argumentsOf(program).empty(); });
        return desktop.argumentsOf(program);
    }

    testing_support::FakeDesktop desktop;
    testing_support::LoggedLines log;
    seat::PollLoop loop;
};

TEST_F(Browser, GetsTheAddressInItsPlace) {
    desktop.addDesktopFile("browser", desktop.addProgram("browser") + " --new %u %i --last");
    desktop.setDefault("x-scheme-handler/http", "browser");

    EXPECT_TRUE(seat::openInBrowser("http://a.example/b?d='e'&f"));

    EXPECT_THAT(startedWith("browser"), ElementsAre("--new", "http://a.example/b?d='e'&f", "--last"));
}

TEST_F(Browser, SecureAddressesHaveTheirOwn) {
    desktop.install("x-scheme-handler/http", "plain");
    desktop.install("x-scheme-handler/https", "secure");

    EXPECT_TRUE(seat::openInBrowser("https://a.example/"));

    EXPECT_THAT(startedWith("secure"), ElementsAre("https://a.example/"));
}

TEST_F(Browser, ProgramForPagesStandsIn) {
    desktop.install("text/html", "reader");

    EXPECT_TRUE(seat::openInBrowser("http://a.example/"));

    EXPECT_THAT(startedWith("reader"), ElementsAre("http://a.example/"));
}

TEST_F(Browser, OnADesktopWithoutOneTheReasonIsLogged) {
    EXPECT_FALSE(seat::openInBrowser("http://a.example/"));
    EXPECT_EQ(log.count("the desktop names no browser"), 1u);
}

TEST_F(Browser, OtherAddressesAreNotHandedOn) {
    desktop.install("x-scheme-handler/http", "browser");

    for (const char* address : {"file:///etc/passwd", "javascript:alert(1)", "--help", ""})
        EXPECT_FALSE(seat::openInBrowser(address)) << address;

    EXPECT_EQ(log.count("no web address"), 4u);
}

TEST_F(Browser, PageOnThisMachineIsOpenedByTheProgramForPages) {
    desktop.install("text/html", "reader");
    desktop.install("x-scheme-handler/http", "browser");
    const std::string page = desktop.file("a page.html");

    EXPECT_TRUE(seat::openInBrowser(page));

    EXPECT_THAT(startedWith("reader"), ElementsAre(page));
}

TEST_F(Browser, PageOnThisMachineGoesToTheBrowserWhereNothingElseTakesPages) {
    desktop.install("x-scheme-handler/http", "browser");
    const std::string page = desktop.file("page.html");

    EXPECT_TRUE(seat::openInBrowser(page));

    EXPECT_THAT(startedWith("browser"), ElementsAre(page));
}

TEST_F(Browser, OneThatCannotBeStartedIsReportedAndLogged) {
    desktop.install("x-scheme-handler/http", "browser");
    const testing_support::RefusingTool tool(desktop);
    std::optional<bool> started;

    EXPECT_TRUE(seat::openInBrowser("http://a.example/", [&](bool isStarted) { started = isStarted; }));

    EXPECT_TRUE(loop.runUntil([&] { return started.has_value(); }));
    EXPECT_EQ(started, false);
    EXPECT_EQ(log.count("browser.desktop could not be started"), 1u);
}

} // namespace
