#include "app/Simulation.h"

#include "app/Bundle.h"
#include "platform/foundation/NSDictionary.h"
#include "system/files/root.h"
#include "system/run_loop/PollLoop.h"
#include "system/socket/address.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/descriptors.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* tool = "/usr/bin/jvndiscovery";
constexpr const char* socketPath = "/Library/Caches/jvncontrol.sock";

// The programs are beside this test program, as they are beside the application.
class SimulationTest : public ::testing::Test {
protected:
    SimulationTest() { seat::setRoot(folder.path()); }
    ~SimulationTest() override { seat::setRoot({}); }

    static app::Bundle bundle(const std::string& daemon, const std::string& toolName, const char* place = tool) {
        app::Bundle result;
        result.manifest = NSDictionary::dictionary();
        if (!daemon.empty()) result.manifest->setObject_forKey(daemon, "JVNDaemon");
        if (toolName.empty()) return result;
        const auto tools = NSDictionary::dictionary();
        tools->setObject_forKey(toolName, place);
        result.manifest->setObject_forKey(tools, "JVNTools");
        return result;
    }
    fs::path under(const char* logical) const { return folder.path() + logical; }
    bool isEmpty() const { return fs::is_empty(folder.path()); }

    seat::PollLoop loop;
    testing_support::TemporaryFolder folder;
    std::string problem;
};

TEST_F(SimulationTest, ABundleWithoutProgramsNeedsNone) {
    app::Simulation simulation;

    EXPECT_TRUE(simulation.start(bundle("", ""), problem));

    EXPECT_TRUE(isEmpty());
    EXPECT_EQ(problem, "");
}

TEST_F(SimulationTest, AToolIsPutInPlaceAndTakenAwayWithItsFolders) {
    {
        app::Simulation simulation;
        ASSERT_TRUE(simulation.start(bundle("", "jvndiscovery"), problem)) << problem;
        EXPECT_TRUE(fs::is_symlink(under(tool)));
        EXPECT_TRUE(fs::is_regular_file(under(tool))) << fs::read_symlink(under(tool));
    }
    EXPECT_TRUE(isEmpty());
}

TEST_F(SimulationTest, AFolderThatOthersUseStays) {
    {
        app::Simulation simulation;
        ASSERT_TRUE(simulation.start(bundle("", "jvndiscovery"), problem));
        std::ofstream(under("/usr/bin/other")) << "x";
    }
    EXPECT_TRUE(fs::exists(under("/usr/bin/other")));
    EXPECT_FALSE(fs::exists(fs::symlink_status(under(tool))));
}

TEST_F(SimulationTest, ToolsCanBeTakenAwayAndPutBack) {
    {
        app::Simulation simulation;
        ASSERT_TRUE(simulation.start(bundle("", "jvndiscovery"), problem));

        simulation.removeTools();
        EXPECT_FALSE(fs::exists(fs::symlink_status(under(tool))));
        simulation.placeTools(problem);

        EXPECT_EQ(problem, "");
        EXPECT_TRUE(fs::is_regular_file(under(tool)));
    }
    EXPECT_TRUE(isEmpty());
}

TEST_F(SimulationTest, AToolOfTheUsersOwnStaysInItsPlace) {
    fs::create_directories(under("/usr/bin"));
    std::ofstream(under(tool)) << "mine";
    {
        app::Simulation simulation;
        ASSERT_TRUE(simulation.start(bundle("", "jvndiscovery"), problem));
        EXPECT_FALSE(fs::is_symlink(under(tool)));
    }
    EXPECT_TRUE(fs::exists(under(tool)));
}

TEST_F(SimulationTest, ALinkOfTheUsersOwnStaysWhateverItsNameOrWhereItLeads) {
    fs::create_directories(under("/usr/bin"));
    for (const char* target : {"/nowhere/jvndiscovery", "/bin/true"}) {
        fs::create_symlink(target, under(tool));
        {
            app::Simulation simulation;
            EXPECT_TRUE(simulation.start(bundle("", "jvndiscovery"), problem)) << problem;
            simulation.removeTools();
            simulation.placeTools(problem);
            EXPECT_EQ(fs::read_symlink(under(tool)), target);
        }
        EXPECT_EQ(fs::read_symlink(under(tool)), target);
        fs::remove(under(tool));
    }
}

TEST_F(SimulationTest, ALinkThatTheUserPutInPlaceOfOursStays) {
    {
        app::Simulation simulation;
        ASSERT_TRUE(simulation.start(bundle("", "jvndiscovery"), problem));
        fs::remove(under(tool));
        fs::create_symlink("/bin/true", under(tool));
    }
    EXPECT_EQ(fs::read_symlink(under(tool)), "/bin/true");
}

TEST_F(SimulationTest, WhatAKilledProcessLeftIsTakenAwayAtTheNextStart) {
    const pid_t killed = ::fork();
    if (killed == 0) {
        app::Simulation simulation;
        ::_exit(simulation.start(bundle("", "jvndiscovery"), problem) ? 0 : 1); // nothing is put away
    }
    int status = -1;
    ::waitpid(killed, &status, 0);
    ASSERT_EQ(status, 0);
    ASSERT_TRUE(fs::is_symlink(under(tool)));

    const app::Simulation simulation; // of a start that simulates nothing

    EXPECT_FALSE(fs::exists(fs::symlink_status(under(tool))));
}

