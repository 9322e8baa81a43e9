#pragma once

#include "services/common/log.h"
#include "services/jvninputd/Server.h"
#include "services/jvninputd/listening_socket.h"
#include "tests/support/HeldClock.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <cstring>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

// A program that connects. What it is sent it keeps until it is asked for.
class Peer {
public:
    explicit Peer(const std::string& path) : m_socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
        ::sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.c_str(), path.size());
        EXPECT_EQ(::connect(m_socket.get(), reinterpret_cast<::sockaddr*>(&address), sizeof address), 0)
            << std::strerror(errno);
    }

    template <class Message> void send(const Message& message) { sendBytes(&message, sizeof message); }
    void sendBytes(const void* data, std::size_t size) const { ::send(m_socket.get(), data, size, MSG_NOSIGNAL); }
    void hello(input::Role role) {
        auto message = input::makeMessage<input::Hello>();
        message.role = role;
        send(message);
    }

    // The next message of this kind, those before it skipped; nothing when there is none (any more).
    template <class Message> std::optional<Message> receive() const {
        char buffer[2 * input::maximumMessageSize];
        for (;;) {
            const ssize_t size = ::recv(m_socket.get(), buffer, sizeof buffer, MSG_DONTWAIT);
            if (size <= 0) return std::nullopt;
            if (const auto message = input::messageFrom<Message>(buffer, static_cast<std::size_t>(size)))
                return message;
        }
    }
    std::optional<input::RefusalReason> refusal() const {
        const auto message = receive<input::Refused>();
        return message ? std::optional(message->reason) : std::nullopt;
    }
    // Whether the other side has closed; what was sent before is skipped.
    bool closed() const {
        char buffer[2 * input::maximumMessageSize];
        for (;;) {
            const ssize_t size = ::recv(m_socket.get(), buffer, sizeof buffer, MSG_DONTWAIT);
            if (size <= 0) return size == 0 || errno != EAGAIN;
        }
    }
    void close() { m_socket.reset(); }

private:
    seat::Descriptor m_socket;
};

// The server with a clock that is held, and who talks to it.
class ConnectionsTest : public ::testing::Test {
protected:
    ConnectionsTest() {
        services::setLogSink([this](std::string_view line) { m_log.emplace_back(line); });
    }
    ~ConnectionsTest() override { services::setLogSink({}); }

    Peer connect() {
        Peer peer(m_path);
        settle();
        return peer;
    }
    Peer connect(input::Role role) {
        Peer peer = connect();
        peer.hello(role);
        settle();
        return peer;
    }
    // Until everything that was sent is dealt with.
    void settle() {
        for (int i = 0; i < 20; ++i) run();
    }
    void run() {
        bool ran = false;
        const auto marker = m_loop.soon([&ran] { ran = true; });
        m_loop.runUntil([&ran] { return ran; });
    }

    testing_support::TemporaryFolder m_folder;
    std::string m_path = m_folder.file("socket");
    testing_support::HeldClock m_clock;
    services::EventLoop m_loop{m_clock};
    std::vector<std::string> m_log;
    bool m_permitted = true;
    std::vector<std::string> m_calls;
    std::optional<input::Settings> m_settings;
    jvninputd::Server m_server{m_loop,
                               jvninputd::listeningSocket(m_path),
                               {[this](uid_t) { return m_permitted; },
                                [this](jvninputd::Client&) { m_calls.emplace_back("joined"); },
                                [this](jvninputd::Client& client) {
                                    m_calls.emplace_back("settings");
                                    m_settings = client.settings();
                                },
                                [this](jvninputd::Client&) { m_calls.emplace_back("light"); },
                                [this](jvninputd::Client&) { m_calls.emplace_back("left"); },
                                [this](bool isEmpty) { m_calls.emplace_back(isEmpty ? "empty" : "not empty"); }}};
};

inline input::Settings someSettings() {
    auto settings = input::makeMessage<input::Settings>();
    settings.keyboardPlays = 1;
    settings.bindingCount = 1;
    settings.bindings[0] = {26, 3};
    return settings;
}
