#include <csignal>
#include <cstdlib>

#include <gtest/gtest.h>
#include <systemd/sd-login.h>

#include "tests/machine/support/LoginSession.h"
#include "tests/machine/support/Program.h"

namespace machine {
namespace {

uid_t userInFront() {
    uid_t user = 0;
    return ::sd_seat_get_active("seat0", nullptr, &user) >= 0 ? user : 0;
}

std::string lockedHint(const std::string& session) {
    return run({"loginctl", "show-session", session, "--property=LockedHint", "--value"}).output;
}

TEST(Sessions, AUserWhoLogsInIsTheSeatsActiveOne) {
    LoginSession::ofAnna();

    EXPECT_EQ(userInFront(), kAnna);
    EXPECT_GT(::sd_uid_is_on_seat(kAnna, 1, "seat0"), 0);
    EXPECT_LE(::sd_uid_is_on_seat(kBert, 0, "seat0"), 0);
}

TEST(Sessions, TheOneInFrontChangesAsTheyAreSwitched) {
    LoginSession& anna = LoginSession::ofAnna();
    LoginSession bert(kBert, 3);
    EXPECT_EQ(userInFront(), kBert);

    anna.bringToFront();

    EXPECT_EQ(userInFront(), kAnna);
    EXPECT_LE(::sd_uid_is_on_seat(kBert, 1, "seat0"), 0);
}

TEST(Sessions, WhatALockerSaysIsKnown) {
    LoginSession& anna = LoginSession::ofAnna();

    anna.lock();
    EXPECT_EQ(lockedHint(anna.id()), "yes\n");
    anna.unlock();
    EXPECT_EQ(lockedHint(anna.id()), "no\n");
}

TEST(Programs, RunAsTheUserAndEndWithTheScope) {
    pid_t process = 0;
    {
        Program program({"sh", "-c", "id -un; cat"}, kBert);
        EXPECT_TRUE(program.waitForOutput("bert\n"));
        program.write("heard\n");
        EXPECT_TRUE(program.waitForOutput("heard\n"));
        EXPECT_FALSE(program.ended());
        process = program.pid();
    }

    EXPECT_NE(::kill(process, 0), 0);
    EXPECT_EQ(run({"sh", "-c", "exit 3"}).status, 3);
    EXPECT_EQ(run({"/no/such/program"}).status, 127);
}

} // namespace
} // namespace machine
