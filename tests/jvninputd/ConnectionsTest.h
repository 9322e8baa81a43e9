#pragma once

#include "services/common/log.h"
#include "services/jvninputd/Server.h"
#include "services/jvninputd/listening_socket.h"
#include "tests/jvninputd/Peer.h"
#include "tests/support/HeldClock.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>

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
