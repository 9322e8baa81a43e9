#pragma once

#include "platform/quartz/CGImage.h"

#include <string>

namespace seat {

class WindowScene;

// What the scene shows now, in its pixels; layout is brought up to date first.
CGImageRef snapshot(WindowScene& scene);

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

// Holds the picture against `folder`/`name`.png. Gives the empty string when they agree, else what is wrong, after
// writing <name>.actual.png and <name>.difference.png into `failures`. With JOYVANE_UPDATE_GOLDEN=1 in the environment
// the picture in the folder is made anew instead.
std::string compareWithGolden(const CGImageRef& actual, const std::string& folder, const std::string& name,
                              const std::string& failures, PictureTolerance tolerance = {});

} // namespace seat
