#include "platform/uikit/UITableView.h"

#include "kit/quartz/geometry.h"
#include "kit/tables/CellInternals.h"
#include "kit/tables/table_state.h"
#include "kit/uikit/appearance.h"

#include <algorithm>
#include <set>

using namespace seat;

NS_CLASS_IMPLEMENTATION(UITableView, UIScrollView)

std::string UITableViewDataSource::tableView_titleForHeaderInSection(UITableView&, long) { return {}; }
std::string UITableViewDataSource::tableView_titleForFooterInSection(UITableView&, long) { return {}; }
void UITableViewDelegate::tableView_didSelectRowAtIndexPath(UITableView&, const std::shared_ptr<NSIndexPath>&) {}
bool UITableViewDelegate::tableView_shouldHighlightRowAtIndexPath(UITableView&, const std::shared_ptr<NSIndexPath>&) {
    return true;
}

namespace {

TableRow rowOf(const NSIndexPath& path) { return {path.section(), path.row()}; }

std::set<TableRow> rowsOf(const NSIndexPathList& paths) {
    std::set<TableRow> rows;
    for (const auto& path : paths)
        if (path) rows.insert(rowOf(*path));
    return rows;
}

} // namespace

UITableView::UITableView() : m_table(std::make_unique<State>(*this)) {}
UITableView::~UITableView() = default;

std::shared_ptr<UITableView> UITableView::initWithFrame_style(CGRect frame, long style) {
    if (!UIScrollView::initWithFrame(frame)) return nullptr;
    m_table->style = style;
    setBackgroundColor(style == UITableViewStyleGrouped ? appearance::pageColor() : appearance::cardColor());
    setClipsToBounds(true);
    return self(this);
}

void UITableView::setDataSource(const std::shared_ptr<UITableViewDataSource>& source) {
    m_table->dataSource = source;
    m_table->isLoaded = false;
    m_table->recycleAll();
    setNeedsLayout();
}

void UITableView::setDelegate(const std::shared_ptr<UITableViewDelegate>& delegate) { m_table->delegate = delegate; }

long UITableView::style() const { return m_table->style; }

void UITableView::registerClass_forCellReuseIdentifier(Class cls, const std::string& identifier) {
    if (cls)
        m_table->classes[identifier] = cls;
    else
        m_table->classes.erase(identifier);
}

std::shared_ptr<UITableViewCell>
UITableView::dequeueReusableCellWithIdentifier_forIndexPath(const std::string& identifier,
                                                            const std::shared_ptr<NSIndexPath>&) {
    return m_table->dequeue(identifier);
}

void UITableView::reloadData() {
    m_table->selected.reset();
    m_table->putAside();
    m_table->askForSections();
    m_table->clampOffset();
    setNeedsLayout();
}

void UITableView::reloadRowsAtIndexPaths_withRowAnimation(const NSIndexPathList& indexPaths, long animation) {
    m_table->update();
    for (const TableRow row : rowsOf(indexPaths)) {
        const auto old = m_table->cellAt(row);
        if (!old) continue;
        const auto before = m_table->generation;
        const auto cell = m_table->askForCell(row);
        if (m_table->generation != before) return;
        // The old one is free for reuse only now, so that the new one is another.
        if (cell != old) {
            if (m_table->pressed.lock() == old) m_table->pressed = cell;
            m_table->loseFocus(row, *old);
            m_table->recycle(old);
        }
        m_table->showCell(row, cell);
        cell->setNeedsLayout();
        if (animation == UITableViewRowAnimationFade) CellInternals::fadeContentIn(*cell);
    }
    m_table->regainFocus();
}

void UITableView::insertRowsAtIndexPaths_withRowAnimation(const NSIndexPathList& indexPaths, long animation) {
    const auto inserted = rowsOf(indexPaths);
    m_table->apply({.newRow = [&](TableRow row) -> std::optional<TableRow> {
                        for (const TableRow newcomer : inserted)
                            if (newcomer.section == row.section && newcomer.row <= row.row) ++row.row;
                        return row;
                    },
                    .isNew = [&](TableRow row) { return inserted.contains(row); },
                    .animated = animation != UITableViewRowAnimationNone});
}

