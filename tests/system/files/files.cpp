#include "platform/foundation/NSData.h"
#include "platform/foundation/NSError.h"
#include "platform/foundation/NSFileManager.h"
#include "system/files/root.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing_support::CapturedLog;
using testing_support::TemporaryFolder;

std::string textOf(const std::shared_ptr<NSData>& data) {
    return data ? std::string(data->bytes().begin(), data->bytes().end()) : "(nil)";
}

std::shared_ptr<NSData> dataOf(const std::string& text) { return NSData::dataWithVector({text.begin(), text.end()}); }

class Root {
public:
    explicit Root(const std::string& path) { seat::setRoot(path); }
    ~Root() { seat::setRoot(""); }
};

TEST(Files, ContentsComeBackWhole) {
    const TemporaryFolder folder;
    const std::string contents = std::string("a\0b", 3) + std::string(100'000, 'x');
    std::ofstream(folder.file("data")) << contents;

    EXPECT_EQ(textOf(NSData::dataWithContentsOfFile(folder.file("data"))), contents);
}

TEST(Files, EmptyFileGivesEmptyData) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("data")).flush();

    const auto data = NSData::dataWithContentsOfFile(folder.file("data"));

    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->length(), 0u);
}

TEST(Files, MissingFileGivesNilWithoutALine) {
    const CapturedLog log;
    const TemporaryFolder folder;

    EXPECT_EQ(NSData::dataWithContentsOfFile(folder.file("none")), nullptr);

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Files, FolderPipeAndTooLargeAFileAreRefusedAtOnce) {
    const CapturedLog log;
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    std::ofstream(folder.file("large")) << std::string(11, 'x');

    EXPECT_EQ(NSData::dataWithContentsOfFile(folder.path()), nullptr);
    EXPECT_EQ(NSData::dataWithContentsOfFile(folder.file("pipe")), nullptr);
    EXPECT_EQ(NSData::dataWithContentsOfFile(folder.file("large"), 10), nullptr);
    EXPECT_EQ(NSData::dataWithContentsOfFile("/dev/zero"), nullptr);

    EXPECT_THAT(log.lines(), ElementsAre("reading " + folder.path() + ": Is a directory",
                                         "reading " + folder.file("pipe") + ": Invalid argument",
                                         "reading " + folder.file("large") + ": File too large",
                                         "reading /dev/zero: Invalid argument"));
}

TEST(Files, FileThatSaysItIsEmptyButIsNotIsReadToItsEnd) {
    EXPECT_THAT(textOf(NSData::dataWithContentsOfFile("/proc/self/status")), HasSubstr("Name:"));
    const CapturedLog log;
    EXPECT_EQ(NSData::dataWithContentsOfFile("/proc/self/status", 10), nullptr);
}

TEST(Files, FolderIsListedWithHiddenNames) {
    const TemporaryFolder folder;
    std::ofstream(folder.file(".hidden")).flush();
    std::ofstream(folder.file("com.quorrel.joyvane.plist.a1b2c3")).flush();
    std::filesystem::create_directory(folder.file("sub"));

    const auto names = NSFileManager::defaultManager()->contentsOfDirectoryAtPath_error(folder.path() + "/", nullptr);

    ASSERT_TRUE(names);
    EXPECT_THAT(*names, UnorderedElementsAre(".hidden", "com.quorrel.joyvane.plist.a1b2c3", "sub"));
}

TEST(Files, FolderThatCannotBeListedGivesNothingAndAnError) {
    const TemporaryFolder folder;
    std::shared_ptr<NSError> error;

    EXPECT_FALSE(NSFileManager::defaultManager()->contentsOfDirectoryAtPath_error(folder.file("none"), &error));

    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), ENOENT);
    EXPECT_EQ(error->localizedDescription(), "listing " + folder.file("none") + ": No such file or directory");
    EXPECT_EQ(NSFileManager::defaultManager(), NSFileManager::defaultManager());
}

TEST(Root, LogicalPathsStandUnderTheRoot) {
    const TemporaryFolder folder;
    const Root root(folder.path() + "/");
    std::filesystem::create_directories(folder.file("var/mobile"));

    ASSERT_TRUE(dataOf("hello")->writeToFile_options_error("/var/mobile/note", NSDataWritingAtomic, nullptr));

    EXPECT_TRUE(std::filesystem::exists(folder.file("var/mobile/note")));
    EXPECT_EQ(textOf(NSData::dataWithContentsOfFile("/var/mobile/note")), "hello");
    const auto names = NSFileManager::defaultManager()->contentsOfDirectoryAtPath_error("/var/mobile/", nullptr);
    ASSERT_TRUE(names);
    EXPECT_THAT(*names, ElementsAre("note"));
}

TEST(Root, WithoutOneThePathIsThePath) {
    EXPECT_EQ(seat::hostPath("/var/mobile"), "/var/mobile");
    EXPECT_EQ(seat::hostPath(""), "");
}

TEST(Root, PathsCannotClimbOutOfIt) {
    const Root root("/some/root");

    EXPECT_EQ(seat::hostPath("/var/./mobile/"), "/some/root/var/./mobile/");
    EXPECT_EQ(seat::hostPath("/../../etc/passwd"), "/some/root/etc/passwd");
    EXPECT_EQ(seat::hostPath("/var/../../../etc"), "/some/root/etc");
    EXPECT_EQ(seat::hostPath("/var/a..b"), "/some/root/var/a..b");
    EXPECT_EQ(seat::hostPath("relative/file"), "relative/file");
    EXPECT_EQ(seat::hostPath("/"), "/some/root/");
}

} // namespace
