#include "services/jvnd/StatusFile.h"

#include "services/common/log.h"
#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/file.h>

namespace {

namespace fs = std::filesystem;
using daemon_status::Bluetooth;
using daemon_status::InputService;
using daemon_status::Status;

class StatusFileTest : public ::testing::Test {
protected:
    std::string text() const {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool isLocked() const {
        const seat::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        return file && ::flock(file.get(), LOCK_SH | LOCK_NB) != 0;
    }

    testing_support::TemporaryFolder folder;
    std::string path = folder.file("status");
    const Status status{.bluetooth = Bluetooth::blocked,
                        .isKeyboardChosen = true,
                        .inputService = InputService::connected,
                        .readiness = input::Readiness::paused,
                        .keyboards = 255};
};

TEST_F(StatusFileTest, WhatIsShownCanBeReadAgain) {
    jvnd::StatusFile file(path);
    file.show({});
    EXPECT_EQ(daemon_status::statusOf(text()), Status{});

    file.show(status);

    EXPECT_EQ(daemon_status::statusOf(text()), status);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(StatusFileTest, ItIsLockedWhileTheDaemonLivesAndGoesWithIt) {
    {
        jvnd::StatusFile file(path);
        file.show({});
        EXPECT_TRUE(isLocked());
        file.show(status);
        EXPECT_TRUE(isLocked());
    }

    EXPECT_FALSE(fs::exists(path));
}

TEST_F(StatusFileTest, WhatADeadDaemonHasLeftIsReplaced) {
    std::ofstream(path) << "old";
    std::ofstream(path + ".new") << "half";
    jvnd::StatusFile file(path);

    file.show(status);

    EXPECT_EQ(daemon_status::statusOf(text()), status);
    EXPECT_FALSE(fs::exists(path + ".new"));
}

TEST_F(StatusFileTest, OneThatCannotBeWrittenIsLoggedOnce) {
    std::string log;
    services::setLogSink([&log](std::string_view line) { log += std::string(line) + "\n"; });
    jvnd::StatusFile file(folder.file("nowhere/status"));

    file.show({});
    file.show(status);

    EXPECT_EQ(log, "writing " + folder.file("nowhere/status") + ": No such file or directory\n");
    services::setLogSink({});
}

TEST_F(StatusFileTest, ATextThatIsNoStatusIsNone) {
    const std::string good = daemon_status::textOf(status);
    ASSERT_TRUE(daemon_status::statusOf(good));
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_FALSE(daemon_status::statusOf(good.substr(0, size))) << size;
    for (const char* bad : {"2 bluetooth 0 keyboard 0 input 0 readiness 0 keyboards 0\n",
                            "1 bluetooth 5 keyboard 0 input 0 readiness 0 keyboards 0\n",
                            "1 bluetooth 0 keyboard 2 input 0 readiness 0 keyboards 0\n",
                            "1 bluetooth 0 keyboard 0 input 3 readiness 0 keyboards 0\n",
                            "1 bluetooth 0 keyboard 0 input 0 readiness 10 keyboards 0\n",
                            "1 bluetooth 0 keyboard 0 input 0 readiness 0 keyboards 256\n"})
        EXPECT_FALSE(daemon_status::statusOf(bad)) << bad;
}

} // namespace
