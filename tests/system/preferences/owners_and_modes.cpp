#include "tests/system/preferences/fixture.h"

#include <gmock/gmock.h>
#include <grp.h>

using namespace seat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

constexpr uid_t user = 1234;
constexpr gid_t group = 2345;

// New files of this process have these permissions taken away.
class Umask {
public:
    explicit Umask(mode_t mask) : m_before(umask(mask)) {}
    ~Umask() { umask(m_before); }

private:
    mode_t m_before;
};

using OwnersAndModes = PreferencesTest;

TEST_F(OwnersAndModes, NewFileIsItsOwnersAloneWhateverTheUmask) {
    for (const mode_t mask : {0000u, 0022u, 0777u}) {
        std::filesystem::remove_all(folder());
        const Umask scope(mask);

        ASSERT_TRUE(set("key", "value"));

        EXPECT_EQ(modeOf(file()), 0600u);
        EXPECT_EQ(modeOf(folder() + "/.lock." + domain()), 0600u);
    }
}

TEST_F(OwnersAndModes, NewFoldersAreTheirOwnersAloneWhateverTheUmask) {
    for (const mode_t mask : {0000u, 0022u, 0777u}) {
        std::filesystem::remove_all(root() + "/var");
        const Umask scope(mask);

        ASSERT_TRUE(set("key", "value"));

        for (auto made = std::filesystem::path(folder()); made != root(); made = made.parent_path())
            EXPECT_EQ(modeOf(made), 0700u) << made << " with umask " << mask;
    }
}

TEST_F(OwnersAndModes, FoldersThatAreThereStayAsTheyAre) {
    ASSERT_EQ(chmod(folder().c_str(), 0755), 0);

    set("key", "value");

    EXPECT_EQ(modeOf(folder()), 0755u);
}

TEST_F(OwnersAndModes, FileKeepsItsMode) {
    for (const mode_t mode : {0600u, 0640u, 0644u, 0666u, 0400u}) {
        set("key", "value");
        ASSERT_EQ(chmod(file().c_str(), mode), 0);

        EXPECT_TRUE(set("key", std::to_string(mode)));

        EXPECT_EQ(modeOf(file()), mode);
    }
}

TEST_F(OwnersAndModes, FileThatNobodyMayOpenKeepsItsModeAndIsNotReplaced) {
    set("key", "value");
    ASSERT_EQ(chmod(file().c_str(), 0), 0);
    {
        const WithoutPrivileges scope(root());
        EXPECT_FALSE(set("key", "other"));
    }
    EXPECT_EQ(modeOf(file()), 0u);
}

TEST_F(OwnersAndModes, FileKeepsItsGroup) {
    if (geteuid() != 0) GTEST_SKIP() << "another group needs the right to join one";
    set("key", "value");
    ASSERT_EQ(chown(file().c_str(), geteuid(), group), 0);
    ASSERT_EQ(chmod(file().c_str(), 0640), 0);

    EXPECT_TRUE(set("key", "other"));

    EXPECT_EQ(statusOf(file()).st_gid, group);
    EXPECT_EQ(modeOf(file()), 0640u);
}

TEST_F(OwnersAndModes, WriterThatMayNotKeepTheGroupRefuses) {
    if (geteuid() != 0) GTEST_SKIP() << "another group needs the right to join one";
    set("key", "value");
    {
        const WithoutPrivileges scope(root());
        if (seteuid(0) != 0 || chown(file().c_str(), 65534, group) != 0 || setegid(65534) != 0 || seteuid(65534) != 0)
            abort();

        EXPECT_FALSE(set("key", "other"));

        EXPECT_EQ(preferenceValue(domain(), "key"), id("value"));
        if (seteuid(0) != 0 || setegid(0) != 0) abort();
    }
    EXPECT_EQ(statusOf(file()).st_gid, group);
    EXPECT_THAT(namesLikeTheFile(), ElementsAre(domain() + ".plist"));
    EXPECT_THAT(log(), ElementsAre(HasSubstr("Operation not permitted")));
}

TEST_F(OwnersAndModes, WriteOfTheAdministratorLeavesFileLockAndFoldersToTheUser) {
    if (geteuid() != 0) GTEST_SKIP() << "this is about the administrator";
    std::filesystem::remove_all(root() + "/var");
    ASSERT_EQ(chown(root().c_str(), user, group), 0);

    EXPECT_TRUE(set("new", "1"));
    EXPECT_TRUE(set("again", "2"));

    const std::string lock = folder() + "/.lock." + domain();
    for (const std::string& path : {file(), lock, folder(), root() + "/var"}) {
        EXPECT_EQ(statusOf(path).st_uid, user) << path;
        EXPECT_EQ(statusOf(path).st_gid, group) << path;
    }
}

} // namespace
