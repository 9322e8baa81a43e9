#pragma once

#include <string>

#include "tests/machine/support/Program.h"

namespace machine {

// A user who is logged in on the seat, at a virtual terminal of its own, as the system's login manager has it: in front
// from the start, logged out at the end of the scope. What does not work throws std::runtime_error.
class LoginSession {
public:
    // Terminals from 2 to 9; two sessions need two of them. The first login of a user takes seconds, later ones less.
    explicit LoginSession(uid_t user = kAnna, int terminal = 2);
    ~LoginSession();
    LoginSession(const LoginSession&) = delete;
    LoginSession& operator=(const LoginSession&) = delete;

    // Anna's at terminal 2, which all tests of a program may share, since a login takes seconds: in front, not locked,
    // and logged in anew where a test has logged her out.
    static LoginSession& ofAnna();

    const std::string& id() const { return m_id; }

    // What a screen locker says.
    void lock() { setLocked(true); }
    void unlock() { setLocked(false); }

    // Switches to this session's terminal, and waits until it is the active one.
    void bringToFront();

    void logOut();

private:
    void setLocked(bool locked);

    std::string m_unit;
    std::string m_id;
};

} // namespace machine
