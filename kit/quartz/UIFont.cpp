#include "platform/uikit/UIFont.h"

#include "kit/quartz/text_size.h"
#include "kit/seat.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <map>
#include <mutex>
#include <tuple>

NS_CLASS_IMPLEMENTATION(UIFont, NSObject)

namespace {

constexpr double usualSize = 17;
constexpr double smallestSize = 1;
constexpr double largestSize = 1024;

double usableSize(double pointSize) {
    return std::isfinite(pointSize) && pointSize > 0 ? std::clamp(pointSize, smallestSize, largestSize) : usualSize;
}

// By size, weight and growth: the fonts that somebody holds. Never destroyed.
struct FontList {
    std::mutex mutex;
    std::map<std::tuple<double, bool, int>, std::weak_ptr<UIFont>> fonts;
};
FontList& fontList() {
    static auto* const list = new FontList;
    return *list;
}

std::atomic<double> currentTextScale = 1;
std::atomic<unsigned> currentTextGeneration = 0;

} // namespace

void seat::setTextScale(double scale) {
    const double usable = std::isfinite(scale) ? std::clamp(scale, leastTextScale, mostTextScale) : 1;
    if (currentTextScale.exchange(usable) != usable) noteTextChange();
}

double seat::textScale() { return currentTextScale; }

double seat::controlTextScale() {
    const double scale = textScale();
    return scale <= 1 ? scale : 1 + (scale - 1) / 2;
}

void seat::noteTextChange() { ++currentTextGeneration; }
unsigned seat::textGeneration() { return currentTextGeneration; }

std::shared_ptr<UIFont> UIFont::systemFontOfSize(double pointSize) {
    return systemFont(usableSize(pointSize), /*bold*/ false, Growth::Fixed);
}
std::shared_ptr<UIFont> UIFont::boldSystemFontOfSize(double pointSize) {
    return systemFont(usableSize(pointSize), /*bold*/ true, Growth::Fixed);
}

std::shared_ptr<UIFont> FontInternals::textFont(double pointSize, bool bold) {
    return systemFont(usableSize(pointSize), bold, Growth::Text);
}
std::shared_ptr<UIFont> FontInternals::controlFont(double pointSize, bool bold) {
    return systemFont(usableSize(pointSize), bold, Growth::Control);
}

std::shared_ptr<UIFont> UIFont::systemFont(double pointSize, bool bold, Growth growth) {
    FontList& list = fontList();
    const std::lock_guard lock(list.mutex);
    const std::tuple key(pointSize, bold, static_cast<int>(growth));
    if (auto font = list.fonts[key].lock()) return font;
    std::erase_if(list.fonts, [](const auto& entry) { return entry.second.expired(); });
    const auto font = alloc();
    font->m_pointSize = pointSize;
    font->m_bold = bold;
    font->m_growth = growth;
    list.fonts[key] = font;
    return font;
}

double UIFont::pointSize() const {
    switch (m_growth) {
    case Growth::Text:
        return m_pointSize * seat::textScale();
    case Growth::Control:
        return m_pointSize * seat::controlTextScale();
    case Growth::Fixed:
        break;
    }
    return m_pointSize;
}

double UIFont::ascender() const { return seat::metricsOfSystemFont(m_bold).ascent * pointSize(); }
double UIFont::descender() const { return -seat::metricsOfSystemFont(m_bold).descent * pointSize(); }
double UIFont::lineHeight() const { return ascender() - descender(); }
