#pragma once

#include "app/help/facts.h"
#include "platform/uikit/UIViewController.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace seat {
class TextButton;
}

namespace app {

class CardView;
class ColumnView;

// The first minute: what the program is, what it needs and what of that is missing, and what can be tried. F1 shows it
// again.
class HelpScreen final : public UIViewController {
    NS_CLASS(HelpScreen)
public:
    ~HelpScreen() override;

    struct Text {
        std::string name; // of the program
        std::string title;
        std::vector<std::string> paragraphs;
    };
    // An empty one has no button.
    struct Actions {
        std::function<void()> close;
        std::function<void()> startDaemon;
        std::function<void()> tryIt;
        std::function<void()> simulate;
        std::function<void()> openGuide;
    };
    std::shared_ptr<HelpScreen> initWithText_actions(Text text, Actions actions);
    void show(const HelpFacts& facts);

    bool accessibilityPerformEscape() override;

protected:
    void loadView() override;

private:
    HelpScreen() = default;
    void addButton(const std::string& title, SEL action, const std::string& footer);
    void addText(const std::string& text);
    void closeTapped();
    void startTapped();
    void tryTapped();
    void simulateTapped();
    void guideTapped();

    Text m_text;
    Actions m_actions;
    HelpFacts m_facts;
    std::shared_ptr<ColumnView> m_column;
    std::shared_ptr<CardView> m_needs;
    std::shared_ptr<StatusRow> m_daemon;
    std::shared_ptr<seat::TextButton> m_start;
    std::shared_ptr<StatusRow> m_bluetooth;
    std::shared_ptr<StatusRow> m_keyboard;
};

} // namespace app
