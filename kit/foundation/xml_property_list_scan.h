#pragma once

// Looks an XML property list through for faults before anything is built of it: many times as fast as the tokeniser, so
// that a large file with a fault near its end costs little.

#include <string>
#include <string_view>

namespace seat {

// Why the text is refused; empty when nothing was found, which leaves the last word to the reader proper. Never refuses
// what the reader takes. The text is UTF-8.
std::string faultOfXMLPropertyList(std::string_view text);

} // namespace seat
