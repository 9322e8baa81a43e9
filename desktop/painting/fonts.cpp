#include "desktop/painting/fonts.h"

#include "platform/dispatch.h"
#include "platform/uikit/UIScreen.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QRawFont>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <tuple>

namespace seat {

namespace {

// Has every letter and nearly every key symbol; its fixed-pitch face has the rest.
const char* const dependableFamily = "DejaVu Sans";
constexpr std::size_t mostKeptFonts = 64;

// One family: with several named the toolkit would look for all that may stand in for them as soon as it loads a face.
// So it does that when a text has a symbol which the family lacks.
QFont sizedFont(const QString& family, bool bold, double pixelSize, double scale) {
    QFont font(family);
    font.setWeight(bold ? QFont::Bold : QFont::Normal);
    font.setKerning(true);
    font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    // The toolkit knows whole pixels only, and would round a finer size by itself.
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(pixelSize))));
    // Fine pixels need no help; on coarse ones the letters' heights go to whole pixels, their widths stay true.
    font.setHintingPreference(scale < 1.75 ? QFont::PreferVerticalHinting : QFont::PreferNoHinting);
    return font;
}

// Names that the toolkit has on every system, also on one without fonts, and that may stand for any face, a
// mathematical one with serifs too.
bool isVague(const QString& family) {
    for (const char* const name : {"Sans Serif", "Serif", "Monospace"})
        if (family.compare(QLatin1String(name), Qt::CaseInsensitive) == 0) return true;
    return false;
}

// Empty when there is no font at all. Asks for names only: to have one resolved would load a face, in a size that
// nothing is written in.
QString chooseSystemFamily() {
    const QStringList known = QFontDatabase::families();
    if (std::all_of(known.begin(), known.end(), isVague)) return {};
    QString desktop = QGuiApplication::font().family();
    const bool isThere = !isVague(desktop) && known.contains(desktop, Qt::CaseInsensitive);
    if (isThere && !QFontDatabase::isFixedPitch(desktop)) return desktop;
    // For a vague name rather the face that we know.
    return known.contains(QLatin1String(dependableFamily)) ? QString(QLatin1String(dependableFamily)) : desktop;
}

// nullptr while there is none. Chosen once; never destroyed.
const QString* systemFamily() {
    if (!qGuiApp) return nullptr;
    static const auto* const chosen = new QString(chooseSystemFamily());
    return chosen->isEmpty() ? nullptr : chosen;
}

int bigEndian16(const QByteArray& bytes, int at) {
    return static_cast<std::int16_t>(static_cast<std::uint8_t>(bytes[at]) << 8 |
                                     static_cast<std::uint8_t>(bytes[at + 1]));
}

// From the face's own table, of the size that most is written in: the toolkit's own metrics are of whole sizes, and a
// large one, which would be fine enough, is one more to load.
FontMetrics measureSystemFont(const QString& family, bool bold) {
    constexpr double usualSize = 17;
    const double scale = UIScreen::mainScreen()->scale();
    const QFont font = sizedFont(family, bold, usualSize * scale, scale);
    const QRawFont face = QRawFont::fromFont(font, QFontDatabase::Latin);
    const QByteArray heights = face.fontTable("hhea");
    const double unit = face.unitsPerEm();
    if (heights.size() >= 8 && unit > 0 && bigEndian16(heights, 4) > 0)
        return {bigEndian16(heights, 4) / unit, -bigEndian16(heights, 6) / unit};
    const QFontMetricsF metrics(font);
    return {metrics.ascent() / font.pixelSize(), metrics.descent() / font.pixelSize()};
}

} // namespace

bool fontsAreThere() { return systemFamily() != nullptr; }

FontMetrics metricsOfSystemFont(bool bold) {
    const QString* const family = systemFamily();
    if (!family) return {0.93, 0.24};
    static const FontMetrics regular = measureSystemFont(*family, /*bold*/ false);
    if (!bold) return regular;
    static const FontMetrics heavy = measureSystemFont(*family, /*bold*/ true);
    return heavy;
}

// A font that was used before knows its face already; a new one has to look for it.
QFont toolkitFont(const UIFont& font, double scale) {
    const QString* const family = systemFamily();
    if (!family) return {};
    const auto make = [&] { return sizedFont(*family, font.isBold(), font.pointSize() * scale, scale); };
    if (!dispatch_is_main_thread()) return make();
    static auto& kept = *new std::map<std::tuple<double, bool, double>, QFont>; // never destroyed, like the text cache
    const std::tuple key(font.pointSize(), font.isBold(), scale);
    const auto found = kept.find(key);
    if (found != kept.end()) return found->second;
    if (kept.size() >= mostKeptFonts) kept.clear();
    return kept.emplace(key, make()).first->second;
}

} // namespace seat
