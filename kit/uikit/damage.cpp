#include "kit/uikit/damage.h"
#include "kit/quartz/geometry.h"

#include <cmath>

namespace seat {

namespace {

constexpr std::size_t mostRects = 16;

double area(CGRect r) { return r.size.width * r.size.height; }

bool joins(CGRect a, CGRect b) { return area(CGRectUnion(a, b)) <= 1.2 * (area(a) + area(b)); }

} // namespace

void addDamage(std::vector<CGRect>& damage, CGRect rect, CGRect bounds) {
    rect = CGRectIntersection(rect, bounds);
    if (CGRectIsEmpty(rect)) return;
    for (std::size_t i = 0; i < damage.size();) {
        if (!joins(damage[i], rect)) {
            ++i;
            continue;
        }
        rect = CGRectUnion(damage[i], rect);
        damage.erase(damage.begin() + static_cast<std::ptrdiff_t>(i));
        i = 0; // the larger rectangle may reach others
    }
    damage.push_back(rect);
    if (damage.size() <= mostRects) return;
    CGRect all = damage.front();
    for (const CGRect& each : damage) all = CGRectUnion(all, each);
    damage = {all};
}

} // namespace seat
