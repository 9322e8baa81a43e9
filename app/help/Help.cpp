#include "app/help/Help.h"

#include "app/help/HelpScreen.h"
#include "app/help/TryScreen.h"
#include "desktop/links/browser.h"
#include "kit/foundation/translation.h"
#include "kit/uikit/UIWindow.h"
#include "kit/uikit/focus_order.h"
#include "platform/foundation/NSArray.h"
#include "platform/uikit/UINavigationController.h"

#include <utility>

namespace app {

std::unique_ptr<Help> Help::of(const Bundle& bundle, Options options, Actions actions) {
    const auto text = bundle.manifest->objectForKey("JVNHelp").object<NSDictionary>();
    if (!text) return nullptr;
    std::unique_ptr<Help> help(new Help);
    help->m_name = bundle.name;
    if (const auto* const title = text->objectForKey("Title").string()) help->m_title = seat::translated(*title);
    if (const auto paragraphs = text->objectForKey("Text").object<NSArray>())
        for (const id& paragraph : *paragraphs)
            if (paragraph.string()) help->m_paragraphs.push_back(seat::translated(*paragraph.string()));
    help->m_options = std::move(options);
    help->m_actions = std::move(actions);
    return help;
}

Help::~Help() = default;

void Help::setFacts(const HelpFacts& facts) {
    m_facts = facts;
    if (const auto screen = m_screen.lock()) screen->show(facts);
}

std::shared_ptr<HelpScreen> Help::makeScreen() {
    const auto whileAlive = [this](auto action) {
        return [this, lives = std::weak_ptr(m_lives), action = std::move(action)] {
            if (!lives.expired()) action(*this);
        };
    };
    HelpScreen::Actions actions;
    actions.close = whileAlive([](Help& help) { help.close(); });
    actions.tryIt = whileAlive([](Help& help) {
        if (const auto shown = help.m_shown.lock())
            shown->pushViewController_animated(help.makeTryScreen({}), /*animated=*/true);
    });
    actions.startDaemon = m_actions.startDaemon;
    actions.simulate = m_actions.simulate;
    if (!m_options.guide.empty()) actions.openGuide = [guide = m_options.guide] { seat::openInBrowser(guide); };
    const auto screen = HelpScreen::alloc()->initWithText_actions({m_name, m_title, m_paragraphs}, std::move(actions));
    screen->show(m_facts);
    return screen;
}

std::shared_ptr<UIViewController> Help::makeTryScreen(std::function<void()> close) const {
    return TryScreen::alloc()->initWithSocket_close(
        m_options.isSimulated ? std::nullopt : std::optional(m_options.inputSocket), std::move(close));
}

void Help::show(UINavigationController& page, Movement movement) {
    if (m_shown.lock()) return;
    const auto screen = makeScreen();
    m_screen = screen;
    present(page, screen, movement);
}

void Help::showTry(UINavigationController& page) {
    present(page, makeTryScreen([this, lives = std::weak_ptr(m_lives)] {
                if (!lives.expired()) close();
            }),
            Movement::Slides);
}

void Help::present(UINavigationController& page, const std::shared_ptr<UIViewController>& root, Movement movement) {
    const auto window = page.view()->window();
    // A message, or another screen, is answered first.
    if (page.presentedViewController() || (window && seat::frontScope(*window) != window)) return;
    const auto over = UINavigationController::alloc()->initWithRootViewController(root);
    m_shown = over;
    page.presentViewController_animated_completion(over, movement == Movement::Slides, {});
}

void Help::close() {
    const auto shown = m_shown.lock();
    if (!shown) return;
    const bool isHelp = !m_screen.expired() && shown->viewControllers().front() == m_screen.lock();
    shown->dismissViewControllerAnimated_completion(/*animated=*/true, {});
    m_shown.reset();
    if (isHelp && m_actions.putAway) m_actions.putAway();
}

} // namespace app
