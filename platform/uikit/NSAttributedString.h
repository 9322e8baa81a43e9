#pragma once

#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIFont.h"

#include <string>
#include <vector>

struct NSTextAttributes {
    std::shared_ptr<UIFont> font;             // nil: the label's
    std::shared_ptr<UIColor> foregroundColor; // nil: the label's
};

// Text in runs, each with its attributes, in UTF-8. Not safe for concurrent change. A label keeps the object it is
// given: set it again after a change. Mutable: one class serves both roles.
class NSMutableAttributedString final : public NSObject {
    NS_CLASS(NSMutableAttributedString)

    struct Run {
        std::string text;
        NSTextAttributes attributes;
    };

    // One run. Empty text is allowed.
    std::shared_ptr<NSMutableAttributedString> initWithString_attributes(std::string text, NSTextAttributes attributes);
    // The other's runs, with their attributes, behind the ones here.
    void appendAttributedString(const NSMutableAttributedString& other);

    // In their order; the reference holds until something is appended.
    const std::vector<Run>& runs() const { return m_runs; }
    // Without attributes.
    std::string string() const;

private:
    std::vector<Run> m_runs;
};
using NSAttributedString = NSMutableAttributedString;
