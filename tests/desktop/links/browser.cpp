// Opening things with programs: real programs, really started.

#include "desktop/links/browser.h"

#include "desktop/links/DefaultApplication.h"
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

    EXPECT_TRUE(seat::openInBrowser("http://a.example/b c?d='e'&f"));

    EXPECT_THAT(startedWith("browser"), ElementsAre("--new", "http://a.example/b c?d='e'&f", "--last"));
}

TEST_F(Browser, WithoutAPlaceTheAddressComesLast) {
    desktop.addDesktopFile("browser", desktop.addProgram("browser") + " --new");
    desktop.setDefault("x-scheme-handler/http", "browser");

    EXPECT_TRUE(seat::openInBrowser("http://a.example/"));

    EXPECT_THAT(startedWith("browser"), ElementsAre("--new", "http://a.example/"));
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

TEST_F(Browser, ProgramThatCannotBeStartedIsLogged) {
    const std::string broken = desktop.programs() + "/broken";
    std::ofstream(broken) << "#!/no/such/interpreter\n";
    std::filesystem::permissions(broken, std::filesystem::perms::owner_all);

    seat::openWithApplication({"broken", {broken, "%u"}}, "http://a.example/");

    EXPECT_TRUE(loop.runUntil([&] { return log.count(broken + " could not be started") == 1; }));
}

} // namespace
