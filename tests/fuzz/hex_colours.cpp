// A colour that is stored as any text can be read, written and read again.

#include "ledcolour/hex_colour.h"
#include "platform/uikit/UIColor.h"
#include "tests/fuzz/support.h"

#include <cstdlib>

namespace {

int difference(const JVNColorPixel& a, const JVNColorPixel& b) {
    return std::abs(a.red - b.red) + std::abs(a.green - b.green) + std::abs(a.blue - b.blue);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::text(data, size);
    const JVNColorPixel pixel = JVNColorPixelForHexString(text);
    const auto colour = JVNColorForHexString(text);
    fuzz::expect(colour != nullptr, "every text is a colour");
    const std::string written = JVNStringColorForUIColor(colour);
    fuzz::expect(written.size() == 6 && written.find_first_not_of("0123456789abcdef") == std::string::npos,
                 "a colour is written as six digits");
    // Components are cut, not rounded.
    fuzz::expect(difference(pixel, JVNColorPixelForHexString(written)) <= 3, "the same colour comes back");
    return 0;
}
