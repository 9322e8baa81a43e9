#pragma once

// The one notice over a page, of what only the application knows.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

class UIViewController;
class UIWindow;

namespace app {

class NoticeView;

// What can be told, the weightiest first; of several that are true the first is shown. What becomes of what the user
// has just done goes before what is so by itself; but why a page is empty goes before that.
enum class NoticeKind {
    PreferencesMovedAside,
    SettingNotStored,
    ResourceDamaged,
    ToolFailed,
    NotOpened,
    DaemonEnded,
    DaemonSilent,
    DaemonAbsent,
    CannotPlay,
    BluetoothAway,
    ReadyToPlay,
    DaemonStarted
};

struct Notice {
    std::string text = {};        // what has happened, and what to do
    std::string actionTitle = {}; // of a button that does it; empty: none
    std::function<void()> action = {};
};

// Each notice stays until it is put away or withdrawn. The window's screen is made lower meanwhile, so that no row is
// covered. Main thread.
class NoticeBoard {
public:
    // The window's screen may be set later.
    explicit NoticeBoard(const std::shared_ptr<UIWindow>& window);
    ~NoticeBoard();
    NoticeBoard(const NoticeBoard&) = delete;
    NoticeBoard& operator=(const NoticeBoard&) = delete;

    // In place of what was told of that kind; the same text said again is no news.
    void post(NoticeKind kind, Notice notice);
    // It is not true any more. Nothing for one that is not there.
    void withdraw(NoticeKind kind);

private:
    void layOut();
    void putAway();
    void act();
    void showFirst();

    struct Told {
        Notice notice;
        std::uint64_t number; // higher is newer
    };
    using Notices = std::map<NoticeKind, Told>;
    Notices::iterator first();

    std::weak_ptr<UIWindow> m_window;
    Notices m_notices;
    std::uint64_t m_last = 0;
    std::shared_ptr<NoticeView> m_view;
};

} // namespace app
