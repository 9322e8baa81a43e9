#include "system/process/child_environment.h"

#include "tests/system/process/ProcessTest.h"

#include <cstdlib>
#include <set>

namespace {

class ChildEnvironment : public ProcessTest {};

TEST_F(ChildEnvironment, AChildFindsTheRootAndTheBus) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/somewhere/bus", 1);

    const auto lines = report();

    EXPECT_EQ((std::vector<std::string>{"environment JOYVANE_ROOT=" + m_folder.path()}),
              beginning(lines, "environment JOYVANE_ROOT="));
    EXPECT_EQ((std::vector<std::string>{"environment DBUS_SESSION_BUS_ADDRESS=unix:path=/somewhere/bus"}),
              beginning(lines, "environment DBUS_SESSION_BUS_ADDRESS="));
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

TEST_F(ChildEnvironment, AToolGetsWhoTheUserIsAndNothingThatIsNotListed) {
    const char* const home = ::getenv("HOME");
    ::setenv("HOME", "/home/anna", 1);
    ::setenv("LC_NUMERIC", "C", 1);
    ::setenv("SECRET_TOKEN", "secret", 1);
    ::setenv("LD_LIBRARY_PATH", "/nowhere", 1);

    const auto lines = report();

    home ? ::setenv("HOME", home, 1) : ::unsetenv("HOME");
    for (const char* name : {"LC_NUMERIC", "SECRET_TOKEN", "LD_LIBRARY_PATH"}) ::unsetenv(name);
    EXPECT_EQ(1u, beginning(lines, "environment HOME=/home/anna").size());
    EXPECT_EQ(1u, beginning(lines, "environment LC_NUMERIC=C").size());
    EXPECT_EQ((std::vector<std::string>{}), beginning(lines, "environment SECRET_TOKEN"));
    EXPECT_EQ((std::vector<std::string>{}), beginning(lines, "environment LD_LIBRARY_PATH"));
    const std::set<std::string> listed{"HOME",
                                       "USER",
                                       "LOGNAME",
                                       "LANG",
                                       "LANGUAGE",
                                       "TZ",
                                       "XDG_RUNTIME_DIR",
                                       "XDG_DATA_HOME",
                                       "DBUS_SESSION_BUS_ADDRESS",
                                       "DBUS_SYSTEM_BUS_ADDRESS",
                                       "JOYVANE_ROOT",
                                       "JOYVANE_SIMULATE"};
    const std::string word = "environment ";
    for (const auto& line : beginning(lines, word)) {
        const auto name = line.substr(word.size(), line.find('=') - word.size());
        EXPECT_TRUE(listed.contains(name) || name.starts_with("LC_") || name.ends_with("SAN_OPTIONS")) << name;
    }
}

TEST_F(ChildEnvironment, ARootOfOursReplacesAnInheritedOne) {
    ::setenv("JOYVANE_ROOT", "/inherited", 1);

    EXPECT_EQ((std::vector<std::string>{"environment JOYVANE_ROOT=" + m_folder.path()}),
              beginning(report(), "environment JOYVANE_ROOT="));
    seat::setRoot("");
    for (const auto& entry : seat::childEnvironment()) EXPECT_FALSE(entry.starts_with("JOYVANE_ROOT=")) << entry;
    ::unsetenv("JOYVANE_ROOT");
}

TEST_F(ChildEnvironment, AVariableForUsAloneIsNotInherited) {
    ::setenv("LC_JOYVANE_FORMER", "former", 1);
    ::unsetenv("LC_JOYVANE_ABSENT");

    seat::setVariableForUsAlone("LC_JOYVANE_FORMER", "ours");
    seat::setVariableForUsAlone("LC_JOYVANE_ABSENT", "ours");

    EXPECT_STREQ("ours", ::getenv("LC_JOYVANE_FORMER"));
    EXPECT_STREQ("ours", ::getenv("LC_JOYVANE_ABSENT"));
    const auto lines = report();
    EXPECT_EQ((std::vector<std::string>{"environment LC_JOYVANE_FORMER=former"}),
              beginning(lines, "environment LC_JOYVANE_FORMER="));
    EXPECT_EQ((std::vector<std::string>{}), beginning(lines, "environment LC_JOYVANE_ABSENT="));
}

} // namespace
