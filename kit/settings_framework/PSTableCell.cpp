#include "platform/settings_framework/PSTableCell.h"

#include "kit/settings_framework/row_value.h"
#include "platform/runtime/method.h"

NS_CLASS_IMPLEMENTATION(
    PSTableCell, UITableViewCell,
    method<&PSTableCell::initWithStyle_reuseIdentifier_specifier>("initWithStyle:reuseIdentifier:specifier:"),
    method<&PSTableCell::setValue>("setValue:"))

PSTableCell::PSTableCell() = default;
PSTableCell::~PSTableCell() = default;

std::shared_ptr<PSTableCell>
PSTableCell::initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                                     const std::shared_ptr<PSSpecifier>& specifier) {
    if (!UITableViewCell::initWithStyle_reuseIdentifier(style, reuseIdentifier)) return nullptr;
    m_specifier = specifier;
    PSTableCell::refreshCellContentsWithSpecifier(specifier);
    return self(this);
}

void PSTableCell::setValue(const id& value) {
    if (detailTextLabel()) detailTextLabel()->setText(seat::textOf(value));
}

void PSTableCell::refreshCellContentsWithSpecifier(const std::shared_ptr<PSSpecifier>& specifier) {
    if (specifier) textLabel()->setText(specifier->name());
}
