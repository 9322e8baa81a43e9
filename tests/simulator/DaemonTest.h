#pragma once

#include "platform/socket.h"
#include "simulator/control_frames.h"
#include "system/files/root.h"
#include "tests/simulator/StandIn.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

// Calls the daemon as the page does.
class DaemonTest : public ::testing::Test {
protected:
    using Bytes = simulator::Bytes;

    DaemonTest() { seat::setRoot(m_folder.path()); }
    ~DaemonTest() override { seat::setRoot(""); }

    std::string socketFile() const { return m_folder.file("Library/Caches/jvncontrol.sock"); }
    static int connect() {
        platform::sockaddr_un address;
        address.sun_len = 32;
        address.sun_family = platform::AF_UNIX_FAMILY;
        std::string("/Library/Caches/jvncontrol.sock").copy(address.sun_path, sizeof address.sun_path);
        const int descriptor = platform::socket(platform::AF_UNIX_FAMILY, platform::SOCK_STREAM_TYPE, 0);
        if (platform::connect(descriptor, &address, sizeof address) == 0) return descriptor;
        platform::close(descriptor);
        return -1;
    }
    static Bytes frame(simulator::Command command, std::size_t size, std::uint32_t type = 0) {
        Bytes bytes = simulator::makeReply(static_cast<std::uint32_t>(command), type);
        bytes.resize(size);
        return bytes;
    }
    static void send(int descriptor, const Bytes& bytes) { platform::send(descriptor, bytes.data(), bytes.size(), 0); }
    static void setTimeout(int descriptor, long milliseconds) {
        const platform::timeval time{milliseconds / 1000, milliseconds % 1000 * 1000};
        platform::setsockopt(descriptor, platform::SOL_SOCKET_LEVEL, platform::SO_RCVTIMEO_OPTION, &time, sizeof time);
    }
    // What came, up to so many bytes, until the end or the time-out.
    static Bytes receive(int descriptor, std::size_t count = 12, long milliseconds = 10'000) {
        setTimeout(descriptor, milliseconds);
        Bytes bytes(count);
        const auto got = platform::recv(descriptor, bytes.data(), count, platform::MSG_WAITALL_FLAG);
        bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        return bytes;
    }
    // A connection of its own.
    static Bytes exchange(const Bytes& request, std::size_t count = 12, long milliseconds = 10'000) {
        const int descriptor = connect();
        if (descriptor == -1) return {};
        send(descriptor, request);
        auto reply = receive(descriptor, count, milliseconds);
        platform::close(descriptor);
        return reply;
    }
    static Bytes query() { return exchange(frame(simulator::Command::QueryConnection, 12)); }

    testing_support::TemporaryFolder m_folder;
};
