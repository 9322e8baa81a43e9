#pragma once

#include "platform/settings_framework/PSTableCell.h"

// A row's cell made by the name of its class, with a round view at its right end.
class SampleSwatchCell final : public PSTableCell {
    NS_CLASS(SampleSwatchCell)
public:
    std::shared_ptr<SampleSwatchCell>
    initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                            const std::shared_ptr<PSSpecifier>& specifier);
    void setValue(const id&) override {}
};
