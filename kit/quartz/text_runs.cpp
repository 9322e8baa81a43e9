#include "kit/quartz/text_runs.h"

#include <utility>

namespace seat {

std::vector<TextRun> textRuns(std::string text, std::shared_ptr<UIFont> font, CGColorRef color) {
    if (!font) font = UIFont::systemFontOfSize(17);
    return {{std::move(text), std::move(font), std::move(color)}};
}

std::vector<TextRun> textRuns(const NSAttributedString& text, const std::shared_ptr<UIFont>& font,
                              const CGColorRef& color) {
    std::vector<TextRun> result;
    for (const auto& run : text.runs()) {
        auto runFont = run.attributes.font ? run.attributes.font : font;
        if (!runFont) runFont = UIFont::systemFontOfSize(17);
        const auto& own = run.attributes.foregroundColor;
        result.push_back({run.text, std::move(runFont), own ? own->CGColor() : color});
    }
    return result;
}

} // namespace seat
