#include "kit/quartz/geometry.h"
#include "kit/tables/CellInternals.h"
#include "kit/tables/table_state.h"

#include <algorithm>
#include <utility>

using namespace seat;

namespace {

constexpr double changeDuration = 0.3;

} // namespace

void UITableView::State::animateIn(const Change& change, const std::map<const UIView*, CGRect>& startFrames,
                                   double shift) {
    showVisibleItems();
    const auto shown = items;
    for (const auto& [item, view] : shown) {
        const CGRect target = view->frame();
        const bool isNewRow = item.kind == TableItem::Kind::Row && change.isNew({item.section, item.row});
        if (const auto start = startFrames.find(view.get()); start != startFrames.end())
            view->setFrame(start->second);
        else if (!isNewRow)
            view->setFrame(CGRectOffset(target, 0, shift));
        if (isNewRow) view->setAlpha(0);
        UIView::animateWithDuration_animations(changeDuration, [&] {
            view->setFrame(target);
            if (isNewRow) view->setAlpha(1);
        });
    }
}

// Behind the rows that close the gap, and out of reach.
void UITableView::State::animateOut(const std::vector<LeavingCell>& leaving) {
    if (leaving.empty()) return;
    for (const auto& [cell, target] : leaving) {
        table.insertSubview_atIndex(cell, 0);
        CellInternals::setTable(*cell, nullptr);
    }
    const std::weak_ptr<UITableView> weakTable = strong();
    UIView::animateWithDuration_animations_completion(
        changeDuration,
        [&] {
            for (const auto& [cell, target] : leaving)
                if (target)
                    cell->setFrame(*target);
                else
                    cell->setAlpha(0);
        },
        [weakTable, leaving](bool) {
            const auto owner = weakTable.lock();
            for (const auto& [cell, target] : leaving) {
                // It may have come back meanwhile.
                if (!owner || owner->m_table->rowOf(*cell)) continue;
                cell->setAlpha(1);
                owner->m_table->recycle(cell);
            }
        });
}

void UITableView::State::apply(const Change& change) {
    if (!isLoaded) return update();
    const double oldHeight = geometry.contentHeight();
    const auto oldItems = std::exchange(items, {});
    if (selected) selected = change.newRow(*selected);
    askForSections();
    clampOffset();
    if (selected && !geometry.contains(*selected)) selected.reset();

    const double top = table.contentOffset().y;
    const double bottom = top + table.bounds().size.height;
    std::map<const UIView*, CGRect> startFrames;
    std::vector<LeavingCell> leaving;
    for (const auto& [item, view] : oldItems) {
        if (item.kind != TableItem::Kind::Row) {
            items[item] = view;
            startFrames[view.get()] = view->frame();
            continue;
        }
        const auto cell = std::static_pointer_cast<UITableViewCell>(view);
        const auto row = change.newRow({item.section, item.row});
        if (!row || !geometry.contains(*row)) {
            leaving.push_back({cell, std::nullopt});
        } else if (const CGRect target = geometry.rowRect(*row);
                   CGRectGetMaxY(target) > top && CGRectGetMinY(target) < bottom) {
            items[itemFor(*row)] = cell;
            startFrames[cell.get()] = cell->frame();
        } else {
            leaving.push_back({cell, target});
        }
    }
    if (!change.animated || !(bottom > top)) {
        for (const auto& [cell, target] : leaving) recycle(cell);
        table.setNeedsLayout();
        return;
    }
    // What comes into view without being new slides in from where it was, out of sight.
    animateIn(change, startFrames, oldHeight - geometry.contentHeight());
    animateOut(leaving);
}
