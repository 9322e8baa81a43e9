#pragma once

#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIView.h"

#include "kit/dispatch/run_loop_sources.h"

#include <memory>
#include <string>

class UIWindow;

namespace app {

// A quiet panel over the lower edge of a window that says what is wrong and what to do. It takes no touches and goes
// away by itself.
class FailureBanner final : public UIView {
    NS_CLASS(FailureBanner)
public:
    static constexpr double secondsShown = 6;
    static constexpr double secondsToCopy = 60; // for a text that somebody may have to write down

    ~FailureBanner() override;

    std::shared_ptr<FailureBanner> initWithText(std::string text);

    // Shown already, it stays for its full time from now on. nil is ignored.
    void showInWindow(const std::shared_ptr<UIWindow>& window, double seconds = secondsShown);
    // Hiding a hidden one does nothing.
    void hide();
    bool isShown() const { return m_isShown; }

    void layoutSubviews() override;
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::Alert; }
    std::string accessibilityLabel() const override;

private:
    void place();

    std::shared_ptr<UILabel> m_label;
    seat::SourceToken m_timer = 0;
    bool m_isShown = false;
};

} // namespace app
