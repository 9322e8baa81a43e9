#pragma once

#include "platform/uikit/UIAlertView.h"

#include <deque>
#include <memory>

// The alerts that were asked for, in their order: the first one is on screen, the rest wait. Keeps them alive
// meanwhile. Main thread only.
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
    void showFirst();

    std::deque<std::shared_ptr<UIAlertView>> m_alerts;
};
