#pragma once

#include "services/input_protocol/messages.h"
#include "system/files/Descriptor.h"

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>

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
