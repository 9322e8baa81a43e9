#pragma once

#include "kit/quartz/pixels.h"
#include "platform/quartz/CGImage.h"

#include <string>

namespace seat {

// False, and one line is logged, when the file cannot be written.
bool writePng(const std::string& path, const PixelTarget& pixels);
bool writePng(const std::string& path, const CGImage& image);

// nil when the file is no picture.
CGImageRef readPng(const std::string& path);

} // namespace seat
