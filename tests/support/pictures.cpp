#include "tests/support/pictures.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace testing_support {

namespace {

int channel(std::uint32_t pixel, int index) { return static_cast<int>(pixel >> (8 * index) & 0xff); }

int largestDifference(std::uint32_t a, std::uint32_t b) {
    int most = 0;
    for (int i = 0; i < 4; ++i) most = std::max(most, std::abs(channel(a, i) - channel(b, i)));
    return most;
}

std::uint32_t pale(std::uint32_t pixel) {
    const int grey = (channel(pixel, 0) + channel(pixel, 1) + channel(pixel, 2)) / 3;
    const auto level = static_cast<std::uint32_t>(200 + grey / 5);
    return 0xff000000u | level << 16 | level << 8 | level;
}

} // namespace

PictureDifference comparePictures(const CGImage& expected, const CGImage& actual, PictureTolerance tolerance) {
    PictureDifference difference;
    if (expected.width != actual.width || expected.height != actual.height) {
        difference.isSame = false;
        difference.pixels = std::max(expected.pixels.size(), actual.pixels.size());
        difference.most = 255;
        return difference;
    }
    const auto picture = std::make_shared<CGImage>(expected);
    for (std::size_t i = 0; i < expected.pixels.size(); ++i) {
        const int most = largestDifference(expected.pixels[i], actual.pixels[i]);
        difference.most = std::max(difference.most, most);
        const bool differs = most > tolerance.channel;
        if (differs) ++difference.pixels;
        picture->pixels[i] = differs ? 0xffff0000u : pale(expected.pixels[i]);
    }
    difference.picture = picture;
    difference.isSame =
        static_cast<double>(difference.pixels) <= tolerance.share * static_cast<double>(expected.pixels.size());
    return difference;
}

} // namespace testing_support
