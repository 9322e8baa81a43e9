#include "kit/alerts/AlertQueue.h"

#include "kit/alerts/alert_state.h"
#include "platform/uikit/UIApplication.h"

#include <algorithm>

AlertQueue& AlertQueue::shared() {
    static auto& queue = *new AlertQueue;
    return queue;
}

bool AlertQueue::contains(const UIAlertView& alert) const {
    return std::any_of(m_alerts.begin(), m_alerts.end(), [&](const auto& other) { return other.get() == &alert; });
}

void AlertQueue::add(const std::shared_ptr<UIAlertView>& alert) {
    if (contains(*alert)) return;
    // Its window is gone: nobody can answer it any more.
    while (!m_alerts.empty() && m_alerts.front()->m_alert->hasAppeared && !m_alerts.front()->window())
        m_alerts.pop_front();
    m_alerts.push_back(alert);
    showFirst();
}

void AlertQueue::remove(const std::shared_ptr<UIAlertView>& alert, long buttonIndex) {
    const auto at = std::find(m_alerts.begin(), m_alerts.end(), alert);
    if (at == m_alerts.end()) return;
    m_alerts.erase(at);
    // It may be shown again.
    alert->m_alert->hasAppeared = false;
    // With its buttons the focus goes too, back to where it was before.
    alert->removeFromSuperview();
    if (const auto delegate = alert->m_alert->delegate.lock())
        delegate->alertView_didDismissWithButtonIndex(*alert, buttonIndex);
    showFirst();
}

void AlertQueue::showFirst() {
    if (m_alerts.empty() || m_alerts.front()->m_alert->hasAppeared) return;
    const auto window = UIApplication::sharedApplication()->keyWindow();
    if (!window) return;
    m_alerts.front()->appearIn(*window);
}
