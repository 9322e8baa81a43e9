// Files that are larger than anything that is read: nobody can say that they are damaged.

#include "tests/system/preferences/fixture.h"

#include <chrono>
#include <gmock/gmock.h>

using namespace seat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

class Limits : public PreferencesTest {
protected:
    void expectLeftAlone(const char* reason) {
        const auto before = names();
        const auto start = std::chrono::steady_clock::now();

        EXPECT_FALSE(set("key", "value"));
        EXPECT_TRUE(awaitPendingPreferences(std::chrono::seconds(60)));

        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
        EXPECT_THAT(log(), ElementsAre(HasSubstr(reason)));
        EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
        EXPECT_FALSE(std::filesystem::exists(folder() + "/" + domain() + ".damaged-1"));
        EXPECT_FALSE(preferenceValue(domain(), "key"));
    }
    static std::string list(const std::string& contents) {
        return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>theirs</key>" + contents + "</dict></plist>";
    }
    static std::string repeated(int count, const std::string& text) {
        std::string all;
        for (int i = 0; i < count; ++i) all += text;
        return all;
    }
};

TEST_F(Limits, FileOfManyMegabytesIsLeftAlone) {
    write(file(), "x");
    std::filesystem::resize_file(file(), 8ull << 30);

    expectLeftAlone("larger than 4 MiB");

    EXPECT_EQ(std::filesystem::file_size(file()), 8ull << 30);
}

TEST_F(Limits, FileNestedTooDeepIsLeftAlone) {
    const std::string deep = list(repeated(100, "<array>") + repeated(100, "</array>"));
    write(file(), deep);

    expectLeftAlone("nested deeper than 64");

    EXPECT_TRUE(contents(file()) == deep);
}

TEST_F(Limits, FileWithTooManyValuesIsLeftAlone) {
    const std::string many = list("<array>" + repeated(100'001, "<true/>") + "</array>");
    write(file(), many);

    expectLeftAlone("more than 100000 values");

    EXPECT_TRUE(contents(file()) == many);
}

TEST_F(Limits, ValueThatWouldMakeTheFileTooLargeIsRefused) {
    ASSERT_TRUE(set("theirs", std::string(3 << 20, 'x')));
    const std::string before = contents(file());

    EXPECT_FALSE(set("ours", std::string(2 << 20, 'y')));
    EXPECT_TRUE(awaitPendingPreferences(std::chrono::seconds(60)));

    EXPECT_TRUE(contents(file()) == before);
    EXPECT_FALSE(preferenceValue(domain(), "ours"));
    EXPECT_THAT(log(), ElementsAre(HasSubstr("larger than 4194304 bytes")));
}

} // namespace
