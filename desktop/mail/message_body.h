#pragma once

#include "desktop/mail/html_blocks.h"
#include "platform/uikit/UIView.h"

#include <vector>

namespace seat {

// From either edge of a window so wide to the text of a message: lines keep a readable length.
double messageMargin(double width);

// Fills the view with the message's text, blocks under each other in place of what it held, and gives the height that
// they take at that width.
double layOutMessage(UIView& view, const std::vector<HTMLBlock>& blocks, double width);

} // namespace seat
