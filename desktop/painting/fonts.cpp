#include "desktop/painting/fonts.h"

#include "desktop/painting/text_cache.h"
#include "kit/quartz/text_size.h"
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
#include <memory>
#include <mutex>
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

// Of the names that it may be meant by: "Ubuntu Sans Medium" may be a family, or one in a weight. Empty when it is not
// there, or is no face for a page.
QString knownFamily(const QStringList& known, QString name) {
    while (!name.isEmpty()) {
        if (!isVague(name) && known.contains(name, Qt::CaseInsensitive))
            return QFontDatabase::isFixedPitch(name) ? QString() : name;
        name = name.left(std::max<qsizetype>(0, name.lastIndexOf(QLatin1Char(' ')))).trimmed();
    }
    return {};
}

// Empty when there is no font at all. Asks for names only: to have one resolved would load a face, in a size that
// nothing is written in.
QString chooseSystemFamily(const QString& wanted) {
    const QStringList known = QFontDatabase::families();
    if (std::all_of(known.begin(), known.end(), isVague)) return {};
    const QString toolkits = QGuiApplication::font().family();
    for (const QString& name : {wanted, toolkits})
        if (QString family = knownFamily(known, name); !family.isEmpty()) return family;
    // For a vague name rather the face that we know.
    return known.contains(QLatin1String(dependableFamily)) ? QString(QLatin1String(dependableFamily)) : toolkits;
}

// The family that is used, with what is known of it.
struct SystemFamily {
    QString name; // empty: there is none
    std::once_flag measured[2];
    FontMetrics metrics[2]; // regular, bold
};

struct FamilyChoice {
    std::mutex mutex;
    QString wanted;
    std::shared_ptr<SystemFamily> chosen; // nil: not yet
};
FamilyChoice& familyChoice() {
    static auto* const choice = new FamilyChoice; // never destroyed, like the text cache
    return *choice;
}

// nil while there is none.
std::shared_ptr<SystemFamily> systemFamily() {
    if (!qGuiApp) return nullptr;
    FamilyChoice& choice = familyChoice();
    const std::lock_guard lock(choice.mutex);
    if (!choice.chosen) {
        choice.chosen = std::make_shared<SystemFamily>();
        choice.chosen->name = chooseSystemFamily(choice.wanted);
    }
    return choice.chosen->name.isEmpty() ? nullptr : choice.chosen;
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

// By size, weight and scale; of the main thread. Never destroyed, like the text cache.
std::map<std::tuple<double, bool, double>, QFont>& keptFonts() {
    static auto* const kept = new std::map<std::tuple<double, bool, double>, QFont>;
    return *kept;
}

} // namespace

// Nothing is chosen here: at the start nothing is written yet.
void setFontFamily(const std::string& family) {
    FamilyChoice& choice = familyChoice();
    QString former;
    {
        const std::lock_guard lock(choice.mutex);
        const QString wanted = QString::fromStdString(family);
        if (wanted == choice.wanted) return;
        choice.wanted = wanted;
        if (!choice.chosen) return;
        former = choice.chosen->name;
        choice.chosen = nullptr;
    }
    const auto chosen = systemFamily();
    if ((chosen ? chosen->name : QString()) == former) return;
    forgetTextLayouts();
    keptFonts().clear();
    noteTextChange();
}

bool fontsAreThere() { return systemFamily() != nullptr; }

FontMetrics metricsOfSystemFont(bool bold) {
    const auto family = systemFamily();
    if (!family) return {0.93, 0.24};
    const std::size_t weight = bold ? 1 : 0;
    std::call_once(family->measured[weight], [&] { family->metrics[weight] = measureSystemFont(family->name, bold); });
    return family->metrics[weight];
}

// A font that was used before knows its face already; a new one has to look for it.
QFont toolkitFont(const UIFont& font, double scale) {
    const auto family = systemFamily();
    if (!family) return {};
    const auto make = [&] { return sizedFont(family->name, font.isBold(), font.pointSize() * scale, scale); };
    if (!dispatch_is_main_thread()) return make();
    auto& kept = keptFonts();
    const std::tuple key(font.pointSize(), font.isBold(), scale);
    const auto found = kept.find(key);
    if (found != kept.end()) return found->second;
    if (kept.size() >= mostKeptFonts) kept.clear();
    return kept.emplace(key, make()).first->second;
}

} // namespace seat