TEST_F(SimulationTest, WhatIsNotThereIsNamed) {
    app::Simulation simulation;
    EXPECT_FALSE(simulation.start(bundle("", "nobodystool"), problem));
    std::string expected = "simulate: there is no program for "; // in one expression, g++ 12 warns of a false bound
    EXPECT_EQ(problem, expected.append(tool));

    problem.clear();
    EXPECT_FALSE(simulation.start(bundle("nobodysdaemon", ""), problem));
    EXPECT_EQ(problem, "simulate: there is no nobodysdaemon beside this program");
}

TEST_F(SimulationTest, APlaceThatCannotBeMadeIsNamed) {
    std::ofstream(under("/usr")) << "a file where a folder is wanted";
    app::Simulation simulation;

    EXPECT_FALSE(simulation.start(bundle("", "jvndiscovery"), problem));

    EXPECT_TRUE(problem.starts_with("simulate: " + under(tool).string())) << problem;
}

TEST_F(SimulationTest, ToolsLearnThatTheyAreToSimulateAsLongAsItLasts) {
    {
        app::Simulation simulation;
        ASSERT_TRUE(simulation.start(bundle("", ""), problem));
        EXPECT_STREQ(std::getenv("JOYVANE_SIMULATE"), "1");
    }
    EXPECT_EQ(std::getenv("JOYVANE_SIMULATE"), nullptr);
}

TEST_F(SimulationTest, ADaemonThatIsNoneIsSaidNotToHaveStarted) {
    app::Simulation simulation;

    // The tool says nothing like "ready".
    EXPECT_FALSE(simulation.start(bundle("jvndiscovery", ""), problem));

    EXPECT_TRUE(problem.ends_with("did not start")) << problem;
}

TEST_F(SimulationTest, TheDaemonListensWhenStartReturnsAndIsGoneAfterwards) {
    const auto children = testing_support::unreapedChildren();
    {
        app::Simulation simulation;
        ASSERT_TRUE(simulation.start(bundle("jvnd", ""), problem)) << problem;
        EXPECT_TRUE(fs::is_socket(under(socketPath)));
        EXPECT_EQ(testing_support::unreapedChildren(), children + 1);
    }
    EXPECT_FALSE(fs::exists(under(socketPath)));
    EXPECT_EQ(testing_support::unreapedChildren(), children);
}

TEST_F(SimulationTest, TheDaemonCanBeStoppedAndStartedAgainAndIsOneAtATime) {
    app::Simulation simulation;
    ASSERT_TRUE(simulation.start(bundle("jvnd", ""), problem));
    const auto children = testing_support::unreapedChildren();

    simulation.stopDaemon();
    EXPECT_FALSE(fs::exists(under(socketPath)));
    simulation.startDaemon(problem);
    simulation.startDaemon(problem);

    EXPECT_EQ(problem, "");
    EXPECT_TRUE(fs::is_socket(under(socketPath)));
    EXPECT_EQ(testing_support::unreapedChildren(), children);
}

TEST_F(SimulationTest, ADaemonThatDiesIsReapedAndSaidAtOnce) {
    const testing_support::LoggedLines log;
    app::Simulation simulation;
    std::string heard;
    const auto children = testing_support::unreapedChildren();
    ASSERT_TRUE(simulation.start(bundle("jvnd", ""), problem));
    simulation.setListener([&](const std::string& line) { heard += line + "|"; });
    std::string end;
    simulation.setDaemonEndListener([&](const std::string& how) { end += how + "|"; });
    const auto daemon = testing_support::newestChild();

    ::kill(daemon, SIGKILL);

    EXPECT_TRUE(loop.runUntil([&] { return heard.find("was ended by signal 9|") != std::string::npos; }));
    EXPECT_EQ(log.count("the simulated jvnd (process " + std::to_string(daemon) + ") was ended by signal 9"), 1u);
    EXPECT_EQ(end, "was ended by signal 9|");
    EXPECT_EQ(testing_support::unreapedChildren(), children);
    simulation.startDaemon(problem);
    EXPECT_EQ(problem, "");
    EXPECT_TRUE(fs::is_socket(under(socketPath)));
}

TEST_F(SimulationTest, WhatTheDaemonSaysIsHeardWithItsName) {
    app::Simulation simulation;
    std::string heard;
    ASSERT_TRUE(simulation.start(bundle("jvnd", ""), problem));
    simulation.setListener([&](const std::string& line) { heard += line + "|"; });

    const int caller = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(seat::connectToPath(caller, under(socketPath)), 0);
    const char query[12] = {5};
    EXPECT_EQ(::write(caller, query, sizeof query), 12);

    EXPECT_TRUE(loop.runUntil([&] { return heard.find('|') != std::string::npos; }, 5));
    EXPECT_TRUE(heard.starts_with("jvnd: 1 < 05 00 ")) << heard;
    ::close(caller);
}

} // namespace
