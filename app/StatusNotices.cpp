#include "app/StatusNotices.h"

#include "app/NoticeBoard.h"
#include "kit/foundation/translation.h"

#include <string>
#include <utility>

namespace app {

using seat::translated;

namespace {

using daemon_status::Bluetooth;
using daemon_status::InputService;
using daemon_status::Status;

// Why the keyboard cannot play, and what to do; empty when it can.
std::string trouble(const Status& status) {
    if (!status.isKeyboardChosen) return {};
    if (status.inputService == InputService::unreachable)
        return translated(
            "The service that plays the keyboard does not answer. “systemctl status jvninputd.socket” in a terminal "
            "says more.");
    if (status.inputService != InputService::connected) return {};
    if (status.readiness == input::Readiness::noKeyboard)
        return translated("No keyboard was found. Plug one in, or connect one in the system’s Bluetooth settings.");
    if (status.readiness == input::Readiness::noPad)
        return translated(
            "The gamepad could not be made, so the keyboard cannot play. “journalctl -u jvninputd” in a terminal "
            "says why.");
    return {};
}

// Why no controller can be connected; empty when one can, or the keyboard is the controller.
std::string bluetoothTrouble(const Status& status) {
    if (status.isKeyboardChosen) return {};
    switch (status.bluetooth) {
    case Bluetooth::absent:
        return translated(
            "There is no Bluetooth: no adapter, or the system’s service for it does not run. Controllers cannot "
            "connect; a keyboard can still play.");
    case Bluetooth::blocked:
        return translated(
            "Bluetooth is blocked by a switch or the flight mode. Controllers cannot connect until it is not.");
    case Bluetooth::off:
        return translated("Bluetooth is off. Pairing or connecting a controller switches it on.");
    case Bluetooth::unknown:
    case Bluetooth::on:
        break;
    }
    return {};
}

} // namespace

StatusNotices::StatusNotices(NoticeBoard& board, std::function<void()> tryIt)
    : m_board(board), m_tryIt(std::move(tryIt)) {}

void StatusNotices::show(const std::optional<Status>& status) {
    const Status now = status.value_or(Status{});
    if (m_status && !m_status->isKeyboardChosen && now.isKeyboardChosen) m_isJustChosen = true;
    if (!now.isKeyboardChosen) m_isJustChosen = false;
    showTrouble(now);
    showBluetooth(now);
    showReadiness(now);
    m_status = status;
}

// What was put away comes back only when it is said anew.
void StatusNotices::showTrouble(const Status& status) {
    const std::string text = trouble(status);
    if (text == trouble(m_status.value_or(Status{}))) return;
    m_board.withdraw(NoticeKind::CannotPlay);
    if (!text.empty()) m_board.post(NoticeKind::CannotPlay, {.text = text});
}

void StatusNotices::showBluetooth(const Status& status) {
    const std::string text = bluetoothTrouble(status);
    if (text == bluetoothTrouble(m_status.value_or(Status{}))) return;
    m_board.withdraw(NoticeKind::BluetoothAway);
    if (!text.empty()) m_board.post(NoticeKind::BluetoothAway, {.text = text});
}

// Told once after the choice: it is how things are from then on.
void StatusNotices::showReadiness(const Status& status) {
    const bool waits = status.isKeyboardChosen && status.inputService == InputService::connected;
    const bool isReady = waits && status.readiness == input::Readiness::waitingForGame;
    const bool isOff = waits && status.readiness == input::Readiness::switchedOff;
    if (!isReady && !isOff) return m_board.withdraw(NoticeKind::ReadyToPlay);
    if (!std::exchange(m_isJustChosen, false)) return;
    m_board.post(
        NoticeKind::ReadyToPlay,
        {.text = isReady
                     ? translated("The keyboard is ready. It becomes a gamepad as soon as a game listens to one.")
                     : translated("The keyboard is ready. Hold both Ctrl keys and press Escape to make it a gamepad."),
         .actionTitle = translated("Try It"),
         .action = m_tryIt});
}

} // namespace app
