#include "host/quartz/fonts.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QRawFont>

#include <cmath>

namespace host {

namespace {

struct SystemFont {
    QStringList families;
    FontMetrics metrics[2]; // regular, bold
    double dotsPerInch = 96;
};

// Has every letter and nearly every key symbol; its fixed-pitch face has the rest.
const QString dependableFamily = QStringLiteral("DejaVu Sans");
const QString symbolFamily = QStringLiteral("DejaVu Sans Mono");

// The desktop's own font may be named vaguely ("Sans"); what counts is the face it stands for.
QString desktopFamily() {
    const QFontInfo face(QGuiApplication::font());
    return face.fixedPitch() ? QString() : face.family();
}

QFont makeFont(const SystemFont& system, bool bold) {
    QFont font;
    font.setFamilies(system.families);
    font.setWeight(bold ? QFont::Bold : QFont::Normal);
    font.setKerning(true);
    font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return font;
}

std::unique_ptr<SystemFont> chooseSystemFont() {
    if (!qGuiApp || QFontDatabase::families().isEmpty()) return nullptr;
    auto system = std::make_unique<SystemFont>();
    if (const QString family = desktopFamily(); !family.isEmpty()) system->families << family;
    for (const QString& family : {dependableFamily, symbolFamily})
        if (!system->families.contains(family)) system->families << family;
    system->dotsPerInch = QImage(1, 1, QImage::Format_ARGB32_Premultiplied).logicalDpiY();
    constexpr int size = 200; // large enough for the rounding not to count
    for (const bool bold : {false, true}) {
        QFont font = makeFont(*system, bold);
        font.setPixelSize(size);
        font.setHintingPreference(QFont::PreferNoHinting);
        const QFontMetricsF metrics(font);
        system->metrics[bold] = {metrics.ascent() / size, metrics.descent() / size};
    }
    return system;
}

// nullptr while there is none; never destroyed.
const SystemFont* systemFont() {
    if (!qGuiApp) return nullptr;
    static const SystemFont* const chosen = chooseSystemFont().release();
    return chosen;
}

} // namespace

bool fontsAreThere() { return systemFont() != nullptr; }

FontMetrics metricsOfSystemFont(bool bold) {
    const SystemFont* const system = systemFont();
    return system ? system->metrics[bold] : FontMetrics{0.93, 0.24};
}

QFont toolkitFont(const UIFont& font, double scale) {
    const SystemFont* const system = systemFont();
    if (!system) return {};
    QFont result = makeFont(*system, font.isBold());
    const double pixels = font.pointSize() * scale;
    if (pixels == std::round(pixels))
        result.setPixelSize(static_cast<int>(pixels));
    else
        result.setPointSizeF(pixels * 72 / system->dotsPerInch);
    // Fine pixels need no help; on coarse ones the letters' heights go to whole pixels, their widths stay true.
    result.setHintingPreference(scale < 1.75 ? QFont::PreferVerticalHinting : QFont::PreferNoHinting);
    return result;
}

} // namespace host
