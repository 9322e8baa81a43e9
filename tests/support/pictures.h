#pragma once

#include "platform/quartz/CGImage.h"

#include <cstddef>

namespace testing_support {

// How far two pictures may differ and still count as the same.
struct PictureTolerance {
    int channel = 0;  // per colour channel, 0 to 255
    double share = 0; // of the pixels that may differ by more, 0 to 1
};

struct PictureDifference {
    bool isSame = true;
    std::size_t pixels = 0; // that differ by more than the tolerance
    int most = 0;           // the largest difference of a channel
    CGImageRef picture;     // the expected one, pale, with what differs in red; nil when the sizes differ
};
PictureDifference comparePictures(const CGImage& expected, const CGImage& actual, PictureTolerance tolerance = {});

} // namespace testing_support
