// The daemon's units in a user's own service manager.

#include "tests/machine/jvnd/ControlClient.h"
#include "tests/machine/support/LoginSession.h"
#include "tests/machine/support/Program.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>

namespace machine {
namespace {

namespace fs = std::filesystem;

constexpr const char* units = "/run/systemd/user"; // for every user's manager, until the next boot
constexpr const char* home = "/people/anna";

std::string contents(const fs::path& path) {
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

class JvndUnits : public ::testing::Test {
protected:
    JvndUnits() {
        fs::create_directories(units);
        fs::copy_file(fs::path(JOYVANE_SOURCE_PACKAGING) / "jvnd.socket", fs::path(units) / "jvnd.socket",
                      fs::copy_options::overwrite_existing);
        // The program is where it was built.
        auto service = contents(fs::path(JOYVANE_PACKAGING) / "jvnd.service");
        const auto start = service.find("ExecStart=");
        service.replace(start, service.find('\n', start) - start, std::string("ExecStart=") + JVND_PROGRAM);
        std::ofstream(fs::path(units) / "jvnd.service") << service;
        systemctl({"daemon-reload"});
        systemctl({"start", "jvnd.socket"});
    }
    ~JvndUnits() override {
        systemctl({"stop", "jvnd.socket", "jvnd.service"});
        fs::remove(fs::path(units) / "jvnd.socket");
        fs::remove(fs::path(units) / "jvnd.service");
        fs::remove_all(fs::path(home) / ".local/share/joyvane");
        systemctl({"daemon-reload"});
    }
    std::string systemctl(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"systemctl", "--user"});
        auto [status, output] = run(arguments, kAnna);
        while (output.ends_with('\n')) output.pop_back();
        return output;
    }
    std::string property(const std::string& name) const {
        return systemctl({"show", "--value", "--property=" + name, "jvnd.service"});
    }
    std::string log() const { return run({"journalctl", "--no-pager", "-n", "40", "_UID=1000"}).output; }

    LoginSession& m_session = LoginSession::ofAnna();
    std::string m_path = std::string(home) + "/.local/share/joyvane/Library/Caches/jvncontrol.sock";
    ControlClient m_page{m_path};
};

TEST_F(JvndUnits, TheFirstWhoConnectsIsAnsweredByADaemonThatWasNotThere) {
    EXPECT_EQ(property("ActiveState"), "inactive");

    EXPECT_TRUE(m_page.isServed()) << log();

    EXPECT_EQ(property("ActiveState"), "active");
    struct ::stat status {};
    ASSERT_EQ(::stat(m_path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(status.st_uid, kAnna);
    ASSERT_EQ(::stat(fs::path(m_path).parent_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(JvndUnits, RestartsStopsAndCrashesLeaveTheSocketAsItIs) {
    ASSERT_TRUE(m_page.isServed()) << log();
    struct ::stat before {};
    ASSERT_EQ(::stat(m_path.c_str(), &before), 0);

    for (int i = 0; i < 6; ++i) { // more than the five that the manager grants in ten seconds
        const auto process = property("MainPID");
        if (i % 2 == 0)
            EXPECT_TRUE(m_page.tell(JVNControlCommand::RestartDaemons));
        else
            systemctl({"kill", "--signal=KILL", "jvnd.service"});
        EXPECT_TRUE(waitUntil([&] { return property("MainPID") != process; })) << log();
        EXPECT_TRUE(m_page.isServed()) << i << log();
    }
    systemctl({"stop", "jvnd.service"});
    EXPECT_TRUE(m_page.isServed()) << log();

    struct ::stat after {};
    ASSERT_EQ(::stat(m_path.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(property("Result"), "success");
}

TEST_F(JvndUnits, AtLoginItDoesNotStayWhereNobodyHasUsedThePage) {
    systemctl({"start", "jvnd.service"});
    EXPECT_TRUE(waitUntil([this] { return property("ActiveState") == "inactive"; })) << log();
    EXPECT_EQ(property("Result"), "success");
    EXPECT_TRUE(m_page.isServed()) << "its socket waits";
}

} // namespace
} // namespace machine
