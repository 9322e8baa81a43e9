#pragma once

#include "app/help/PadWatch.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIViewController.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace app {

class CardView;
class ColumnView;
class PadView;

// The gamepad while keys are pressed: what the input service says of the pad, never of keys. While the screen is shown
// the keyboard plays as if a game listened.
class TryScreen final : public UIViewController {
    NS_CLASS(TryScreen)
public:
    ~TryScreen() override;

    // Where the input service listens; nothing where controllers are simulated, and no keyboard plays. `close` is for a
    // screen that stands alone; an empty one leaves the way back.
    std::shared_ptr<TryScreen> initWithSocket_close(std::optional<std::string> socketPath, std::function<void()> close);

    void viewWillAppear(bool animated) override;
    void viewDidDisappear(bool animated) override;
    bool accessibilityPerformEscape() override;

protected:
    void loadView() override;

private:
    TryScreen() = default;
    void retryTapped();
    void closeTapped();
    void refresh();

    std::optional<std::string> m_socketPath;
    std::function<void()> m_close;
    std::optional<PadWatch> m_watch;
    std::shared_ptr<ColumnView> m_column;
    std::shared_ptr<PadView> m_pad;
    std::shared_ptr<UILabel> m_headline; // what is so
    std::shared_ptr<UILabel> m_text;     // what to do
    std::shared_ptr<CardView> m_retry;
};

} // namespace app
