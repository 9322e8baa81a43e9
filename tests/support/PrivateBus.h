#pragma once

#include "tests/support/TemporaryFolder.h"

#include <string>
#include <sys/types.h>

namespace testing_support {

// A bus of the test's own: a dbus-daemon that listens in a temporary folder, always at the same address. While this
// object lives the environment's `variable` names it: the session's bus, or with DBUS_SYSTEM_BUS_ADDRESS the system's.
class PrivateBus {
public:
    enum class Start { Now, Later };
    enum class Admits { OwnUser, EveryUser };

    explicit PrivateBus(Start start = Start::Now, const char* variable = "DBUS_SESSION_BUS_ADDRESS",
                        Admits admits = Admits::OwnUser);
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const std::string& address() const { return m_address; }
    std::string socketFile() const { return m_folder.file("bus"); }
    bool isRunning() const { return m_process > 0; }

    // Returns when the bus takes connections.
    void start();
    // At once, as a crash does: its socket's file stays behind.
    void kill();
    // A bus that is stopped takes connections and never answers.
    void stop() const;
    void resume() const;

private:
    TemporaryFolder m_folder;
    const char* m_variable;
    std::string m_address;
    std::string m_addressBefore;
    bool m_hadAddress = false;
    ::pid_t m_process = 0;
};

} // namespace testing_support
