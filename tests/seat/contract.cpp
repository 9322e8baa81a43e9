// The platform's contract where a seat meets files, peers and children: what holds on every seat, a sentence a test.
#include "kit/seat.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSError.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/log.h"
#include "platform/notify.h"
#include "platform/socket.h"
#include "platform/task.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/TestRoot.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

namespace {

const std::string folder = "var/mobile/Library/Preferences";
const std::string domain = "com.example.contract";

class Contract : public ::testing::Test {
protected:
    std::string preferences() const { return m_root.file(folder + "/" + domain + ".plist"); }

    testing_support::TestRoot m_root;
    testing_support::CapturedLog m_log;
};

TEST_F(Contract, APreferenceIsReadBackAndNilRemovesItsKeyAlone) {
    ASSERT_EQ(seat::setPreferenceValue(domain, "one", id(NSNumber::numberWithInt(1)), nullptr),
              seat::PreferenceWrite::Stored);
    ASSERT_EQ(seat::setPreferenceValue(domain, "two", id("2"), nullptr), seat::PreferenceWrite::Stored);
    ASSERT_EQ(seat::setPreferenceValue(domain, "one", id(), nullptr), seat::PreferenceWrite::Stored);

    EXPECT_FALSE(seat::preferenceValue(domain, "one"));
    EXPECT_EQ(seat::preferenceValue(domain, "two"), id("2"));
}

TEST_F(Contract, APreferenceThatAnotherProgramWroteIsReadAfresh) {
    ASSERT_EQ(seat::setPreferenceValue(domain, "one", id(NSNumber::numberWithInt(1)), nullptr),
              seat::PreferenceWrite::Stored);
    testing_support::TestRoot::write(preferences(),
                                     "<plist version=\"1.0\"><dict><key>one</key><integer>7</integer></dict></plist>");

    EXPECT_EQ(seat::preferenceValue(domain, "one"), id(NSNumber::numberWithInt(7)));
}

TEST_F(Contract, ADamagedPreferencesFileReadsAsEmptyAndIsMovedAsideNotOverwritten) {
    const std::string damaged = "this is no property list";
    testing_support::TestRoot::write(preferences(), damaged);
    EXPECT_FALSE(seat::preferenceValue(domain, "one"));
    EXPECT_EQ(testing_support::TestRoot::read(preferences()), damaged) << "reading changes nothing";

    ASSERT_EQ(seat::setPreferenceValue(domain, "one", id(NSNumber::numberWithInt(1)), nullptr),
              seat::PreferenceWrite::Stored);

    EXPECT_EQ(seat::preferenceValue(domain, "one"), id(NSNumber::numberWithInt(1)));
    const auto names = NSFileManager::defaultManager()->contentsOfDirectoryAtPath_error("/" + folder, nullptr);
    ASSERT_TRUE(names);
    EXPECT_TRUE(std::ranges::any_of(*names, [&](const std::string& name) {
        return testing_support::TestRoot::read(m_root.file(folder + "/" + name)) == damaged;
    }));
}

TEST_F(Contract, APreferencesFileBeyondTheBoundsIsLeftAloneAndWritesAreRefused) {
    std::string deep = "<plist version=\"1.0\"><dict><key>one</key>";
    for (int i = 0; i < 100; ++i) deep += "<array>";
    for (int i = 0; i < 100; ++i) deep += "</array>";
    deep += "</dict></plist>";
    for (const std::string& content : {deep, std::string(5 << 20, ' ')}) {
        testing_support::TestRoot::write(preferences(), content);
        const std::size_t lines = m_log.lines().size();

        EXPECT_EQ(seat::setPreferenceValue(domain, "one", id(NSNumber::numberWithInt(1)), nullptr),
                  seat::PreferenceWrite::Failed);

        EXPECT_TRUE(testing_support::TestRoot::read(preferences()) == content);
        const auto names = NSFileManager::defaultManager()->contentsOfDirectoryAtPath_error("/" + folder, nullptr);
        ASSERT_TRUE(names);
        for (const std::string& name : *names) EXPECT_EQ(name.find("damaged"), std::string::npos) << name;
        EXPECT_EQ(m_log.lines().size(), lines + 1);
    }
}

TEST_F(Contract, APreferenceThatCannotBeStoredIsAFailureWithOneLine) {
    testing_support::TestRoot::write(m_root.file("var/mobile"), "a file where a folder should be");

    EXPECT_EQ(seat::setPreferenceValue(domain, "one", id(NSNumber::numberWithInt(1)), nullptr),
              seat::PreferenceWrite::Failed);

    EXPECT_EQ(m_log.lines().size(), 1u);
    EXPECT_FALSE(seat::preferenceValue(domain, "one"));
}

TEST_F(Contract, AFolderIsNoFileAndAFileNoFolder) {
    testing_support::TestRoot::write(m_root.file("folder/file"), "bytes");

    EXPECT_EQ(NSData::dataWithContentsOfFile("/folder", 100), nullptr);
    EXPECT_EQ(m_log.lines().size(), 1u);
    EXPECT_FALSE(NSFileManager::defaultManager()->contentsOfDirectoryAtPath_error("/folder/file", nullptr));
    EXPECT_EQ(m_log.lines().size(), 2u);
    EXPECT_FALSE(NSData::dataWithBytes({})->writeToFile_options_error("/folder", 1, nullptr));
    EXPECT_EQ(m_log.lines().size(), 3u);
    EXPECT_EQ(testing_support::TestRoot::read(m_root.file("folder/file")), "bytes");
}

TEST_F(Contract, AFileThatIsNotThereIsNoFailureWorthALine) {
    EXPECT_EQ(NSData::dataWithContentsOfFile(m_root.file("missing"), 100), nullptr);
    EXPECT_EQ(NSMutableDictionary::dictionaryWithContentsOfFile("/missing.plist"), nullptr);
    EXPECT_FALSE(NSFileManager::defaultManager()->contentsOfDirectoryAtPath_error("/missing", nullptr));

    EXPECT_EQ(m_log.lines(), std::vector<std::string>{});
}

TEST_F(Contract, AFailureIsAResultAReasonAndOneLine) {
    testing_support::TestRoot::write(m_root.file("file"), "bytes");
    const auto data = NSData::dataWithBytes({});
    std::shared_ptr<NSError> error;

    EXPECT_FALSE(data->writeToFile_options_error("/file/below", 1, &error));

    ASSERT_NE(error, nullptr);
    EXPECT_NE(error->localizedDescription().find("/file/below"), std::string::npos) << error->localizedDescription();
    EXPECT_EQ(m_log.lines().size(), 1u);
    EXPECT_EQ(testing_support::TestRoot::read(m_root.file("file")), "bytes");
}

TEST_F(Contract, AWrittenFileIsThereAloneAndWhole) {
    const std::uint8_t bytes[] = {1, 2, 3};
    testing_support::TestRoot::write(m_root.file("box/file"), "something longer");

    ASSERT_TRUE(NSData::dataWithBytes(bytes)->writeToFile_options_error("/box/file", 1, nullptr));

    EXPECT_EQ(testing_support::TestRoot::read(m_root.file("box/file")), std::string("\1\2\3"));
    EXPECT_EQ(NSFileManager::defaultManager()->contentsOfDirectoryAtPath_error("/box", nullptr),
              std::vector<std::string>{"file"});
}

TEST_F(Contract, ANameOfTwoPartsIsNotPosted) {
    EXPECT_EQ(notify_post("two.parts"), NOTIFY_STATUS_FAILED);
    EXPECT_EQ(notify_post(nullptr), NOTIFY_STATUS_FAILED);
    EXPECT_EQ(m_log.lines().size(), 2u);
}

TEST_F(Contract, AToolThatIsNotThereHasIdentifierZeroAndALine) {
    EXPECT_EQ(NSTask::launchedTaskWithLaunchPath_arguments("/usr/bin/missing", {})->processIdentifier(), 0);
    EXPECT_EQ(m_log.lines().size(), 1u);
}

TEST_F(Contract, WhoIsNoChildOfOursGetsNoSignal) {
    EXPECT_EQ(platform::kill(0, SIGINT_NUMBER), -1);
    EXPECT_EQ(platform::kill(-1, SIGINT_NUMBER), -1);
    EXPECT_EQ(platform::kill(1, SIGINT_NUMBER), -1);
}

TEST_F(Contract, WhereNobodyListensConnectingFailsAtOnceAndTheDescriptorIsStillThere) {
    const int descriptor = platform::socket(platform::AF_UNIX_FAMILY, platform::SOCK_STREAM_TYPE, 0);
    ASSERT_GE(descriptor, 0);
    platform::sockaddr_un address;
    address.sun_family = platform::AF_UNIX_FAMILY;
    std::strcpy(address.sun_path, "/nobody.sock");

    EXPECT_EQ(platform::connect(descriptor, &address, sizeof address), -1);
    EXPECT_EQ(platform::connect(descriptor, nullptr, sizeof address), -1);
    EXPECT_EQ(platform::send(descriptor, "x", 1, 0), -1);

    EXPECT_EQ(platform::close(descriptor), 0);
    EXPECT_EQ(platform::close(descriptor), -1);
}

TEST_F(Contract, OnlyTheReceiveTimeoutCanBeSet) {
    const int descriptor = platform::socket(platform::AF_UNIX_FAMILY, platform::SOCK_STREAM_TYPE, 0);
    const platform::timeval time{20, 0};

    EXPECT_EQ(
        platform::setsockopt(descriptor, platform::SOL_SOCKET_LEVEL, platform::SO_RCVTIMEO_OPTION, &time, sizeof time),
        0);
    EXPECT_EQ(platform::setsockopt(descriptor, 1, platform::SO_RCVTIMEO_OPTION, &time, sizeof time), -1);
    EXPECT_EQ(platform::setsockopt(descriptor, platform::SOL_SOCKET_LEVEL, platform::SO_RCVTIMEO_OPTION, &time, 1), -1);
    EXPECT_EQ(platform::socket(2, platform::SOCK_STREAM_TYPE, 0), -1);

    platform::close(descriptor);
}

TEST_F(Contract, ALineOfTheLogIsOneLineOfAtMost1024Bytes) {
    NSLog("%s", "a\nb\tc\x7f");
    NSLog("%s", std::string(5000, 'x').c_str());

    ASSERT_EQ(m_log.lines().size(), 2u);
    EXPECT_EQ(m_log.lines()[0].find_first_of("\n\t\x7f"), std::string::npos);
    EXPECT_LE(m_log.lines()[1].size(), 1024u);
}

TEST_F(Contract, TheMediaClockNeverGoesBack) {
    double last = platform::CACurrentMediaTime();
    for (int i = 0; i < 1000; ++i) {
        const double now = platform::CACurrentMediaTime();
        ASSERT_GE(now, last);
        last = now;
    }
}

} // namespace
