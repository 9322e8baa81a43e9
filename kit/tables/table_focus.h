#pragma once

#include "platform/uikit/UIView.h"

#include <memory>

namespace seat {

// The view itself, or the first one in it that can be focused; nil when none can.
std::shared_ptr<UIView> firstFocusable(const std::shared_ptr<UIView>& view);

} // namespace seat
