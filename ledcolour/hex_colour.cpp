#include "ledcolour/hex_colour.h"

#include "colourpicker/colour_bytes.h"
#include "platform/foundation/NSScanner.h"
#include "platform/foundation/NSString.h"
#include "platform/uikit/UIColor.h"

const char JVNDefaultLEDColor[] = "004EFD";

namespace {

// A multiplication, where a division by 255 would be exact: what is stored depends on it.
constexpr double byteUnit = 0.00392156862745098;

} // namespace

JVNColorPixel JVNColorPixelForHexString(const std::string& hex) {
    std::uint32_t value = 0;
    NSScanner::scannerWithString(hex)->scanHexInt(&value);
    const auto byte = [value](int shift) { return static_cast<std::uint8_t>(value >> shift & 0xFF); };
    return {byte(0), byte(8), byte(16)};
}

std::shared_ptr<UIColor> JVNColorForHexString(const std::string& hex) {
    const JVNColorPixel pixel = JVNColorPixelForHexString(hex);
    return UIColor::colorWithRed_green_blue_alpha(pixel.red * byteUnit, pixel.green * byteUnit, pixel.blue * byteUnit,
                                                  1.0);
}

std::string JVNStringColorForUIColor(const std::shared_ptr<UIColor>& color) {
    const ColorBytes bytes = colorBytes(color);
    return NSStringWithFormat("%02x%02x%02x", static_cast<unsigned>(bytes.red), static_cast<unsigned>(bytes.green),
                              static_cast<unsigned>(bytes.blue));
}
