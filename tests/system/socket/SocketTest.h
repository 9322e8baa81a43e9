#pragma once

#include "platform/socket.h"
#include "system/files/root.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/ScriptedDaemon.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <gtest/gtest.h>
#include <string>

// A root of its own, and the calls as the logic makes them.
class SocketTest : public ::testing::Test {
protected:
    SocketTest() { seat::setRoot(m_folder.path()); }
    ~SocketTest() override { seat::setRoot(""); }

    static platform::sockaddr_un record(const std::string& path = "/Library/Caches/jvncontrol.sock") {
        platform::sockaddr_un address;
        address.sun_len = static_cast<std::uint8_t>(path.size() + 1);
        address.sun_family = platform::AF_UNIX_FAMILY;
        path.copy(address.sun_path, sizeof address.sun_path);
        return address;
    }
    static int makeSocket() { return platform::socket(platform::AF_UNIX_FAMILY, platform::SOCK_STREAM_TYPE, 0); }
    static int connect(int descriptor, const platform::sockaddr_un& address = record()) {
        return platform::connect(descriptor, &address, sizeof address);
    }
    // -1 when it does not work.
    static int connected() {
        const int descriptor = makeSocket();
        if (descriptor == -1 || connect(descriptor) == 0) return descriptor;
        platform::close(descriptor);
        return -1;
    }
    static int setTimeout(int descriptor, long seconds, long microseconds) {
        const platform::timeval time{seconds, microseconds};
        return platform::setsockopt(descriptor, platform::SOL_SOCKET_LEVEL, platform::SO_RCVTIMEO_OPTION, &time,
                                    sizeof time);
    }

    using Clock = std::chrono::steady_clock;
    static double millisecondsSince(Clock::time_point start) {
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    }

    testing_support::TemporaryFolder m_folder;
    testing_support::LoggedLines m_log;
};
