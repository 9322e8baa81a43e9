// The colour map for keyboards and assistive technology.

#include "colourpicker/HSVColor.h"
#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/truncation.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSString.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double largeStep = 0.1; // of the field
}

bool ZKColorMapView::canBecomeFocused() const { return true; }

UIAccessibilityRole ZKColorMapView::accessibilityRole() const { return UIAccessibilityRole::Canvas; }

std::string ZKColorMapView::accessibilityLabel() const { return NSLocalizedString("Hue and saturation"); }

std::string ZKColorMapView::accessibilityValue() const {
    HSVColor hsv;
    HSVColorFromUIColor(m_color, hsv);
    // The brightness is the number that the slider shows, which is cut. A field of one row gives a saturation that is
    // no number: it is read as none.
    const auto whole = [](double value) { return truncatedToInt(std::round(value)); };
    return NSLocalizedStringWithValues("Hue %1 degrees, saturation %2 percent, brightness %3 percent",
                                       {NSStringFromInteger(whole(hsv.h * 360)),
                                        NSStringFromInteger(whole(hsv.s * 100)),
                                        NSStringFromInteger(truncatedToInt(hsv.v * 100))});
}

// A tap on the middle would choose the colour there, which nobody pointed at.
bool ZKColorMapView::accessibilityActivate() { return false; }

// One drag that ends there: it makes the colour known, and its end reports it.
bool ZKColorMapView::accessibilityStep(UIAccessibilityDirection direction, UIAccessibilityStep step) {
    const TileGrid tiles = grid();
    if (CGRectIsEmpty({{0, 0}, tiles.fieldSize()})) return false;
    const auto tilesToGo = [step](double count) {
        return step == UIAccessibilityStep::Small ? 1 : std::max(1.0, std::round(count * largeStep));
    };
    HSVColor hsv;
    HSVColorFromUIColor(m_color, hsv);
    const TileGrid::Tile from = tiles.clamped(tiles.tileForColor(hsv.h, hsv.s));
    TileGrid::Tile to = from;
    switch (direction) {
    case UIAccessibilityDirection::Left:
        to.column -= tilesToGo(tiles.columns());
        break;
    case UIAccessibilityDirection::Right:
        to.column += tilesToGo(tiles.columns());
        break;
    case UIAccessibilityDirection::Up:
        to.row -= tilesToGo(tiles.rows());
        break;
    case UIAccessibilityDirection::Down:
        to.row += tilesToGo(tiles.rows());
        break;
    }
    to = tiles.clamped(to);
    if (to == from) return false;

    const CGRect there = tiles.tileRect(to);
    const CGPoint point{CGRectGetMidX(there), CGRectGetMidY(there)};
    pannedToPoint_ended(point, /*ended*/ false);
    panLifted_ended(/*ended*/ true);
    return true;
}
