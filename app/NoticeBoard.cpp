#include "app/NoticeBoard.h"

#include "app/NoticeView.h"
#include "kit/uikit/UIWindow.h"
#include "platform/uikit/UIViewController.h"

#include <algorithm>
#include <utility>

namespace app {

namespace {

NoticeKind weight(NoticeKind kind) {
    return kind >= NoticeKind::ToolFailed && kind <= NoticeKind::DaemonAbsent ? NoticeKind::ToolFailed : kind;
}

} // namespace

NoticeBoard::NoticeBoard(const std::shared_ptr<UIWindow>& window) : m_window(window) {}

NoticeBoard::~NoticeBoard() {
    m_notices.clear();
    showFirst();
}

void NoticeBoard::post(NoticeKind kind, Notice notice) {
    const auto [told, isNew] = m_notices.try_emplace(kind);
    if (isNew || told->second.notice.text != notice.text) told->second.number = ++m_last;
    told->second.notice = std::move(notice);
    showFirst();
}

void NoticeBoard::withdraw(NoticeKind kind) {
    if (m_notices.erase(kind) > 0) showFirst();
}

NoticeBoard::Notices::iterator NoticeBoard::first() {
    return std::ranges::min_element(
        m_notices, {}, [](const auto& entry) { return std::pair(weight(entry.first), ~entry.second.number); });
}

void NoticeBoard::putAway() {
    if (!m_notices.empty()) m_notices.erase(first());
    showFirst();
}

void NoticeBoard::act() {
    if (m_notices.empty()) return;
    const auto action = first()->second.notice.action; // it may withdraw the notice
    if (action) action();
}

void NoticeBoard::showFirst() {
    const auto window = m_window.lock();
    if (!window) return;
    if (m_notices.empty()) {
        if (m_view) m_view->removeFromSuperview();
        m_view = nullptr;
    } else {
        if (!m_view) {
            m_view = NoticeView::alloc()->initWithClosed_acted([this] { putAway(); }, [this] { act(); });
            m_view->wantsPlace = [this] { layOut(); };
            m_view->setAutoresizingMask(UIViewAutoresizingFlexibleTopMargin | UIViewAutoresizingFlexibleWidth);
        }
        const Notice& notice = first()->second.notice;
        m_view->show(notice.text, notice.actionTitle);
    }
    layOut();
}

void NoticeBoard::layOut() {
    const auto window = m_window.lock();
    if (!window) return;
    const CGSize size = window->bounds().size;
    const double height = m_view ? m_view->heightIn(size) : 0;
    if (const auto& screen = window->rootViewController())
        screen->view()->setFrame({{0, 0}, {size.width, size.height - height}});
    if (!m_view) return;
    m_view->setFrame({{0, size.height - height}, {size.width, height}});
    // Over the window's screen and below what is shown over that.
    if (m_view->superview() != window) window->insertSubview_atIndex(m_view, 1);
}

} // namespace app
