#pragma once

#include "kit/runtime/LineLimit.h"
#include "platform/uikit/UIAlertView.h"

#include <deque>
#include <memory>

// The alerts that were asked for, in their order: the first one is on screen, the rest wait. Keeps them alive
// meanwhile. Of alerts that nobody waits to hear from, one that says the same as the last before it is left out, and of
// too many the oldest; both are logged, however many they are. Main thread only.
class AlertQueue {
public:
    // Never destroyed: an alert may be up when the process ends.
    static AlertQueue& shared();

    // nothing for one that waits or is shown already.
    void add(const std::shared_ptr<UIAlertView>& alert);
    // Takes it out, tells its delegate, and shows the next.
    void remove(const std::shared_ptr<UIAlertView>& alert, long buttonIndex);
    bool contains(const UIAlertView& alert) const;

private:
    static constexpr std::size_t mostWaiting = 8;

    void showFirst();
    bool repeatsTheLast(const UIAlertView& alert) const;
    void forgetOldestWaiting();

    std::deque<std::shared_ptr<UIAlertView>> m_alerts;
    seat::LineLimit m_repeats; // lines about alerts that another program can ask for as often as it likes
    seat::LineLimit m_forgotten;
};
