#include "services/jvnd/SettingsFile.h"

#include "services/common/log.h"
#include "tests/support/HeldClock.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace jvnd;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

std::string plist(int type) {
    return "<plist version=\"1.0\"><dict><key>controller_type</key><integer>" + std::to_string(type) +
           "</integer></dict></plist>";
}

class SettingsFileTest : public ::testing::Test {
protected:
    SettingsFileTest() {
        services::setLogSink([this](std::string_view line) { log += std::string(line) + "\n"; });
    }
    ~SettingsFileTest() override { services::setLogSink({}); }

    void write(const std::string& text) const { std::ofstream(path) << text; }
    // As the page does it: a file beside it takes its place.
    void replace(const std::string& text) const {
        std::ofstream(path + ".new") << text;
        fs::rename(path + ".new", path);
    }
    SettingsFile open() {
        return SettingsFile(loop, path, [this] { ++changes; });
    }
    bool waitForType(const SettingsFile& file, std::int64_t type) {
        return loop.runUntil([&] { return file.settings().controllerType == type; });
    }
    void letRun() {
        loop.runUntil([] { return false; }, 5ms);
    }

    std::string log;
    testing_support::TemporaryFolder folder;
    std::string path = folder.file("some/where/com.quorrel.joyvane.plist");
    testing_support::HeldClock clock;
    services::EventLoop loop{clock};
    int changes = 0;
};

TEST_F(SettingsFileTest, ItsFoldersAreMadeForTheUserAlone) {
    const auto file = open();
    struct ::stat status;
    ASSERT_EQ(::stat(folder.file("some/where").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(SettingsFileTest, AFileThatIsReplacedIsReadAgain) {
    const auto file = open();
    replace(plist(1));
    EXPECT_TRUE(waitForType(file, 1));
    for (int type = 2; type < 7; ++type) {
        replace(plist(type));
        EXPECT_TRUE(waitForType(file, type));
    }
    EXPECT_EQ(changes, 6);
}

TEST_F(SettingsFileTest, AFileThatIsWrittenInPlaceIsReadWhenItIsClosed) {
    const auto file = open();
    write(plist(6));
    EXPECT_TRUE(waitForType(file, 6));
}

TEST_F(SettingsFileTest, OneThatIsReplacedByTheSameSettingsIsNoChange) {
    fs::create_directories(fs::path(path).parent_path());
    write(plist(6));
    const auto file = open();
    replace(plist(6));
    letRun();
    EXPECT_EQ(changes, 0);
}

TEST_F(SettingsFileTest, AFileThatIsTakenAwayLeavesTheDefaults) {
    fs::create_directories(fs::path(path).parent_path());
    write(plist(6));
    const auto file = open();
    EXPECT_EQ(file.settings().controllerType, 6);
    fs::remove(path);
    EXPECT_TRUE(waitForType(file, 0));
}

TEST_F(SettingsFileTest, ADamagedFileLeavesTheSettingsBeforeItAndIsLoggedOnce) {
    fs::create_directories(fs::path(path).parent_path());
    write(plist(6));
    auto file = open();
    for (int i = 0; i < 5; ++i) {
        replace("<plist version=\"1.0\"><dict><key>controller_ty");
        letRun();
    }
    EXPECT_EQ(file.settings().controllerType, 6);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_NE(log.find("what was read before holds"), std::string::npos) << log;

    replace(plist(1));
    EXPECT_TRUE(waitForType(file, 1));
}

TEST_F(SettingsFileTest, WhatIsNoFileIsNotWaitedFor) {
    fs::create_directories(fs::path(path).parent_path());
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    const auto file = open();
    EXPECT_EQ(file.settings(), Settings(file.settings()));
    EXPECT_NE(log.find("settings"), std::string::npos);
}

TEST_F(SettingsFileTest, OtherFilesOfTheFolderAreNotHeard) {
    auto file = open();
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path + ".half-written") << "nonsense";
    letRun();
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(log, "");
}

TEST_F(SettingsFileTest, AFolderThatComesBackIsHeardAfterTheNextLook) {
    auto file = open();
    fs::remove_all(folder.file("some"));
    letRun();
    fs::create_directories(fs::path(path).parent_path());
    write(plist(5));
    file.checkWatch();
    EXPECT_EQ(file.settings().controllerType, 5);
    replace(plist(6));
    EXPECT_TRUE(waitForType(file, 6));
}

TEST_F(SettingsFileTest, AThousandReplacementsEndWithTheLast) {
    const auto file = open();
    for (int i = 0; i < 1000; ++i) replace(plist(i % 6));
    replace(plist(6));
    EXPECT_TRUE(waitForType(file, 6));
}

} // namespace
