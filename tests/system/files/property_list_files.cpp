#include "system/files/root.h"
#include "tests/kit/foundation/property_list_bytes.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace property_list_testing;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_support::CapturedLog;
using testing_support::TemporaryFolder;

constexpr const char* xml = "<plist><dict><key>a</key><integer>3</integer></dict></plist>";

std::shared_ptr<NSMutableDictionary> load(const std::string& path) {
    return NSMutableDictionary::dictionaryWithContentsOfFile(path);
}

TEST(PropertyListFiles, DictionaryIsReadFromXMLAndFromBinary) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("xml")) << xml;
    const auto binary = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        dictionary({{"a", integer(3)}}), NSPropertyListBinaryFormat_v1_0, 0, nullptr);
    ASSERT_TRUE(binary->writeToFile_options_error(folder.file("binary"), NSDataWritingAtomic, nullptr));

    EXPECT_EQ(id(load(folder.file("xml"))), dictionary({{"a", integer(3)}}));
    EXPECT_EQ(id(load(folder.file("binary"))), dictionary({{"a", integer(3)}}));
}

TEST(PropertyListFiles, LogicalPathIsReadUnderTheRoot) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("settings.plist")) << xml;

    seat::setRoot(folder.path());
    const auto read = load("/settings.plist");
    seat::setRoot("");

    EXPECT_EQ(id(read), dictionary({{"a", integer(3)}}));
}

TEST(PropertyListFiles, MissingFileGivesNilWithoutALine) {
    const CapturedLog log;
    const TemporaryFolder folder;

    EXPECT_EQ(load(folder.file("none")), nullptr);

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(PropertyListFiles, RefusedFileGivesNilAndOneLineWithTheReason) {
    const CapturedLog log;
    const TemporaryFolder folder;
    std::ofstream(folder.file("empty")).flush();
    std::ofstream(folder.file("cut")) << "<plist><dict>";
    std::ofstream(folder.file("list")) << "<plist><array/></plist>";
    std::ofstream(folder.file("huge")) << std::string((4 << 20) + 1, ' ');

    for (const char* const name : {"empty", "cut", "list", "huge"}) EXPECT_EQ(load(folder.file(name)), nullptr) << name;
    EXPECT_EQ(load(folder.path()), nullptr);

    EXPECT_THAT(log.lines(), ElementsAre("property list " + folder.file("empty") + " is empty",
                                         "property list " + folder.file("cut") + " is cut",
                                         "property list " + folder.file("list") + " is no dictionary",
                                         "reading " + folder.file("huge") + ": File too large",
                                         "reading " + folder.path() + ": Is a directory"));
}

TEST(PropertyListFiles, HostReadsRealPathsAndSaysWhy) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("xml")) << xml;
    std::ofstream(folder.file("cut")) << "<plist>";
    seat::setRoot("/somewhere/else");
    std::shared_ptr<NSError> missing, refused;

    EXPECT_TRUE(seat::readPropertyListFile(folder.file("xml"), nullptr));
    EXPECT_FALSE(seat::readPropertyListFile(folder.file("none"), &missing));
    EXPECT_FALSE(seat::readPropertyListFile(folder.file("cut"), &refused));
    seat::setRoot("");

    ASSERT_TRUE(missing && refused);
    EXPECT_EQ(missing->code(), ENOENT);
    EXPECT_EQ(refused->code(), 0);
    EXPECT_EQ(refused->localizedDescription(), "property list " + folder.file("cut") + " is cut");
}

TEST(PropertyListFiles, SerialisationTellsTheFormat) {
    unsigned long format = 0;
    const auto text = NSData::dataWithVector(bytesOf(xml));

    EXPECT_TRUE(NSPropertyListSerialization::propertyListWithData_options_format_error(*text, 0, &format, nullptr));
    EXPECT_EQ(format, NSPropertyListXMLFormat_v1_0);
    const auto binary = NSData::dataWithVector(Binary{{{0x09}}}.bytes());
    EXPECT_TRUE(NSPropertyListSerialization::propertyListWithData_options_format_error(*binary, 0, &format, nullptr));
    EXPECT_EQ(format, NSPropertyListBinaryFormat_v1_0);
}

TEST(PropertyListFiles, SerialisationReportsToWhoeverAsksElseToTheLog) {
    const CapturedLog log;
    const auto cut = NSData::dataWithVector(bytesOf("<plist>"));
    std::shared_ptr<NSError> reading, writing;

    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithData_options_format_error(*cut, 0, nullptr, &reading));
    EXPECT_EQ(NSPropertyListSerialization::dataWithPropertyList_format_options_error(nullptr, 200, 0, &writing),
              nullptr);
    EXPECT_THAT(log.lines(), IsEmpty());
    ASSERT_TRUE(reading && writing);
    EXPECT_EQ(reading->localizedDescription(), "property list is cut");
    EXPECT_EQ(writing->localizedDescription(), "property list to write is nil");

    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithData_options_format_error(*cut, 0, nullptr, nullptr));
    EXPECT_EQ(NSPropertyListSerialization::dataWithPropertyList_format_options_error("a", 100, 0, nullptr), nullptr);
    EXPECT_THAT(log.lines(),
                ElementsAre("property list is cut", "property list to write is asked for in a format other "
                                                    "than the binary one"));
}

} // namespace
