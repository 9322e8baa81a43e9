#include "desktop/painting/TextLayout.h"

#include "desktop/painting/fonts.h"
#include "desktop/painting/text_cache.h"
#include "kit/quartz/snapping.h"

#include <QTextLayout>

#include <cmath>
#include <limits>

namespace seat {

namespace {

constexpr double widthAllowance = 0.02; // pixels by which a sum of advances may miss a width measured before

// The runs as one text for the toolkit, and what of it belongs to which run.
class Paragraphs {
public:
    Paragraphs(std::span<const TextRun> runs, double scale) {
        for (const TextRun& run : runs) {
            const QString text = QString::fromStdString(run.text).replace(u'\n', QChar::LineSeparator);
            Part part;
            part.start = static_cast<int>(m_text.size());
            part.font = toolkitFont(*run.font, scale);
            part.ascent = std::ceil(run.font->ascender() * scale - snappingAllowance);
            part.descent = std::ceil(-run.font->descender() * scale - snappingAllowance);
            m_text += text;
            part.end = static_cast<int>(m_text.size());
            m_parts.push_back(std::move(part));
        }
    }

    // From `from`, `length` characters, then `tail` in the look of the last of them.
    struct Excerpt {
        int from = 0;
        int length = 0;
        QString tail;
    };

    int length() const { return static_cast<int>(m_text.size()); }
    const QString& text() const { return m_text; }

    std::unique_ptr<QTextLayout> shape(const Excerpt& excerpt) const {
        auto layout = std::make_unique<QTextLayout>(m_text.mid(excerpt.from, excerpt.length) + excerpt.tail,
                                                    m_parts.front().font);
        QList<QTextLayout::FormatRange> formats;
        forEachPart(excerpt, [&](std::size_t i, int start, int end) {
            QTextLayout::FormatRange range;
            range.start = start;
            range.length = end - start;
            range.format.setFont(m_parts[i].font);
            formats << range;
        });
        if (m_parts.size() > 1) layout->setFormats(formats);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        option.setUseDesignMetrics(true);
        layout->setTextOption(option);
        return layout;
    }

    // Puts the line under what is there already.
    void addLine(TextLayout& result, const QTextLine& line, const Excerpt& excerpt) const {
        TextLayout::Line added;
        added.width = line.naturalTextWidth();
        double ascent = 0;
        double descent = 0;
        const int lineStart = line.textStart();
        const int lineEnd = lineStart + line.textLength();
        forEachPart(excerpt, [&](std::size_t i, int start, int end) {
            start = std::max(start, lineStart);
            end = std::min(end, lineEnd);
            // An empty line has the height of the part it stands in.
            if (start > end || (start == end && lineStart != lineEnd)) return;
            ascent = std::max(ascent, m_parts[i].ascent);
            descent = std::max(descent, m_parts[i].descent);
            if (start == end) return;
            for (QGlyphRun& glyphs : line.glyphRuns(start, end - start)) {
                auto positions = glyphs.positions();
                for (QPointF& position : positions) position.ry() -= line.y() + line.ascent();
                glyphs.setPositions(positions);
                added.pieces.push_back({glyphs, i});
            }
        });
        added.baseline = result.height + ascent;
        result.height += ascent + descent;
        result.width = std::max(result.width, added.width);
        result.lines.push_back(std::move(added));
    }

private:
    struct Part {
        int start = 0;
        int end = 0;
        QFont font;
        double ascent = 0;
        double descent = 0;
    };

    // Calls with the part's index and where it stands in the excerpt.
    template <class F> void forEachPart(const Excerpt& excerpt, F call) const {
        const int excerptEnd = excerpt.from + excerpt.length;
        const int tail = static_cast<int>(excerpt.tail.size());
        for (std::size_t i = 0; i < m_parts.size(); ++i) {
            const int start = std::max(m_parts[i].start, excerpt.from);
            int end = std::min(m_parts[i].end, excerptEnd);
            if (start > end) continue;
            const bool isLast = m_parts[i].end >= excerptEnd && (start < end || excerpt.length == 0);
            if (isLast) end += tail;
            call(i, start - excerpt.from, end - excerpt.from);
            if (isLast) return;
        }
    }

    QString m_text;
    std::vector<Part> m_parts;
};

// The rest of the text from `from` as one line that ends in an ellipsis.
void addCutLine(TextLayout& result, const Paragraphs& text, int from, double maxWidth) {
    static const QString ellipsis = QStringLiteral("…");
    const auto separator = text.text().indexOf(QChar::LineSeparator, from);
    Paragraphs::Excerpt excerpt{from, static_cast<int>(separator < 0 ? text.length() : separator) - from, ellipsis};
    // The longest beginning that leaves room; kerning against the ellipsis counts, so each try is shaped anew.
    int fits = 0;
    int tooLong = excerpt.length + 1;
    while (tooLong - fits > 1) {
        const int middle = fits + (tooLong - fits) / 2;
        const auto layout = text.shape({from, middle, ellipsis});
        layout->beginLayout();
        QTextLine line = layout->createLine();
        layout->endLayout();
        (line.naturalTextWidth() <= maxWidth ? fits : tooLong) = middle;
    }
    while (fits > 0 && (text.text()[from + fits - 1].isSpace() || text.text()[from + fits - 1].isHighSurrogate()))
        --fits;
    excerpt.length = fits;
    const auto layout = text.shape(excerpt);
    layout->beginLayout();
    const QTextLine line = layout->createLine();
    layout->endLayout();
    text.addLine(result, line, excerpt);
}

TextLayout layOut(std::span<const TextRun> runs, double maxWidth, int lines, double scale) {
    TextLayout result;
    const Paragraphs text(runs, scale);
    const Paragraphs::Excerpt whole{0, text.length(), {}};
    if (text.length() == 0) return result;
    const auto layout = text.shape(whole);
    const bool wraps = std::isfinite(maxWidth);
    const int most = lines > 0 ? lines : std::numeric_limits<int>::max();
    layout->beginLayout();
    std::vector<QTextLine> made;
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        if (wraps) line.setLineWidth(std::max(maxWidth, 1.0));
        made.push_back(line);
        if (static_cast<int>(made.size()) > most) break;
    }
    layout->endLayout();
    const bool isCut = static_cast<int>(made.size()) > most;
    const std::size_t whole_lines = isCut ? static_cast<std::size_t>(most) - 1 : made.size();
    for (std::size_t i = 0; i < whole_lines; ++i) text.addLine(result, made[i], whole);
    if (isCut)
        addCutLine(result, text, made[whole_lines].textStart(),
                   wraps ? maxWidth : std::numeric_limits<double>::infinity());
    return result;
}

// Without fonts: as high as it would be, without width.
TextLayout emptyLayout(std::span<const TextRun> runs, double scale) {
    TextLayout result;
    for (const TextRun& run : runs) result.height = std::max(result.height, std::ceil(run.font->lineHeight() * scale));
    return result;
}

} // namespace

std::shared_ptr<const TextLayout> textLayout(std::span<const TextRun> runs, double maxWidth, int lines, double scale) {
    if (!fontsAreThere()) return std::make_shared<TextLayout>(emptyLayout(runs, scale));
    const auto make = [&](double width) {
        return cachedTextLayout(runs, width, lines, scale, [&] { return layOut(runs, width, lines, scale); });
    };
    // Most text fits: then its layout is the same at every width.
    auto natural = make(std::numeric_limits<double>::infinity());
    if (natural->width <= maxWidth + widthAllowance || std::isnan(maxWidth)) return natural;
    return make(maxWidth + widthAllowance);
}

} // namespace seat
