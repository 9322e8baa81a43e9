#include "system/process/child_environment.h"

#include "tests/system/process/ProcessTest.h"

#include <cstdlib>

namespace {

class ChildEnvironment : public ProcessTest {};

TEST_F(ChildEnvironment, AChildFindsTheRootAndTheBus) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/somewhere/bus", 1);
    ::setenv("JOYVANE_TEST_VARIABLE", "kept", 1);

    const auto lines = report();

    EXPECT_EQ((std::vector<std::string>{"environment JOYVANE_ROOT=" + m_folder.path()}),
              beginning(lines, "environment JOYVANE_ROOT="));
    EXPECT_EQ((std::vector<std::string>{"environment DBUS_SESSION_BUS_ADDRESS=unix:path=/somewhere/bus"}),
              beginning(lines, "environment DBUS_SESSION_BUS_ADDRESS="));
    EXPECT_EQ(1u, beginning(lines, "environment JOYVANE_TEST_VARIABLE=kept").size());
    ::unsetenv("JOYVANE_TEST_VARIABLE");
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
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
    ::setenv("JOYVANE_TEST_FORMER", "former", 1);
    ::unsetenv("JOYVANE_TEST_ABSENT");

    seat::setVariableForUsAlone("JOYVANE_TEST_FORMER", "ours");
    seat::setVariableForUsAlone("JOYVANE_TEST_ABSENT", "ours");

    EXPECT_STREQ("ours", ::getenv("JOYVANE_TEST_FORMER"));
    EXPECT_STREQ("ours", ::getenv("JOYVANE_TEST_ABSENT"));
    const auto lines = report();
    EXPECT_EQ((std::vector<std::string>{"environment JOYVANE_TEST_FORMER=former"}),
              beginning(lines, "environment JOYVANE_TEST_FORMER="));
    EXPECT_EQ((std::vector<std::string>{}), beginning(lines, "environment JOYVANE_TEST_ABSENT="));
}

} // namespace
