#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

class UIColor;

// The one textual form of an LED colour: six hexadecimal digits, red first, no "#". Written in lower case. Read as a
// hexadecimal number, of which the low 24 bits count: text that begins with no number is black, a number too large for
// 32 bits white. Any thread.

// A packed colour; the bytes of the number in memory order.
struct JVNColorPixel {
    std::uint8_t blue = 0;
    std::uint8_t green = 0;
    std::uint8_t red = 0;
};
static_assert(sizeof(JVNColorPixel) == 3 && std::is_trivially_copyable_v<JVNColorPixel>);

extern "C" {

// What callers use where no colour is stored: a blue.
[[gnu::visibility("default")]] extern const char JVNDefaultLEDColor[];

[[gnu::visibility("default")]] JVNColorPixel JVNColorPixelForHexString(const std::string& hex);
// Opaque.
[[gnu::visibility("default")]] std::shared_ptr<UIColor> JVNColorForHexString(const std::string& hex);
// Components are cut, not rounded: 24 of the 256 byte values come back one lower after decoding and encoding. They are
// not clamped either; one above 1 or below 0 has more than two digits. "000000" for a colour without components.
[[gnu::visibility("default")]] std::string JVNStringColorForUIColor(const std::shared_ptr<UIColor>& color);

} // extern "C"
