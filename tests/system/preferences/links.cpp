// A preferences file that is kept elsewhere, with a link in its place.

#include "tests/system/preferences/fixture.h"

#include <gmock/gmock.h>

using namespace seat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

constexpr uid_t somebodyElse = 1234;

class Links : public PreferencesTest {
protected:
    Links() { std::filesystem::create_directory(root() + "/elsewhere"); }
    std::string target() const { return root() + "/elsewhere/settings"; }
    void putFileElsewhere() {
        ASSERT_TRUE(set("old", "1"));
        std::filesystem::rename(file(), target());
        std::filesystem::create_symlink(target(), file());
    }
    void expectRefused(const char* reason) {
        const std::string before = contents(target());
        EXPECT_FALSE(set("new", "2"));
        EXPECT_EQ(contents(target()), before);
        EXPECT_TRUE(std::filesystem::is_symlink(file()));
        EXPECT_THAT(log(), ElementsAre(HasSubstr(reason)));
    }
};

TEST_F(Links, AreFollowedByReadsAndWrites) {
    putFileElsewhere();

    EXPECT_EQ(preferenceValue(domain(), "old"), id("1"));
    EXPECT_TRUE(set("new", "2"));

    EXPECT_TRUE(std::filesystem::is_symlink(file()));
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(target())));
    EXPECT_EQ(preferenceValue(domain(), "old"), id("1"));
    EXPECT_EQ(preferenceValue(domain(), "new"), id("2"));
}

TEST_F(Links, ToLinksAndFromOtherFoldersAreFollowed) {
    putFileElsewhere();
    std::filesystem::remove(file());
    std::filesystem::create_symlink("settings", root() + "/elsewhere/second");
    std::filesystem::create_symlink("../../../../elsewhere/second", file());

    EXPECT_TRUE(set("new", "2"));

    EXPECT_TRUE(std::filesystem::is_symlink(file()));
    EXPECT_TRUE(std::filesystem::is_symlink(root() + "/elsewhere/second"));
    EXPECT_EQ(preferenceValue(domain(), "new"), id("2"));
}

TEST_F(Links, ToNothingReadAsMissingAndAreFollowedByTheFirstWrite) {
    std::filesystem::create_symlink(target(), file());

    EXPECT_FALSE(preferenceValue(domain(), "key"));
    EXPECT_TRUE(set("key", "value"));

    EXPECT_EQ(preferenceValue(domain(), "key"), id("value"));
    EXPECT_TRUE(std::filesystem::is_symlink(file()));
    EXPECT_EQ(modeOf(target()), 0600u);
}

TEST_F(Links, ToThemselvesAreRefused) {
    std::filesystem::create_symlink(file(), file());

    EXPECT_FALSE(preferenceValue(domain(), "key"));
    EXPECT_FALSE(set("key", "value"));

    EXPECT_EQ(log().size(), 2u);
}

TEST_F(Links, DamagedFileBehindOneIsMovedAsideWhereItIs) {
    putFileElsewhere();
    write(target(), "damaged");

    EXPECT_TRUE(set("new", "2"));

    EXPECT_EQ(contents(root() + "/elsewhere/" + domain() + ".damaged-1"), "damaged");
    EXPECT_TRUE(std::filesystem::is_symlink(file()));
    EXPECT_EQ(preferenceValue(domain(), "new"), id("2"));
}

TEST_F(Links, OfAnotherUserAreRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "another user's link needs the right to give one away";
    putFileElsewhere();
    ASSERT_EQ(lchown(file().c_str(), somebodyElse, somebodyElse), 0);

    expectRefused("a link that another user has made");
}

TEST_F(Links, ToAnotherUsersFileAreRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "another user's file needs the right to give one away";
    putFileElsewhere();
    ASSERT_EQ(chown(target().c_str(), somebodyElse, somebodyElse), 0);

    expectRefused("a link to what is another user's");
}

TEST_F(Links, ToNothingInAnotherUsersFolderAreRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "another user's folder needs the right to give one away";
    std::filesystem::create_symlink(target(), file());
    ASSERT_EQ(chown((root() + "/elsewhere").c_str(), somebodyElse, somebodyElse), 0);

    expectRefused("a link to what is another user's");
}

} // namespace
