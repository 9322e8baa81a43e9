#include "simulator/Discovery.h"

#include "platform/foundation/NSData.h"
#include "platform/notify.h"
#include "simulator/output_lines.h"
#include "system/bus/SessionBus.h"
#include "system/messaging/message_sender.h"
#include "system/preferences/preferences_store.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <utility>

namespace simulator {

namespace {

constexpr const char* center = "com.quorrel.jvn.bootstrap";
constexpr const char* message = "JVNDiscoveryUpdate";
constexpr const char* stateKey = "JVNDiscoveryState";
constexpr int searching = 0;
constexpr int floodBatch = 200;

std::shared_ptr<NSDictionary> dictionary(const char* key, id value) {
    const auto made = NSDictionary::dictionary();
    made->setObject_forKey(std::move(value), key);
    return made;
}

} // namespace

Discovery::Discovery(Program& program, DiscoveryScript script) : m_program(program), m_script(std::move(script)) {
    nextAfter(0);
}

Discovery::~Discovery() { seat::removeSource(m_timer); }

void Discovery::nextAfter(double seconds) {
    m_timer = seat::addTimer(seconds, [this] {
        m_timer = 0;
        next();
    });
}

void Discovery::next() {
    if (m_next == m_script.steps.size()) return m_program.end(0);
    play(m_script.steps[m_next++]);
}

void Discovery::play(const DiscoveryStep& step) {
    using Kind = DiscoveryStep::Kind;
    switch (step.kind) {
    case Kind::Report:
        say("jvndiscovery: report %d", step.number);
        return report(dictionary(stateKey, NSNumber::numberWithInt(step.number)));
    case Kind::ReportNothing:
        return report(nullptr);
    case Kind::ReportOther:
        return report(dictionary("Other", NSNumber::numberWithInt(1)));
    case Kind::ReportText:
        return report(dictionary(stateKey, id(step.text)));
    case Kind::Flood:
        return flood(step.number);
    case Kind::Wait:
        return nextAfter(step.number / 1000.0);
    case Kind::Store:
        return store(step);
    case Kind::IgnoreInterrupt:
        m_program.setSignalled([this](int number) {
            if (number != SIGINT) m_program.end(0);
        });
        return nextAfter(0);
    case Kind::Exit:
        return m_program.end(step.number);
    case Kind::Crash:
        std::abort();
    }
}

// The next step waits for the answer, so that reports arrive as they are written.
void Discovery::report(const std::shared_ptr<NSDictionary>& carried) {
    seat::sendMessage(center, message, carried, [this, alive = std::weak_ptr<int>(m_alive)](bool) {
        if (!alive.expired()) nextAfter(0);
    });
}

void Discovery::flood(int left) {
    if (left <= 0) return nextAfter(0);
    int batch = 0;
    // What the bus does not take yet waits with us, not in its connection.
    if (seat::SessionBus::shared().isFlushed()) {
        batch = std::min(left, floodBatch);
        for (int i = 0; i < batch; ++i)
            seat::sendMessage(center, message, dictionary(stateKey, NSNumber::numberWithInt(searching)));
    }
    m_timer = seat::addTimer(0, [this, rest = left - batch] { flood(rest); });
}

void Discovery::store(const DiscoveryStep& step) {
    const bool stored =
        seat::setPreferenceValue("com.quorrel.joyvane", "PS4BluetoothAddress", id(NSData::dataWithBytes(step.bytes)));
    say("jvndiscovery: address %s", stored ? "stored" : "not stored");
    if (stored) notify_post("com.quorrel.jvnprefs.changed");
    nextAfter(0);
}

} // namespace simulator
