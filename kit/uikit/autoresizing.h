#pragma once

#include "platform/quartz/CGGeometry.h"

// Where a subview's frame goes when its superview's size changes: what the mask (UIViewAutoresizing) calls flexible
// shares the change in proportion to its size, or evenly when it has none; the rest stays. No size falls below zero.
CGRect autoresizedFrame(CGRect frame, unsigned mask, CGSize oldSize, CGSize newSize);
