#include "kit/uikit/autoresizing.h"

#include "platform/uikit/UIView.h"

#include <algorithm>

namespace {

struct Span {
    double start = 0;
    double length = 0;
};

Span resize(Span span, double oldTotal, double newTotal, bool flexibleStart, bool flexibleLength, bool flexibleEnd) {
    const double change = newTotal - oldTotal;
    const int flexible = flexibleStart + flexibleLength + flexibleEnd;
    if (change == 0 || flexible == 0) return span;

    const double end = oldTotal - span.start - span.length;
    // Parts with a negative size have no say in proportions.
    const double startPart = flexibleStart ? std::max(span.start, 0.0) : 0;
    const double lengthPart = flexibleLength ? std::max(span.length, 0.0) : 0;
    const double endPart = flexibleEnd ? std::max(end, 0.0) : 0;
    const double total = startPart + lengthPart + endPart;
    const auto share = [&](bool isFlexible, double part) {
        if (!isFlexible) return 0.0;
        return total > 0 ? change * part / total : change / flexible;
    };
    span.start += share(flexibleStart, startPart);
    span.length = std::max(span.length + share(flexibleLength, lengthPart), 0.0);
    return span;
}

} // namespace

CGRect autoresizedFrame(CGRect frame, unsigned mask, CGSize oldSize, CGSize newSize) {
    const Span across = resize({frame.origin.x, frame.size.width}, oldSize.width, newSize.width,
                               mask & UIViewAutoresizingFlexibleLeftMargin, mask & UIViewAutoresizingFlexibleWidth,
                               mask & UIViewAutoresizingFlexibleRightMargin);
    const Span down = resize({frame.origin.y, frame.size.height}, oldSize.height, newSize.height,
                             mask & UIViewAutoresizingFlexibleTopMargin, mask & UIViewAutoresizingFlexibleHeight,
                             mask & UIViewAutoresizingFlexibleBottomMargin);
    return {{across.start, down.start}, {across.length, down.length}};
}
