#include "host/foundation/utf8.h"
#include "host/foundation/xml_property_list_scan.h"
#include "tests/fuzz/round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0; // the reader proper is never handed nothing
    std::string refusal;
    const id value = host::readXMLPropertyList({data, size}, refusal);
    expectRoundTrip(value, refusal);

    // The first look refuses nothing that the tokeniser takes.
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (!host::isUTF8(text) || host::faultOfXMLPropertyList(text).empty()) return 0;
    std::string reason;
    if (host::buildXMLPropertyList(text, reason)) std::abort();
    return 0;
}
