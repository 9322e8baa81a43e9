#pragma once

#include "services/daemon_status/Status.h"

#include <functional>
#include <optional>

namespace app {

class NoticeBoard;

// What the daemon knows, in notices: nothing can be played, Bluetooth is away, and, once the keyboard has been chosen,
// what it waits for. Each is told when it becomes so, and withdrawn when it is so no longer.
class StatusNotices {
public:
    // The board outlives this object. `tryIt` shows what the keyboard plays.
    StatusNotices(NoticeBoard& board, std::function<void()> tryIt);

    // Nothing: the daemon says nothing, which is told elsewhere.
    void show(const std::optional<daemon_status::Status>& status);

private:
    void showTrouble(const daemon_status::Status& status);
    void showBluetooth(const daemon_status::Status& status);
    void showReadiness(const daemon_status::Status& status);

    NoticeBoard& m_board;
    std::function<void()> m_tryIt;
    std::optional<daemon_status::Status> m_status;
    bool m_isJustChosen = false; // the keyboard, while this program watched
};

} // namespace app
