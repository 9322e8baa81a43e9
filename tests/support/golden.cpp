#include "tests/support/golden.h"

#include "desktop/painting/png.h"

#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace testing_support {

namespace {

bool updatesGoldens() {
    const char* const value = std::getenv("JOYVANE_UPDATE_GOLDEN");
    return value && std::string_view(value) == "1";
}

} // namespace

std::string compareWithGolden(const CGImageRef& actual, const std::string& folder, const std::string& name,
                              const std::string& failures, PictureTolerance tolerance) {
    namespace fs = std::filesystem;
    if (!actual) return name + ": no picture was made";
    const fs::path golden = fs::path(folder) / (name + ".png");
    if (updatesGoldens()) {
        std::error_code ignored;
        fs::create_directories(golden.parent_path(), ignored);
        return seat::writePng(golden, *actual) ? std::string() : golden.string() + " cannot be written";
    }
    const auto expected = seat::readPng(golden);
    const fs::path base = fs::path(failures) / name;
    std::error_code ignored;
    fs::create_directories(base.parent_path(), ignored);
    const std::string actualFile = base.string() + ".actual.png";
    if (!expected) {
        seat::writePng(actualFile, *actual);
        return golden.string() + " is missing or no picture; what was made is in " + actualFile;
    }
    const auto difference = comparePictures(*expected, *actual, tolerance);
    if (difference.isSame) return {};
    seat::writePng(actualFile, *actual);
    const std::string differenceFile = base.string() + ".difference.png";
    if (!difference.picture)
        return name + ": " + std::to_string(actual->width) + "x" + std::to_string(actual->height) + " instead of " +
               std::to_string(expected->width) + "x" + std::to_string(expected->height) + " pixels; see " + actualFile;
    seat::writePng(differenceFile, *difference.picture);
    return name + ": " + std::to_string(difference.pixels) + " pixels differ, the most by " +
           std::to_string(difference.most) + "; see " + differenceFile;
}

} // namespace testing_support
