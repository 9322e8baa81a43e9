#include "desktop/painting/snapshot.h"

#include "desktop/painting/png.h"
#include "kit/uikit/WindowScene.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace seat {

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

bool updatesGoldens() {
    const char* const value = std::getenv("JOYVANE_UPDATE_GOLDEN");
    return value && std::string_view(value) == "1";
}

} // namespace

CGImageRef snapshot(WindowScene& scene) {
    scene.prepareFrame();
    const auto image = std::make_shared<CGImage>();
    image->width = static_cast<std::size_t>(std::lround(scene.size().width * scene.scale()));
    image->height = static_cast<std::size_t>(std::lround(scene.size().height * scene.scale()));
    image->pixels.resize(image->width * image->height);
    const CGRect all{{0, 0}, scene.size()};
    scene.paint({image->pixels.data(), static_cast<int>(image->width), static_cast<int>(image->height),
                 static_cast<std::ptrdiff_t>(image->width * sizeof(std::uint32_t))},
                {&all, 1});
    return image;
}

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

std::string compareWithGolden(const CGImageRef& actual, const std::string& folder, const std::string& name,
                              const std::string& failures, PictureTolerance tolerance) {
    namespace fs = std::filesystem;
    if (!actual) return name + ": no picture was made";
    const fs::path golden = fs::path(folder) / (name + ".png");
    if (updatesGoldens()) {
        std::error_code ignored;
        fs::create_directories(golden.parent_path(), ignored);
        return writePng(golden, *actual) ? std::string() : golden.string() + " cannot be written";
    }
    const auto expected = readPng(golden);
    const fs::path base = fs::path(failures) / name;
    std::error_code ignored;
    fs::create_directories(base.parent_path(), ignored);
    const std::string actualFile = base.string() + ".actual.png";
    if (!expected) {
        writePng(actualFile, *actual);
        return golden.string() + " is missing or no picture; what was made is in " + actualFile;
    }
    const auto difference = comparePictures(*expected, *actual, tolerance);
    if (difference.isSame) return {};
    writePng(actualFile, *actual);
    const std::string differenceFile = base.string() + ".difference.png";
    if (!difference.picture)
        return name + ": " + std::to_string(actual->width) + "x" + std::to_string(actual->height) + " instead of " +
               std::to_string(expected->width) + "x" + std::to_string(expected->height) + " pixels; see " + actualFile;
    writePng(differenceFile, *difference.picture);
    return name + ": " + std::to_string(difference.pixels) + " pixels differ, the most by " +
           std::to_string(difference.most) + "; see " + differenceFile;
}

} // namespace seat
