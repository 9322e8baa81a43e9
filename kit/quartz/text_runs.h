#pragma once

#include "kit/seat.h"
#include "platform/uikit/NSAttributedString.h"

#include <memory>
#include <string>
#include <vector>

namespace seat {

// One run. No font is the system's at 17 points.
std::vector<TextRun> textRuns(std::string text, std::shared_ptr<UIFont> font, CGColorRef color);
// What the text leaves open comes from the arguments.
std::vector<TextRun> textRuns(const NSAttributedString& text, const std::shared_ptr<UIFont>& font,
                              const CGColorRef& color);

} // namespace seat
