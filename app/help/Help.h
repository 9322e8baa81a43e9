#pragma once

#include "app/Bundle.h"
#include "app/help/facts.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

class UINavigationController;
class UIView;
class UIViewController;

namespace app {

class HelpScreen;

// The help of a bundle: its text, and the screens that show it over the page. The manifest has the text under
// "JVNHelp": a title, and an array of paragraphs under "Text". Main thread.
class Help {
public:
    struct Options {
        std::string inputSocket; // where the input service listens
        std::string guide;       // a page's real path; empty: there is none
        bool isSimulated = false;
    };
    struct Actions {
        std::function<void()> startDaemon;
        std::function<void()> simulate; // opens a program with simulated controllers
        std::function<void()> putAway;  // the help was closed
    };
    // Nothing for a bundle without such a text.
    static std::unique_ptr<Help> of(const Bundle& bundle, Options options, Actions actions);
    ~Help();
    Help(const Help&) = delete;
    Help& operator=(const Help&) = delete;

    enum class Movement { Slides, Stands };
    // Over the page, unless something stands over it already.
    void show(UINavigationController& page, Movement movement);
    void showTry(UINavigationController& page);
    void setFacts(const HelpFacts& facts);

private:
    Help() = default;
    std::shared_ptr<HelpScreen> makeScreen();
    std::shared_ptr<UIViewController> makeTryScreen(std::function<void()> close) const;
    void present(UINavigationController& page, const std::shared_ptr<UIViewController>& root, Movement movement);
    void close();

    std::string m_name;
    std::string m_title;
    std::vector<std::string> m_paragraphs;
    Options m_options;
    Actions m_actions;
    HelpFacts m_facts;
    std::shared_ptr<char> m_lives = std::make_shared<char>(); // weakly held by the screens
    std::weak_ptr<HelpScreen> m_screen;
    std::weak_ptr<UINavigationController> m_shown;
};

} // namespace app
