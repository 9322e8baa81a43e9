#pragma once

#include <memory>

// A colour as drawing uses it: components from 0 to 1, not premultiplied; what is outside is cut to that when it is
// drawn, and a colour with a component that is no number paints nothing. Immutable and shared between threads; nil
// paints nothing.
// Compared by value; layers ask for no repaint when a colour that looks the same is set.
struct CGColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
    friend bool operator==(const CGColor&, const CGColor&) = default;
};
using CGColorRef = std::shared_ptr<const CGColor>;
