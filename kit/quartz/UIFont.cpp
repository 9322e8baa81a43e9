#include "platform/uikit/UIFont.h"

#include "kit/seat.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <utility>

NS_CLASS_IMPLEMENTATION(UIFont, NSObject)

namespace {

constexpr double usualSize = 17;
constexpr double smallestSize = 1;
constexpr double largestSize = 1024;

double usableSize(double pointSize) {
    return std::isfinite(pointSize) && pointSize > 0 ? std::clamp(pointSize, smallestSize, largestSize) : usualSize;
}

// The fonts that somebody holds. Never destroyed.
struct FontList {
    std::mutex mutex;
    std::map<std::pair<double, bool>, std::weak_ptr<UIFont>> fonts;
};
FontList& fontList() {
    static auto* const list = new FontList;
    return *list;
}

} // namespace

std::shared_ptr<UIFont> UIFont::systemFontOfSize(double pointSize) {
    return systemFont(usableSize(pointSize), /*bold*/ false);
}
std::shared_ptr<UIFont> UIFont::boldSystemFontOfSize(double pointSize) {
    return systemFont(usableSize(pointSize), /*bold*/ true);
}

std::shared_ptr<UIFont> UIFont::systemFont(double pointSize, bool bold) {
    FontList& list = fontList();
    const std::lock_guard lock(list.mutex);
    if (auto font = list.fonts[{pointSize, bold}].lock()) return font;
    std::erase_if(list.fonts, [](const auto& entry) { return entry.second.expired(); });
    const auto font = alloc();
    font->m_pointSize = pointSize;
    font->m_bold = bold;
    list.fonts[{pointSize, bold}] = font;
    return font;
}

double UIFont::ascender() const { return seat::metricsOfSystemFont(m_bold).ascent * m_pointSize; }
double UIFont::descender() const { return -seat::metricsOfSystemFont(m_bold).descent * m_pointSize; }
double UIFont::lineHeight() const { return ascender() - descender(); }
