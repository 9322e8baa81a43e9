#pragma once

#include "platform/settings_framework/PSTableCell.h"

#include <memory>
#include <string>
#include <utility>

// A settings row that shows a colour as a round swatch at its right end, in place of a value text. Named in a row's
// "cellClass".
class JVNColorChooserCell final : public PSTableCell {
    NS_CLASS(JVNColorChooserCell)

    // "initWithStyle:reuseIdentifier:specifier:" to the runtime. Shows the colour in the specifier's "value".
    std::shared_ptr<JVNColorChooserCell>
    initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                            const std::shared_ptr<PSSpecifier>& specifier);

    // A hex colour string; nil is the default colour.
    void setValue(const id& value) override;
    // What the swatch shows, for those who do not see it.
    std::string accessibilityValue() const override;

    const std::shared_ptr<UIView>& colorMark() const { return m_colorMark; }
    void setColorMark(std::shared_ptr<UIView> mark) { m_colorMark = std::move(mark); }

private:
    std::shared_ptr<UIView> m_colorMark;
};
