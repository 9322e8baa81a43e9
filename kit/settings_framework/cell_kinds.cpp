#include "kit/settings_framework/cell_kinds.h"

#include "kit/settings_framework/row_value.h"
#include "kit/uikit/appearance.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UITapGestureRecognizer.h"

NS_CLASS_IMPLEMENTATION(
    PSSwitchTableCell, PSTableCell,
    method<&PSSwitchTableCell::initWithStyle_reuseIdentifier_specifier>("initWithStyle:reuseIdentifier:specifier:"),
    method<&PSSwitchTableCell::switchChanged>("switchChanged:"), method<&PSSwitchTableCell::rowTapped>("rowTapped:"))
NS_CLASS_IMPLEMENTATION(
    PSButtonTableCell, PSTableCell,
    method<&PSButtonTableCell::initWithStyle_reuseIdentifier_specifier>("initWithStyle:reuseIdentifier:specifier:"))
NS_CLASS_IMPLEMENTATION(
    PSLinkListTableCell, PSTableCell,
    method<&PSLinkListTableCell::initWithStyle_reuseIdentifier_specifier>("initWithStyle:reuseIdentifier:specifier:"))
NS_CLASS_IMPLEMENTATION(
    PSStaticTextTableCell, PSTableCell,
    method<&PSStaticTextTableCell::initWithStyle_reuseIdentifier_specifier>("initWithStyle:reuseIdentifier:specifier:"))

PSSwitchTableCell::~PSSwitchTableCell() = default;
PSButtonTableCell::~PSButtonTableCell() = default;
PSLinkListTableCell::~PSLinkListTableCell() = default;
PSStaticTextTableCell::~PSStaticTextTableCell() = default;

std::shared_ptr<PSSwitchTableCell>
PSSwitchTableCell::initWithStyle_reuseIdentifier_specifier(long, const std::string& reuseIdentifier,
                                                           const std::shared_ptr<PSSpecifier>& specifier) {
    if (!PSTableCell::initWithStyle_reuseIdentifier_specifier(UITableViewCellStyleDefault, reuseIdentifier, specifier))
        return nullptr;
    setSelectionStyle(UITableViewCellSelectionStyle::None);
    m_switch = UISwitch::alloc()->init();
    m_switch->addTarget_action_forControlEvents(shared_from_this(), "switchChanged:", UIControlEventValueChanged);
    m_switch->setAccessibilityLabel(textLabel()->text());
    setAccessoryView(m_switch);
    addGestureRecognizer(UITapGestureRecognizer::alloc()->initWithTarget_action(shared_from_this(), "rowTapped:"));
    return self(this);
}

void PSSwitchTableCell::setValue(const id& value) { m_switch->setOn_animated(value.boolValue(), window() != nullptr); }

void PSSwitchTableCell::refreshCellContentsWithSpecifier(const std::shared_ptr<PSSpecifier>& specifier) {
    PSTableCell::refreshCellContentsWithSpecifier(specifier);
    m_switch->setAccessibilityLabel(textLabel()->text());
}

// On the switch itself the finger has its own effect.
void PSSwitchTableCell::rowTapped(const std::shared_ptr<UIGestureRecognizer>& recognizer) {
    if (!recognizer || recognizer->state() != UIGestureRecognizerStateEnded) return;
    if (!CGRectContainsPoint(m_switch->bounds(), recognizer->locationOfTouch_inView(0, m_switch.get())))
        m_switch->accessibilityActivate();
}

void PSSwitchTableCell::switchChanged() {
    const auto row = specifier();
    // Storing may rebuild the page, and the last reference to this cell go with the old row.
    const auto keepAlive = shared_from_this();
    if (row) seat::storeValue(row, NSNumber::numberWithBool(m_switch->isOn()));
}

std::shared_ptr<PSButtonTableCell>
PSButtonTableCell::initWithStyle_reuseIdentifier_specifier(long, const std::string& reuseIdentifier,
                                                           const std::shared_ptr<PSSpecifier>& specifier) {
    if (!PSTableCell::initWithStyle_reuseIdentifier_specifier(UITableViewCellStyleDefault, reuseIdentifier, specifier))
        return nullptr;
    textLabel()->setTextColor(seat::appearance::tintColor());
    return self(this);
}

void PSButtonTableCell::setValue(const id&) {}

std::shared_ptr<PSLinkListTableCell>
PSLinkListTableCell::initWithStyle_reuseIdentifier_specifier(long, const std::string& reuseIdentifier,
                                                             const std::shared_ptr<PSSpecifier>& specifier) {
    if (!PSTableCell::initWithStyle_reuseIdentifier_specifier(UITableViewCellStyleValue1, reuseIdentifier, specifier))
        return nullptr;
    setAccessoryType(UITableViewCellAccessoryType::DisclosureIndicator);
    return self(this);
}

void PSLinkListTableCell::setValue(const id& value) {
    const auto row = specifier();
    if (!row) return;
    const auto choices = seat::choicesOf(*row);
    const auto chosen = seat::choiceOf(choices, value);
    detailTextLabel()->setText(chosen ? choices[*chosen].title : seat::textOf(value));
}

std::shared_ptr<PSStaticTextTableCell>
PSStaticTextTableCell::initWithStyle_reuseIdentifier_specifier(long, const std::string& reuseIdentifier,
                                                               const std::shared_ptr<PSSpecifier>& specifier) {
    if (!PSTableCell::initWithStyle_reuseIdentifier_specifier(UITableViewCellStyleValue1, reuseIdentifier, specifier))
        return nullptr;
    setSelectionStyle(UITableViewCellSelectionStyle::None);
    return self(this);
}
