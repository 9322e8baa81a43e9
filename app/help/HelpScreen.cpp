#include "app/help/HelpScreen.h"

#include "app/help/CardView.h"
#include "app/help/ColumnView.h"
#include "app/help/PadView.h"
#include "kit/controllers/ControllerInternals.h"
#include "kit/controllers/TextButton.h"
#include "kit/foundation/translation.h"
#include "kit/quartz/geometry.h"
#include "kit/tables/TableText.h"
#include "kit/uikit/appearance.h"
#include "platform/runtime/method.h"

#include <utility>

namespace app {

using namespace seat::appearance;
using seat::TextButton;
using seat::translated;

NS_CLASS_IMPLEMENTATION(HelpScreen, UIViewController, method<&HelpScreen::closeTapped>("closeTapped"),
                        method<&HelpScreen::startTapped>("startTapped"), method<&HelpScreen::tryTapped>("tryTapped"),
                        method<&HelpScreen::simulateTapped>("simulateTapped"),
                        method<&HelpScreen::guideTapped>("guideTapped"))

namespace {

constexpr double sectionSpace = 24;  // above a card
constexpr double textSpace = 8;      // above a text, and below a card
constexpr double mostPicture = 0.28; // of the screen: in the lowest windows the first button is in sight, too

// The small print around cards stands in line with their rows' text.
class SmallPrint final : public UIView {
    NS_CLASS(SmallPrint)
public:
    std::shared_ptr<SmallPrint> initWithText_role(const std::string& text, UIAccessibilityRole role) {
        if (!UIView::initWithFrame(CGRectZero)) return nullptr;
        m_label = seat::TableText::alloc()->initWithRole(role);
        m_label->setText(text);
        addSubview(m_label);
        return self(this);
    }
    CGSize sizeThatFits(CGSize size) const override {
        return m_label->sizeThatFits({size.width - 2 * sideMargin, size.height});
    }
    void layoutSubviews() override {
        m_label->setFrame(CGRectMake(sideMargin, 0, bounds().size.width - 2 * sideMargin, bounds().size.height));
    }

private:
    SmallPrint() = default;
    std::shared_ptr<seat::TableText> m_label;
};
NS_CLASS_IMPLEMENTATION(SmallPrint, UIView)

// Gone by the time that it has run, perhaps.
void run(const std::function<void()>& action) {
    const auto kept = action;
    if (kept) kept();
}

} // namespace

HelpScreen::~HelpScreen() = default;

std::shared_ptr<HelpScreen> HelpScreen::initWithText_actions(Text text, Actions actions) {
    if (!UIViewController::init()) return nullptr;
    m_text = std::move(text);
    m_actions = std::move(actions);
    setTitle(m_text.name);
    const auto close = TextButton::alloc()->initWithTitle_kind(translated("Close"), TextButton::Kind::Bold);
    close->addTarget_action_forControlEvents(self(this), "closeTapped", UIControlEventTouchUpInside);
    ControllerInternals::setBarButton(*this, close);
    return self(this);
}

void HelpScreen::loadView() {
    m_column = ColumnView::alloc()->init();
    m_column->add(PadView::alloc()->initWithMostHeight(mostPicture), 20);
    const auto title = UILabel::alloc()->initWithFrame(CGRectZero);
    title->setFont(boldTextFont(20));
    title->setTextColor(textColor());
    title->setTextAlignment(NSTextAlignmentCenter);
    title->setNumberOfLines(0);
    title->setText(m_text.title);
    m_column->add(title, 16);
    for (const auto& paragraph : m_text.paragraphs) addText(paragraph);
    addButton(translated("Set Up Your Controller"), "closeTapped", {});

    m_column->add(SmallPrint::alloc()->initWithText_role(translated("What It Needs"), UIAccessibilityRole::Heading),
                  sectionSpace);
    m_needs = CardView::alloc()->init();
    m_daemon = StatusRow::alloc()->initWithName(translated("Daemon"));
    m_start = TextButton::alloc()->initWithTitle_kind(translated("Start It"), TextButton::Kind::Row);
    m_start->addTarget_action_forControlEvents(self(this), "startTapped", UIControlEventTouchUpInside);
    m_bluetooth = StatusRow::alloc()->initWithName(translated("Bluetooth"));
    m_keyboard = StatusRow::alloc()->initWithName(translated("Keyboard"));
    for (const auto& row : std::initializer_list<std::shared_ptr<UIView>>{m_daemon, m_start, m_keyboard, m_bluetooth})
        m_needs->add(row);
    m_column->add(m_needs, textSpace);

    if (m_actions.tryIt)
        addButton(translated("Try It"), "tryTapped", translated("Shows the gamepad while you press keys."));
    if (m_actions.simulate)
        addButton(translated("Try Without a Controller"), "simulateTapped",
                  translated("Opens a second window with pretend controllers. Nothing of yours changes."));
    if (m_actions.openGuide)
        addButton(translated("Read the Guide"), "guideTapped", translated("From the first start to the first game."));
    m_column->add(
        SmallPrint::alloc()->initWithText_role(translated("F1 shows this again."), UIAccessibilityRole::StaticText),
        sectionSpace);
    setView(m_column);
    show(m_facts);
}

void HelpScreen::addText(const std::string& text) {
    const auto label = UILabel::alloc()->initWithFrame(CGRectZero);
    label->setFont(textFont(17));
    label->setTextColor(textColor());
    label->setTextAlignment(startAlignment());
    label->setNumberOfLines(0);
    label->setText(text);
    m_column->add(label, 12);
}

void HelpScreen::addButton(const std::string& title, SEL action, const std::string& footer) {
    const auto button = TextButton::alloc()->initWithTitle_kind(title, TextButton::Kind::Row);
    button->addTarget_action_forControlEvents(self(this), action, UIControlEventTouchUpInside);
    const auto card = CardView::alloc()->init();
    card->add(button);
    m_column->add(card, sectionSpace);
    if (!footer.empty())
        m_column->add(SmallPrint::alloc()->initWithText_role(footer, UIAccessibilityRole::StaticText), textSpace);
}

void HelpScreen::show(const HelpFacts& facts) {
    m_facts = facts;
    if (!m_column) return;
    const auto fill = [](StatusRow& row, const Fact& fact) { row.show(fact.state, fact.mood, fact.advice); };
    fill(*m_daemon, daemonFact(facts));
    fill(*m_bluetooth, bluetoothFact(facts));
    fill(*m_keyboard, keyboardFact(facts));
    m_start->setHidden(facts.status || facts.isDaemonReached || !facts.canStartDaemon || !m_actions.startDaemon);
    m_needs->setNeedsLayout();
    m_column->setNeedsLayout();
}

bool HelpScreen::accessibilityPerformEscape() {
    closeTapped();
    return true;
}

void HelpScreen::closeTapped() {
    const auto keep = self(this);
    run(m_actions.close);
}

void HelpScreen::startTapped() { run(m_actions.startDaemon); }
void HelpScreen::tryTapped() { run(m_actions.tryIt); }
void HelpScreen::simulateTapped() { run(m_actions.simulate); }
void HelpScreen::guideTapped() { run(m_actions.openGuide); }

} // namespace app
