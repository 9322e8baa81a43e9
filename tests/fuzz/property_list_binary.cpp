#include "tests/fuzz/round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string refusal;
    const id value = seat::readBinaryPropertyList({data, size}, refusal);
    expectRoundTrip(value, refusal);
    return 0;
}
