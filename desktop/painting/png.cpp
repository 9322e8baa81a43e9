#include "desktop/painting/png.h"

#include "platform/log.h"

#include <QImage>
#include <QString>

#include <cstring>

namespace seat {

bool writePng(const std::string& path, const PixelTarget& pixels) {
    const QImage image(reinterpret_cast<const uchar*>(pixels.pixels), pixels.width, pixels.height, pixels.bytesPerLine,
                       QImage::Format_ARGB32_Premultiplied);
    if (image.save(QString::fromStdString(path), "PNG")) return true;
    NSLog("writing picture %s failed", path.c_str());
    return false;
}

bool writePng(const std::string& path, const CGImage& image) {
    // Only read.
    auto* const pixels = const_cast<std::uint32_t*>(image.pixels.data());
    return writePng(path, {pixels, static_cast<int>(image.width), static_cast<int>(image.height),
                           static_cast<std::ptrdiff_t>(image.width * sizeof *pixels)});
}

CGImageRef readPng(const std::string& path) {
    const QImage image = QImage(QString::fromStdString(path)).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return nullptr;
    auto result = std::make_shared<CGImage>();
    result->width = static_cast<std::size_t>(image.width());
    result->height = static_cast<std::size_t>(image.height());
    result->pixels.resize(result->width * result->height);
    for (std::size_t y = 0; y < result->height; ++y)
        std::memcpy(result->pixels.data() + y * result->width, image.constScanLine(static_cast<int>(y)),
                    result->width * sizeof(std::uint32_t));
    return result;
}

} // namespace seat
