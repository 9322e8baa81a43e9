#pragma once

// The cells of the row kinds.

#include "kit/uikit/UISwitch.h"
#include "platform/settings_framework/PSTableCell.h"
#include "platform/uikit/UIGestureRecognizer.h"

// A switch at the right end, which tells the row's setter of each change. A tap anywhere on the row turns it.
class PSSwitchTableCell final : public PSTableCell {
    NS_CLASS(PSSwitchTableCell)
public:
    ~PSSwitchTableCell() override;

    std::shared_ptr<PSSwitchTableCell>
    initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                            const std::shared_ptr<PSSpecifier>& specifier);
    void setValue(const id& value) override;
    void refreshCellContentsWithSpecifier(const std::shared_ptr<PSSpecifier>& specifier) override;

private:
    PSSwitchTableCell() = default;
    void switchChanged();
    void rowTapped(const std::shared_ptr<UIGestureRecognizer>& recognizer);

    std::shared_ptr<UISwitch> m_switch;
};

// Text in the colour of what can be tapped.
class PSButtonTableCell final : public PSTableCell {
    NS_CLASS(PSButtonTableCell)
public:
    ~PSButtonTableCell() override;

    std::shared_ptr<PSButtonTableCell>
    initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                            const std::shared_ptr<PSSpecifier>& specifier);
    void setValue(const id& value) override;

private:
    PSButtonTableCell() = default;
};

// The chosen title at the right, and a chevron: a tap opens the list of choices.
class PSLinkListTableCell final : public PSTableCell {
    NS_CLASS(PSLinkListTableCell)
public:
    ~PSLinkListTableCell() override;

    std::shared_ptr<PSLinkListTableCell>
    initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                            const std::shared_ptr<PSSpecifier>& specifier);
    void setValue(const id& value) override;

private:
    PSLinkListTableCell() = default;
};

// A title and, where the row has a value, its text. Cannot be tapped.
class PSStaticTextTableCell final : public PSTableCell {
    NS_CLASS(PSStaticTextTableCell)
public:
    ~PSStaticTextTableCell() override;

    std::shared_ptr<PSStaticTextTableCell>
    initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                            const std::shared_ptr<PSSpecifier>& specifier);

private:
    PSStaticTextTableCell() = default;
};
