#pragma once

#include "kit/foundation/property_list.h"

#include <cstdio>
#include <cstdlib>

// Whatever was read can be written and is then read as the same value, unless it has become too large by being spelled
// out; whatever was refused has a reason.
inline void expectRoundTrip(const id& value, const std::string& refusal) {
    const auto fail = [](const char* what) {
        std::fprintf(stderr, "%s\n", what);
        std::abort();
    };
    if (bool(value) != refusal.empty()) fail("neither a value nor a reason");
    if (!value) return;

    std::string reason;
    const auto data = seat::writeBinaryPropertyList(value, reason);
    if (!data) {
        if (!reason.starts_with("is larger than")) fail(reason.c_str());
        return;
    }
    const id again = seat::readPropertyList(data->bytes(), nullptr, reason);
    if (!again) fail(reason.c_str());
    if (again != value) fail("another value came back");
}
