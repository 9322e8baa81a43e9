#include "kit/tables/table_focus.h"
#include "kit/tables/table_state.h"
#include "kit/uikit/UITouch.h"

#include <utility>

using namespace seat;

namespace {

// Long enough for a drag to show that it is one, so that scrolling does not flash the rows it begins on.
constexpr double pressDelay = 0.08;

constexpr int mostRowsLookedAt = 1000;

std::shared_ptr<NSIndexPath> pathOf(TableRow row) {
    return NSIndexPath::indexPathForRow_inSection(row.row, row.section);
}

} // namespace

bool UITableView::State::canSelect(TableRow row) const {
    if (!geometry.contains(row)) return false;
    const auto cell = cellAt(row);
    if (cell && (!cell->isUserInteractionEnabled() || cell->selectionStyle() == UITableViewCellSelectionStyle::None))
        return false;
    const auto listener = delegate.lock();
    return !listener || listener->tableView_shouldHighlightRowAtIndexPath(table, pathOf(row));
}

void UITableView::State::select(TableRow row, bool animated) {
    if (selected != row) deselect(animated);
    selected = row;
    if (const auto cell = cellAt(row)) cell->setSelected_animated(true, animated);
}

void UITableView::State::deselect(bool animated) {
    if (!selected) return;
    const auto cell = cellAt(*selected);
    selected.reset();
    if (cell) cell->setSelected_animated(false, animated);
}

void UITableView::State::showPress() {
    removeSource(std::exchange(pressTimer, 0));
    if (const auto cell = pressed.lock()) cell->setHighlighted_animated(true, /*animated=*/false);
}

void UITableView::State::endPress(bool animated) {
    removeSource(std::exchange(pressTimer, 0));
    const auto cell = pressed.lock();
    pressed.reset();
    if (cell) cell->setHighlighted_animated(false, animated);
}

std::optional<TableRow> UITableView::State::pressedRow() const {
    const auto cell = pressed.lock();
    return cell && cell->textLabel()->text() == pressedTitle ? rowOf(*cell) : std::nullopt;
}

void UITableView::touchesBegan_withEvent(const UITouchList& touches, UIEvent&) {
    m_table->endPress(/*animated=*/false);
    if (touches.size() != 1) return;
    const auto path = indexPathForRowAtPoint(touches.front()->locationInView(this));
    if (!path || !m_table->canSelect({path->section(), path->row()})) return;
    const auto cell = m_table->cellAt({path->section(), path->row()});
    if (!cell) return;
    m_table->pressed = cell;
    m_table->pressedTitle = cell->textLabel()->text();
    const std::weak_ptr<UITableView> weakTable = m_table->strong();
    m_table->pressTimer = addTimer(pressDelay, [weakTable] {
        if (const auto table = weakTable.lock()) table->m_table->showPress();
    });
}

void UITableView::touchesMoved_withEvent(const UITouchList& touches, UIEvent&) {
    if (m_table->pressed.expired() || touches.empty()) return;
    m_table->update();
    const auto row = m_table->pressedRow();
    if (!row || !CGRectContainsPoint(m_table->geometry.rowRect(*row), touches.front()->locationInView(this)))
        m_table->endPress(/*animated=*/true);
}

void UITableView::touchesEnded_withEvent(const UITouchList&, UIEvent&) {
    if (m_table->pressed.expired()) return;
    const auto keepAlive = m_table->strong();
    m_table->update();
    const auto row = m_table->pressedRow();
    if (!row) return m_table->endPress(/*animated=*/true);
    // Selecting it shows the same, without a flicker between.
    removeSource(std::exchange(m_table->pressTimer, 0));
    const auto cell = m_table->pressed.lock();
    m_table->pressed.reset();
    activateRow(pathOf(*row));
    if (cell) cell->setHighlighted_animated(false, /*animated=*/true);
}

void UITableView::touchesCancelled_withEvent(const UITouchList&, UIEvent&) { m_table->endPress(/*animated=*/true); }

void UITableView::activateRow(const std::shared_ptr<NSIndexPath>& indexPath) {
    if (!indexPath) return;
    m_table->update();
    const TableRow row{indexPath->section(), indexPath->row()};
    if (!m_table->canSelect(row)) return;
    const auto keepAlive = m_table->strong();
    m_table->select(row, /*animated=*/false);
    if (const auto listener = m_table->delegate.lock()) listener->tableView_didSelectRowAtIndexPath(*this, indexPath);
}

void UITableView::selectRowAtIndexPath_animated(const std::shared_ptr<NSIndexPath>& indexPath, bool animated) {
    m_table->update();
    if (!indexPath) return m_table->deselect(animated);
    const TableRow row{indexPath->section(), indexPath->row()};
    if (m_table->geometry.contains(row)) m_table->select(row, animated);
}

void UITableView::deselectRowAtIndexPath_animated(const std::shared_ptr<NSIndexPath>& indexPath, bool animated) {
    if (indexPath && m_table->selected == TableRow{indexPath->section(), indexPath->row()}) m_table->deselect(animated);
}

std::shared_ptr<NSIndexPath> UITableView::indexPathForSelectedRow() const {
    return m_table->selected ? pathOf(*m_table->selected) : nullptr;
}

std::shared_ptr<UIView> UITableView::focusNeighbour(const UIView& focused, bool forward) {
    m_table->update();
    auto row = m_table->rowOf(focused);
    if (!row) return nullptr;
    const CGPoint offset = contentOffset();
    for (int looked = 0; looked < mostRowsLookedAt; ++looked) {
        row = m_table->geometry.neighbour(*row, forward);
        if (!row) break;
        if (const auto cell = m_table->cellAt(*row); cell && !firstFocusable(cell)) continue;
        scrollToRowAtIndexPath_animated(pathOf(*row), /*animated=*/false);
        m_table->update();
        const auto cell = m_table->cellAt(*row);
        if (const auto view = cell ? firstFocusable(cell) : nullptr) return view;
    }
    setContentOffset(offset);
    return nullptr;
}
