#include "tests/fuzz/round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0; // the reader proper is never handed nothing
    std::string refusal;
    const id value = seat::readXMLPropertyList({data, size}, refusal);
    expectRoundTrip(value, refusal);
    return 0;
}
