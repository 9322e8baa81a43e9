#pragma once

#include "desktop/appearance/DesktopLook.h"

#include <functional>
#include <memory>
#include <optional>

namespace seat {

enum class AppearanceChange { Colors, Text }; // with the text the colours may have changed, too

// Has what is shown look as the desktop wants programs to: light or dark, with high contrast, in the accent colour,
// with text of its font and size. What the desktop's settings portal says comes first, for what it does not say the
// toolkit's own knowledge stands in; both while the program runs, too. Never waits. Main thread, with a Toolkit.
class DesktopAppearance {
public:
    // Has set the look as far as it is known; `changed` runs when it becomes another one. Until the portal has
    // answered, or is known to be absent, `expected` stands for its answer.
    DesktopAppearance(const std::optional<DesktopLook>& expected, std::function<void(AppearanceChange)> changed);
    ~DesktopAppearance();
    DesktopAppearance(const DesktopAppearance&) = delete;
    DesktopAppearance& operator=(const DesktopAppearance&) = delete;

    // What the portal's answer has led to; nothing without one.
    std::optional<DesktopLook> settled() const;

private:
    struct State;
    std::shared_ptr<State> m_state; // weakly held by calls that are under way
};

} // namespace seat
