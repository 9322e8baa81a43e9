#pragma once

#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITextField.h"

namespace seat {

// A line at the head of a new message: what it is, and a field to type it into.
class ComposeHeader final : public UIView {
    NS_CLASS(ComposeHeader)
public:
    ~ComposeHeader() override;

    static constexpr double height = 44;

    // `name` without the colon that is shown behind it.
    std::shared_ptr<ComposeHeader> initWithName(const std::string& name);
    const std::shared_ptr<UITextField>& field() const { return m_field; }

    void layoutSubviews() override;

private:
    ComposeHeader() = default;

    std::shared_ptr<UILabel> m_name;
    std::shared_ptr<UITextField> m_field;
    std::shared_ptr<UIView> m_line;
};

} // namespace seat
