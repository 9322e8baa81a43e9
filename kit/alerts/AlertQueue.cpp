#include "kit/alerts/AlertQueue.h"

#include "kit/alerts/alert_state.h"
#include "platform/log.h"
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
    while (!m_alerts.empty() && AlertInternals::state(*m_alerts.front()).hasAppeared && !m_alerts.front()->window())
        m_alerts.pop_front();
    if (repeatsTheLast(*alert)) {
        if (const auto more = m_repeats.pass())
            NSLog("showing the alert \"%s\": the same one stands or waits already%s", alert->title().c_str(),
                  more->c_str());
        return;
    }
    m_alerts.push_back(alert);
    if (m_alerts.size() > mostWaiting) forgetOldestWaiting();
    showFirst();
}

bool AlertQueue::repeatsTheLast(const UIAlertView& alert) const {
    if (m_alerts.empty() || !AlertInternals::state(alert).delegate.expired()) return false;
    const UIAlertView& last = *m_alerts.back();
    return AlertInternals::state(last).delegate.expired() && !AlertInternals::state(last).isDismissing &&
           last.title() == alert.title() && last.message() == alert.message() &&
           last.buttonTitles() == alert.buttonTitles();
}

// The newest ones are what is so now.
void AlertQueue::forgetOldestWaiting() {
    const auto oldest = std::find_if(m_alerts.begin() + 1, m_alerts.end(), [](const auto& alert) {
        return AlertInternals::state(*alert).delegate.expired();
    });
    if (oldest == m_alerts.end()) return;
    if (const auto more = m_forgotten.pass())
        NSLog("showing the alert \"%s\": too many wait, and the oldest of them is left out%s",
              (*oldest)->title().c_str(), more->c_str());
    m_alerts.erase(oldest);
}

void AlertQueue::remove(const std::shared_ptr<UIAlertView>& alert, long buttonIndex) {
    const auto at = std::find(m_alerts.begin(), m_alerts.end(), alert);
    if (at == m_alerts.end()) return;
    m_alerts.erase(at);
    // It may be shown again.
    AlertInternals::state(*alert).hasAppeared = false;
    // With its buttons the focus goes too, back to where it was before.
    alert->removeFromSuperview();
    if (const auto delegate = AlertInternals::state(*alert).delegate.lock())
        delegate->alertView_didDismissWithButtonIndex(*alert, buttonIndex);
    showFirst();
}

void AlertQueue::showFirst() {
    if (m_alerts.empty() || AlertInternals::state(*m_alerts.front()).hasAppeared) return;
    const auto window = UIApplication::sharedApplication()->keyWindow();
    if (!window) return;
    AlertInternals::appearIn(*m_alerts.front(), *window);
}
