#include "host/quartz/fonts.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>

#include <algorithm>
#include <cmath>
#include <memory>

namespace host {

namespace {

struct SystemFont {
    QStringList families;
};

// Has every letter and nearly every key symbol; its fixed-pitch face has the rest.
const char* const dependableFamily = "DejaVu Sans";
const char* const symbolFamily = "DejaVu Sans Mono";

QFont makeFont(const SystemFont& system, bool bold) {
    QFont font;
    font.setFamilies(system.families);
    font.setWeight(bold ? QFont::Bold : QFont::Normal);
    font.setKerning(true);
    font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return font;
}

// nullptr when there is no font at all.
std::unique_ptr<SystemFont> chooseSystemFont() {
    const QFont desktop = QGuiApplication::font();
    const QFontInfo face(desktop);
    if (face.family().isEmpty()) return nullptr;
    auto system = std::make_unique<SystemFont>();
    const auto add = [&families = system->families](const QString& family) {
        if (!families.contains(family)) families << family;
    };
    // A vague name ("Sans Serif") may stand for any face, a mathematical one with serifs too: then rather the one we
    // know, when it is there.
    const bool isNamed = face.family() == desktop.family() && !face.fixedPitch();
    if (isNamed) add(face.family());
    add(dependableFamily);
    add(symbolFamily);
    add(face.family());
    return system;
}

// nullptr while there is none. Chosen once; never destroyed.
const SystemFont* systemFont() {
    if (!qGuiApp) return nullptr;
    static const SystemFont* const chosen = chooseSystemFont().release();
    return chosen;
}

FontMetrics measureSystemFont(const SystemFont& system, bool bold) {
    constexpr int size = 200; // large enough for the rounding not to count
    QFont font = makeFont(system, bold);
    font.setPixelSize(size);
    font.setHintingPreference(QFont::PreferNoHinting);
    const QFontMetricsF metrics(font);
    return {metrics.ascent() / size, metrics.descent() / size};
}

} // namespace

bool fontsAreThere() { return systemFont() != nullptr; }

FontMetrics metricsOfSystemFont(bool bold) {
    const SystemFont* const system = systemFont();
    if (!system) return {0.93, 0.24};
    static const FontMetrics regular = measureSystemFont(*system, /*bold*/ false);
    if (!bold) return regular;
    static const FontMetrics heavy = measureSystemFont(*system, /*bold*/ true);
    return heavy;
}

QFont toolkitFont(const UIFont& font, double scale) {
    const SystemFont* const system = systemFont();
    if (!system) return {};
    QFont result = makeFont(*system, font.isBold());
    // The toolkit knows whole pixels only, and would round a finer size by itself.
    result.setPixelSize(std::max(1, static_cast<int>(std::lround(font.pointSize() * scale))));
    // Fine pixels need no help; on coarse ones the letters' heights go to whole pixels, their widths stay true.
    result.setHintingPreference(scale < 1.75 ? QFont::PreferVerticalHinting : QFont::PreferNoHinting);
    return result;
}

} // namespace host
