#include "kit/quartz/Coverage.h"

#include <cmath>

namespace seat {

namespace {

std::uint32_t rounded(double coverage) {
    return static_cast<std::uint32_t>(std::lround(std::min(std::abs(coverage), 1.0) * CoveredRun::whole));
}

} // namespace

Coverage::Coverage(const PixelRect& pixels) : m_pixels(pixels) {
    if (pixels.isEmpty()) m_pixels = {};
    const auto height = static_cast<std::size_t>(m_pixels.height());
    m_cells.resize(height * (static_cast<std::size_t>(m_pixels.width()) + 2));
    m_rows.resize(height, Row{m_pixels.width() + 2, 0});
}

void Coverage::add(const Outline& outline) {
    if (outline.size() < 3) return;
    CGPoint from = outline.back();
    for (const CGPoint& to : outline) {
        addEdge(from, to);
        from = to;
    }
}

// Cut to the rows that count, in coordinates of the pixels asked for. Most edges are elsewhere.
void Coverage::addEdge(CGPoint from, CGPoint to) {
    from = {from.x - m_pixels.left, from.y - m_pixels.top};
    to = {to.x - m_pixels.left, to.y - m_pixels.top};
    const double bottom = m_pixels.height();
    const double right = m_pixels.width();
    if ((from.y <= 0 && to.y <= 0) || (from.y >= bottom && to.y >= bottom) || (from.x >= right && to.x >= right))
        return;
    if (from.y == to.y) return;
    const double slope = (to.x - from.x) / (to.y - from.y);
    if (!std::isfinite(slope)) return; // as good as level
    const auto cut = [&, start = from](CGPoint& end) {
        const double y = std::clamp(end.y, 0.0, bottom);
        if (y != end.y) end = {start.x + (y - start.y) * slope, y};
    };
    cut(from);
    cut(to);
    addInColumns(from, to, slope);
}

// An edge to the left of the pixels covers all of its rows, one to their right covers nothing of them.
void Coverage::addInColumns(CGPoint from, CGPoint to, double slope) {
    const double width = m_pixels.width();
    if (from.x >= width && to.x >= width) return;
    for (const double wall : {0.0, width}) {
        if ((from.x < wall) == (to.x < wall) || from.x == wall || to.x == wall) continue;
        const CGPoint middle{wall, from.y + (wall - from.x) / slope};
        addInColumns(from, middle, slope);
        addInColumns(middle, to, slope);
        return;
    }
    if (from.x <= 0 && to.x <= 0) from.x = to.x = slope = 0;

    const bool isDown = from.y < to.y;
    const CGPoint upper = isDown ? from : to;
    const CGPoint lower = isDown ? to : from;
    const double direction = isDown ? 1 : -1;
    CGPoint at = upper;
    for (int y = static_cast<int>(upper.y); at.y < lower.y; ++y) {
        const bool isLast = lower.y <= y + 1;
        const CGPoint next = isLast ? lower : CGPoint{upper.x + (y + 1 - upper.y) * slope, y + 1.0};
        if (next.y > at.y) addInRow(y, at.x, next.x, direction * (next.y - at.y));
        at = next;
    }
}

double* Coverage::touch(int y, int first, int end) {
    Row& row = m_rows[static_cast<std::size_t>(y)];
    row.first = std::min(row.first, first);
    row.end = std::max(row.end, end);
    return m_cells.data() + static_cast<std::ptrdiff_t>(y) * (m_pixels.width() + 2);
}

// A piece of an edge inside one row: each pixel gets what lies to the right of the piece.
void Coverage::addInRow(int y, double fromX, double toX, double height) {
    const auto [left, right] = std::minmax(fromX, toX);
    const int first = std::min(static_cast<int>(left), m_pixels.width());
    const int last = std::min(static_cast<int>(right), m_pixels.width());
    double* const cells = touch(y, first, last + 2);
    if (first == last) {
        const double inFirst = height * (1 - ((left + right) / 2 - first));
        cells[first] += inFirst;
        cells[first + 1] += height - inFirst;
        return;
    }
    // Column by column, what lies to the right of the piece there; the sum of the differences is `height`.
    const double perColumn = height / (right - left);
    double before = 0; // of the height, to the left of this column
    double covered = 0;
    for (int x = first; x <= last; ++x) {
        const double enter = std::max<double>(left, x);
        const double leave = std::min<double>(right, x + 1);
        const double share = perColumn * (leave - enter);
        const double now = before + share * (1 - ((enter + leave) / 2 - x));
        cells[x] += now - covered;
        covered = now;
        before += share;
    }
    cells[last + 1] += height - covered;
}

CoveredRuns Coverage::runs() const {
    const int width = m_pixels.width();
    std::vector<CoveredRun> result;
    for (int y = 0; y < m_pixels.height(); ++y) {
        const Row& row = m_rows[static_cast<std::size_t>(y)];
        const double* const cells = m_cells.data() + static_cast<std::ptrdiff_t>(y) * (width + 2);
        double sum = 0;
        CoveredRun run{m_pixels.left + row.first, m_pixels.top + y, 0, 0};
        const auto finish = [&](int end) {
            run.count = m_pixels.left + end - run.x;
            if (run.coverage != 0 && run.count > 0) result.push_back(run);
            run.x = m_pixels.left + end;
        };
        const int end = std::min(row.end, width);
        for (int x = row.first; x < end; ++x) {
            if (cells[x] == 0) continue;
            sum += cells[x];
            const std::uint32_t coverage = rounded(sum);
            if (coverage == run.coverage) continue;
            finish(x);
            run.coverage = coverage;
        }
        // What the shape still covers goes on to the right, beyond the pixels asked for.
        finish(width);
    }
    return std::make_shared<const std::vector<CoveredRun>>(std::move(result));
}

} // namespace seat
