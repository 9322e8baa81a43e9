#pragma once

#include "kit/dispatch/main_queue.h"
#include "platform/foundation/NSData.h"
#include "system/notify/NotifyListener.h"
#include "tests/settings/PageTest.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/SystemCalls.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

using testing_support::Bytes;
using testing_support::DaemonPeer;
using testing_support::hex;
using testing_support::ScriptedDaemon;
using testing_support::SystemCall;
using testing_support::SystemCalls;

inline Bytes reply(std::uint8_t command, std::uint8_t state) { return {command, 0, 0, 0, state, 0, 0, 0, 0, 0, 0, 0}; }

// Answers each request by its command: a query with `query`, a connect with `connect` (nothing where empty).
inline ScriptedDaemon::Script answering(Bytes query, Bytes connect) {
    return [=](DaemonPeer& peer) {
        const Bytes head = peer.read(12);
        if (head.size() < 12) return;
        if (head[0] == 5) {
            peer.write(query);
            if (query.size() < 12) return;
        } else if (head[0] == 1) {
            peer.read(8);
            peer.write(connect);
        }
        peer.readToEnd();
    };
}

// The page over a scripted daemon, with what was announced counted.
class Connection : public PageTest {
protected:
    Connection()
        : m_failed("com.quorrel.jvnfailure", [this] { ++failures; }),
          m_initialised("com.quorrel.jvninitbt", [this] { ++initialisations; }) {}

    void start(ScriptedDaemon::Script script) {
        daemon.reset(); // its socket goes before the next one's comes
        daemon = std::make_unique<ScriptedDaemon>(app.root(), std::move(script));
    }
    // Shows the page over a daemon and lets the first query end.
    void showSettled(long type, bool paired, long mode = 1) {
        show(type, mode, {{"PS4BluetoothAddress", paired ? id(NSData::dataWithBytes(address)) : id()}});
        ASSERT_TRUE(daemon->waitForConnections(1));
        ASSERT_TRUE(app.waitUntil([&] { return rowIsEnabled(); }));
    }
    bool rowIsEnabled() {
        const auto cell = page->connectSpecifier()->propertyForKey("cellObject").object<PSTableCell>();
        return !cell || (cell->isUserInteractionEnabled() && cell->textLabel()->isEnabled());
    }
    // Taps the row and lets the exchange end; gives what the daemon got.
    std::string exchange() {
        const std::size_t before = daemon->connectionCount();
        EXPECT_TRUE(app.tap(page->connectSpecifier()->name()));
        EXPECT_TRUE(app.waitUntil([&] { return daemon->connectionCount() > before && rowIsEnabled(); }));
        const auto connections = daemon->connections();
        return connections.size() > before ? hex(connections[before]) : "";
    }

    static constexpr std::uint8_t address[6] = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66};
    const std::string connectFrame = "01 00 00 00 01 00 00 00 00 00 00 00 11 22 33 44 55 66 00 00";
    int failures = 0;
    int initialisations = 0;
    std::unique_ptr<ScriptedDaemon> daemon;
    testing_support::LoggedLines log;

private:
    seat::NotifyListener m_failed;
    seat::NotifyListener m_initialised;
};
