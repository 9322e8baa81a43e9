#pragma once

class UIView;

namespace seat {

// Whether a finger can reach the view, by scrolling if need be: what lies under another view, or behind a modal one, is
// no key's and no assistive technology's either.
bool isReachable(const UIView& view);

// Whether the view stands in one that takes no fingers for now, as a screen does that slides in, and might be reached
// otherwise.
bool isHeld(const UIView& view);

} // namespace seat
