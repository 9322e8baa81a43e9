#include "tests/simulator/StandIn.h"

#include "platform/foundation/NSData.h"
#include "platform/messaging_center.h"
#include "platform/runtime.h"
#include "system/files/root.h"
#include "system/notify/NotifyListener.h"
#include "system/preferences/preferences_store.h"
#include "tests/support/BusSession.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr auto centerName = "com.quorrel.jvn.bootstrap";

class Reports final : public NSObject {
    NS_CLASS(Reports)
public:
    void handle(const std::string&, const std::shared_ptr<NSDictionary>& dictionary) {
        story += dictionary ? std::to_string(dictionary->objectForKey("JVNDiscoveryState").integerValue()) + " "
                            : "nothing ";
        ++count;
        if (whenCalled) whenCalled();
    }
    std::string story;
    std::size_t count = 0;
    std::function<void()> whenCalled;
};
NS_CLASS_IMPLEMENTATION(Reports, NSObject, method<&Reports::handle>("handle:userInfo:"))

class JVNDiscovery : public ::testing::Test, protected testing_support::BusSession {
protected:
    JVNDiscovery() {
        seat::setRoot(m_folder.path());
        m_center->registerForMessageName_target_selector("JVNDiscoveryUpdate", m_reports, "handle:userInfo:");
        m_center->runServerOnCurrentThread();
        EXPECT_TRUE(connected());
    }
    ~JVNDiscovery() override { seat::setRoot(""); }

    void script(const std::string& text) {
        std::filesystem::create_directories(m_folder.file("var/tmp"));
        std::ofstream(m_folder.file("var/tmp/jvndiscovery.script")) << text;
    }
    std::unique_ptr<StandIn> start() {
        return std::make_unique<StandIn>(JVNDISCOVERY_PROGRAM, std::vector<std::string>{}, m_folder.path());
    }
    std::optional<int> end(StandIn& tool) {
        return whileRunning([&tool] { return tool.end(); });
    }
    bool reported(const std::string& story) {
        return runUntil([&] { return m_reports->story == story; });
    }
    id storedAddress() const { return seat::preferenceValue("com.quorrel.joyvane", "PS4BluetoothAddress"); }

    testing_support::TemporaryFolder m_folder;
    std::shared_ptr<CPDistributedMessagingCenter> m_center = CPDistributedMessagingCenter::centerNamed(centerName);
    std::shared_ptr<Reports> m_reports = Reports::alloc();
};

TEST_F(JVNDiscovery, ReportsInOrderAndStoresTheAddressBeforeItSaysThatItIsPaired) {
    script("report 4\nwait 5\nreport 0\nstore 00:1b:dc:0f:a1:27\nreport 2\n");
    bool stored = false;
    bool announced = false;
    m_reports->whenCalled = [&] {
        if (m_reports->story == "4 0 2 ") stored = bool(storedAddress());
    };
    const seat::NotifyListener listener("com.quorrel.jvnprefs.changed", [&] { announced = true; });

    const auto tool = start();

    EXPECT_EQ(0, end(*tool));
    EXPECT_EQ("4 0 2 ", m_reports->story);
    EXPECT_TRUE(stored);
    const auto address = storedAddress().object<NSData>();
    ASSERT_TRUE(address);
    EXPECT_EQ((std::vector<std::uint8_t>{0x00, 0x1b, 0xdc, 0x0f, 0xa1, 0x27}),
              std::vector<std::uint8_t>(address->bytes().begin(), address->bytes().end()));
    EXPECT_TRUE(runUntil([&] { return announced; }));
}

TEST_F(JVNDiscovery, AnInterruptEndsIt) {
    script("report 4\nwait 60000\n");
    const auto tool = start();
    ASSERT_TRUE(reported("4 "));

    tool->signal(SIGINT);

    EXPECT_EQ(0, end(*tool));
}

TEST_F(JVNDiscovery, CanIgnoreInterruptsButNotTheRequestToEnd) {
    script("ignore-interrupt\nreport 4\nwait 200\nreport 0\nwait 60000\n");
    const auto tool = start();
    ASSERT_TRUE(reported("4 "));

    tool->signal(SIGINT);
    EXPECT_TRUE(reported("4 0 "));

    tool->signal(SIGTERM);
    EXPECT_EQ(0, end(*tool));
}

TEST_F(JVNDiscovery, CanReportAnything) {
    script("report 1\nreport 99\nreport -5\nreport nothing\nreport other\nreport text 3\n");
    const auto tool = start();

    EXPECT_EQ(0, end(*tool));

    EXPECT_EQ("1 99 -5 nothing 0 3 ", m_reports->story);
}

TEST_F(JVNDiscovery, CanFlood) {
    script("flood 5000\nreport 2\n");
    const auto tool = start();

    EXPECT_EQ(0, end(*tool));

    EXPECT_EQ(5001u, m_reports->count);
}

TEST_F(JVNDiscovery, CanExitAndCrash) {
    script("report 4\nexit 7\n");
    EXPECT_EQ(7, end(*start()));
    script("report 4\ncrash\n");
    EXPECT_EQ(-SIGABRT, end(*start()));
    EXPECT_EQ("4 4 ", m_reports->story);
}

TEST_F(JVNDiscovery, GoesOnWithoutACenterAndWithoutABus) {
    m_center->stopServer();
    script("report 4\nexit 3\n");
    EXPECT_EQ(3, end(*start()));
    bus.kill();
    EXPECT_EQ(3, end(*start()));
}

TEST_F(JVNDiscovery, EndsWithWhoStartedIt) {
    script("report 4\nwait 60000\n");
    ::prctl(PR_SET_CHILD_SUBREAPER, 1); // so that the orphan's end can be seen
    const ::pid_t starter = ::fork();
    if (starter == 0) {
        ::setenv("JOYVANE_ROOT", m_folder.path().c_str(), 1);
        if (::fork() == 0) {
            ::execl(JVNDISCOVERY_PROGRAM, "jvndiscovery", static_cast<char*>(nullptr));
            ::_exit(127);
        }
        for (;;) ::pause();
    }
    ASSERT_TRUE(reported("4 "));

    ::kill(starter, SIGKILL);
    ::waitpid(starter, nullptr, 0);

    int status = -1;
    EXPECT_TRUE(runUntil([&] {
        seat::queueOnMain([] {});
        return ::waitpid(-1, &status, WNOHANG) > 0;
    }));
    EXPECT_EQ(0, status);
    ::prctl(PR_SET_CHILD_SUBREAPER, 0);
}

TEST_F(JVNDiscovery, WithoutARootWithArgumentsOrWithANonsensicalScriptItSaysSo) {
    StandIn rootless(JVNDISCOVERY_PROGRAM, {});
    EXPECT_EQ(2, rootless.end());
    StandIn spoken(JVNDISCOVERY_PROGRAM, {"--now"}, m_folder.path());
    EXPECT_EQ(2, spoken.end());
    script("nonsense\n");
    const auto confused = start();
    EXPECT_EQ(2, confused->end());
    EXPECT_TRUE(confused->hears("nonsense: not a step"));
}

} // namespace