void UITableView::deleteRowsAtIndexPaths_withRowAnimation(const NSIndexPathList& indexPaths, long animation) {
    const auto deleted = rowsOf(indexPaths);
    m_table->apply({.newRow = [&](TableRow row) -> std::optional<TableRow> {
                        if (deleted.contains(row)) return std::nullopt;
                        const auto first = deleted.lower_bound({row.section, 0});
                        return TableRow{row.section, row.row - std::distance(first, deleted.lower_bound(row))};
                    },
                    .isNew = [](TableRow) { return false; },
                    .animated = animation != UITableViewRowAnimationNone});
}

std::shared_ptr<UITableViewCell>
UITableView::cellForRowAtIndexPath(const std::shared_ptr<NSIndexPath>& indexPath) const {
    if (!indexPath) return nullptr;
    m_table->update();
    return m_table->cellAt(rowOf(*indexPath));
}

std::shared_ptr<NSIndexPath> UITableView::indexPathForCell(const UITableViewCell* cell) const {
    for (const auto& [item, view] : m_table->items)
        if (view.get() == cell) return NSIndexPath::indexPathForRow_inSection(item.row, item.section);
    return nullptr;
}

std::shared_ptr<NSIndexPath> UITableView::indexPathForRowAtPoint(CGPoint point) const {
    m_table->update();
    const auto row = m_table->geometry.rowAt(point.y);
    if (!row || !CGRectContainsPoint(m_table->geometry.rowRect(*row), point)) return nullptr;
    return NSIndexPath::indexPathForRow_inSection(row->row, row->section);
}

CGRect UITableView::rectForRowAtIndexPath(const std::shared_ptr<NSIndexPath>& indexPath) const {
    if (!indexPath) return CGRectZero;
    m_table->update();
    return m_table->geometry.rowRect(rowOf(*indexPath));
}

std::vector<std::shared_ptr<UITableViewCell>> UITableView::visibleCells() const {
    m_table->update();
    std::vector<std::shared_ptr<UITableViewCell>> cells;
    for (const auto& [item, view] : m_table->items)
        if (item.kind == TableItem::Kind::Row) cells.push_back(std::static_pointer_cast<UITableViewCell>(view));
    return cells;
}

long UITableView::numberOfSections() const {
    if (!m_table->isLoaded) m_table->askForSections();
    return static_cast<long>(m_table->geometry.sections().size());
}

long UITableView::numberOfRowsInSection(long section) const {
    const bool exists = section >= 0 && section < numberOfSections();
    return exists ? m_table->geometry.sections()[static_cast<std::size_t>(section)].rows : 0;
}

void UITableView::scrollToRowAtIndexPath_animated(const std::shared_ptr<NSIndexPath>& indexPath, bool animated) {
    if (!indexPath) return;
    m_table->update();
    const TableRow row = rowOf(*indexPath);
    if (!m_table->geometry.contains(row)) return;
    CGRect rect = m_table->geometry.rowRect(row);
    // A section's first row brings its header along.
    if (row.row == 0 && row.section >= 0) {
        const bool isFirst = row.section == 0;
        const double top = isFirst ? 0 : CGRectGetMinY(m_table->geometry.headerRect(row.section));
        rect = CGRectMake(rect.origin.x, top, rect.size.width, CGRectGetMaxY(rect) - top);
    }
    scrollRectToVisible_animated(rect, animated);
}

void UITableView::layoutSubviews() {
    UIScrollView::layoutSubviews();
    m_table->update();
}

void UITableView::contentOffsetChanged() {
    UIScrollView::contentOffsetChanged();
    if (m_table->isLoaded) m_table->showVisibleItems();
}

UIAccessibilityRole UITableView::accessibilityRole() const { return UIAccessibilityRole::List; }
