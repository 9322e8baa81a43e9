// Preferences that somebody has written with an editor: whatever other readers read of them, the page reads too.

#include "platform/foundation/NSData.h"
#include "tests/settings/PageTest.h"
#include "tests/support/LoggedLines.h"

#include <filesystem>
#include <fstream>

namespace {

class HandEditedFile : public PageTest {
protected:
    static std::string plist(const std::string& encoding) {
        return "<?xml version=\"1.0\" encoding=\"" + encoding +
               "\"?>\n<plist version=\"1.0\"><dict><key>controller_type</key><integer>1</integer>"
               "<key>PS4BluetoothAddress</key><data>ESIzRFVm</data><key>JVNLEDColorKey</key><string>aabbcc</string>"
               "<key>Owner</key><string>M";
    }
    static inline const std::string rest =
        "ller</string><key>controller_type</key><integer>2</integer></dict></plist>\n";

    void showFile(const std::string& bytes) {
        const std::filesystem::path file = app.preferencesFile();
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        page = JoyvaneListController::alloc()->init();
        app.open(page);
    }
    // The file is read, and the next choice leaves the rest of it in use.
    void expectInUse() {
        EXPECT_EQ(page->currentControllerType(), 2) << "the last one of the two";
        ASSERT_TRUE(app.tap("Connection"));
        ASSERT_TRUE(app.tap("Connect by Hand"));

        EXPECT_EQ(app.preference("connection_mode").integerValue(), 1);
        EXPECT_EQ(app.preference("controller_type").integerValue(), 2);
        EXPECT_EQ(app.preference("JVNLEDColorKey"), id("aabbcc"));
        EXPECT_EQ(app.preference("Owner"), id("M\u00fcller"));
        const auto address = app.preference("PS4BluetoothAddress").object<NSData>();
        ASSERT_TRUE(address);
        EXPECT_EQ(address->length(), 6u);
        std::size_t files = 0;
        const auto folder = std::filesystem::path(app.preferencesFile()).parent_path();
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            files += entry.path().filename().string().starts_with("com.quorrel.joyvane.plist");
        EXPECT_EQ(files, 1u) << "nothing was moved aside";
    }

    testing_support::LoggedLines log;
};

TEST_F(HandEditedFile, ARepeatedKeyCountsByItsLastValue) {
    showFile(plist("UTF-8") + "\u00fc" + rest);
    expectInUse();
}

TEST_F(HandEditedFile, ISO8859_1IsRead) {
    showFile(plist("ISO-8859-1") + "\xfc" + rest);
    expectInUse();
}

TEST_F(HandEditedFile, UTF16IsRead) {
    std::string wide = "\xff\xfe";
    for (const char c : plist("UTF-16")) wide += {c, '\0'};
    wide += {'\xfc', '\0'};
    for (const char c : rest) wide += {c, '\0'};
    showFile(wide);
    expectInUse();
}

} // namespace
