#pragma once

#include "platform/quartz/CGColor.h"
#include "platform/uikit/UILabel.h"

#include <memory>
#include <optional>

namespace seat {

// How a label's text is drawn.
struct LabelStyle {
    std::shared_ptr<UIFont> font;
    CGColorRef color;
    NSTextAlignment alignment = NSTextAlignmentLeft;
};

// Of the view where it is a label, else of the first label in it; nothing where there is none. Of a text with several
// styles the label's own. Main thread only.
std::optional<LabelStyle> labelStyle(const UIView& view);

} // namespace seat
