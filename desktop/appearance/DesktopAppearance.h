#pragma once

#include <functional>
#include <memory>

namespace seat {

// Has what is painted look as the desktop wants programs to: light or dark, with high contrast, in the accent colour.
// What the desktop's settings portal says comes first, for what it does not say the toolkit's own knowledge stands in;
// both while the program runs, too. Never waits. Main thread, with a Toolkit.
class DesktopAppearance {
public:
    // Has set the look as far as it is known; `changed` runs when it becomes another one.
    explicit DesktopAppearance(std::function<void()> changed);
    ~DesktopAppearance();
    DesktopAppearance(const DesktopAppearance&) = delete;
    DesktopAppearance& operator=(const DesktopAppearance&) = delete;

private:
    struct State;
    std::shared_ptr<State> m_state; // weakly held by calls that are under way
};

} // namespace seat
