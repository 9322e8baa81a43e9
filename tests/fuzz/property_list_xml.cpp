#include "kit/foundation/utf8.h"
#include "kit/foundation/xml_property_list_scan.h"
#include "tests/fuzz/round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0; // the reader proper is never handed nothing
    std::string refusal;
    const id value = seat::readXMLPropertyList({data, size}, refusal);
    expectRoundTrip(value, refusal);

    // The first look refuses nothing that the tokeniser takes.
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (!seat::isUTF8(text) || seat::faultOfXMLPropertyList(text).empty()) return 0;
    std::string reason;
    if (seat::buildXMLPropertyList(text, reason)) std::abort();
    return 0;
}
