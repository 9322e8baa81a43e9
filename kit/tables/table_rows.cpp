#include "kit/quartz/geometry.h"
#include "kit/quartz/text_size.h"
#include "kit/tables/CellInternals.h"
#include "kit/tables/TableText.h"
#include "kit/tables/table_state.h"
#include "kit/uikit/appearance.h"
#include "platform/log.h"
#include "platform/uikit/UIScreen.h"

#include <algorithm>
#include <utility>

using namespace seat;
using namespace seat::appearance;

void UITableView::State::askForSections() {
    isLoaded = true;
    ++generation;
    std::vector<TableSection> sections;
    if (const auto source = dataSource.lock()) {
        const long count = std::max(0L, source->numberOfSectionsInTableView(table));
        sections.reserve(static_cast<std::size_t>(count));
        for (long i = 0; i < count; ++i)
            sections.push_back({std::max(0L, source->tableView_numberOfRowsInSection(table, i)),
                                source->tableView_titleForHeaderInSection(table, i),
                                source->tableView_titleForFooterInSection(table, i)});
    }
    geometry.setSections(std::move(sections));
    layOut();
}

void UITableView::State::layOut() {
    const double width = table.bounds().size.width;
    // The cache serves the many reloads of one page, not texts without end.
    if (!isLaidOutForNow() || measured.size() > 5000) measured.clear();
    laidOutWidth = width;
    laidOutScale = UIScreen::mainScreen()->scale();
    laidOutText = textGeneration();
    const auto measureText = [this](const std::string& text, double room) {
        const auto [found, isNew] = measured.try_emplace(text);
        if (isNew) found->second = TableText::heightOf(text, room);
        return found->second;
    };
    const bool isGrouped = style == UITableViewStyleGrouped;
    if (measuresRows()) {
        // A data source that is asked for a cell may look at the table, which is as it was until then.
        TableGeometry laidOut = geometry;
        const auto before = generation;
        isMeasuring = true;
        laidOut.layOut(width, isGrouped, measureText,
                       [this](TableRow row, double room) { return measuredHeight(row, room); });
        isMeasuring = false;
        if (generation != before) return; // it has changed the table instead
        geometry = std::move(laidOut);
    } else {
        geometry.layOut(width, isGrouped, measureText);
    }
    table.setContentSize(CGSizeMake(width, geometry.contentHeight()));
}

bool UITableView::State::measuresRows() const {
    constexpr long most = 500; // beyond this they are of one height
    if (textScale() <= 1 || isMeasuring) return false;
    long rows = 0;
    for (const TableSection& section : geometry.sections()) rows += std::min(section.rows, most + 1);
    return rows <= most;
}

double UITableView::State::measuredHeight(TableRow row, double width) {
    auto cell = cellAt(row);
    const bool isNew = !cell;
    if (isNew) cell = askForCell(row);
    const double height = CellInternals::heightFor(*cell, width);
    if (const auto pool = free.find(cell->reuseIdentifier()); isNew && pool != free.end()) pool->second.push_back(cell);
    return height;
}

bool UITableView::State::areRowsOutgrown() const {
    if (!measuresRows()) return false;
    return std::ranges::any_of(items, [&](const auto& entry) {
        const TableRow row{entry.first.section, entry.first.row};
        if (entry.first.kind != TableItem::Kind::Row || !geometry.contains(row)) return false;
        const auto& cell = static_cast<const UITableViewCell&>(*entry.second);
        return CellInternals::heightFor(cell, geometry.cardWidth()) != geometry.rowRect(row).size.height;
    });
}

void UITableView::State::update() {
    if (!isLoaded)
        askForSections();
    else if (!isLaidOutForNow() || areRowsOutgrown())
        layOut();
    showVisibleItems();
}

bool UITableView::State::isLaidOutForNow() const {
    return laidOutWidth == table.bounds().size.width && laidOutScale == UIScreen::mainScreen()->scale() &&
           laidOutText == textGeneration();
}

void UITableView::State::showVisibleItems() {
    // A data source that is being asked for a cell may look at the table.
    if (isShowing) return;
    const double top = table.contentOffset().y;
    const double bottom = top + table.bounds().size.height;
    removeItemsOutside(top, bottom);
    if (!(bottom > top) || !(table.bounds().size.width > 0)) return;

    const auto before = generation;
    isShowing = true;
    const auto [firstSection, lastSection] = geometry.sectionsIn(top, bottom);
    for (long section = firstSection; section < lastSection && generation == before; ++section) {
        const auto [first, last] = geometry.rowsIn(section, top, bottom);
        for (long row = first; row < last; ++row) {
            if (!cellAt({section, row})) {
                const auto cell = askForCell({section, row});
                // It reloaded the table instead: what is to be seen now is another matter.
                if (generation != before) break;
                showCell({section, row}, cell);
            } else {
                placeCell({section, row}, *cellAt({section, row}));
            }
        }
        if (generation == before) showTexts(section, top, bottom);
    }
    isShowing = false;
    if (generation != before) return table.setNeedsLayout();
    recycleAside();
    regainFocus();
}

void UITableView::State::removeItemsOutside(double top, double bottom) {
    for (auto item = items.begin(); item != items.end();) {
        const TableRow row{item->first.section, item->first.row};
        const bool isCell = item->first.kind == TableItem::Kind::Row;
        const bool exists = item->first.section < static_cast<long>(geometry.sections().size());
        // By its place in the data: what is drawn may still be on its way there.
        const CGRect place = !exists || (isCell && !geometry.contains(row)) ? item->second->frame()
                             : isCell                                       ? geometry.rowRect(row)
                             : item->first.kind == TableItem::Kind::Header  ? geometry.headerRect(row.section)
                                                                            : geometry.footerRect(row.section);
        const bool isInside = exists && CGRectGetMaxY(place) > top && CGRectGetMinY(place) < bottom;
        if (isInside) {
            ++item;
            continue;
        }
        const auto view = item->second;
        item = items.erase(item);
        if (!isCell) {
            view->removeFromSuperview();
            continue;
        }
        const auto cell = std::static_pointer_cast<UITableViewCell>(view);
        loseFocus(row, *cell);
        recycle(cell);
    }
}

std::shared_ptr<UITableViewCell> UITableView::State::cellAt(TableRow row) const {
    const auto found = items.find(itemFor(row));
    return found == items.end() ? nullptr : std::static_pointer_cast<UITableViewCell>(found->second);
}

std::optional<TableRow> UITableView::State::rowOf(const UIView& view) const {
    for (const auto& [item, shown] : items)
        if (item.kind == TableItem::Kind::Row && view.isDescendantOfView(shown.get()))
            return TableRow{item.section, item.row};
    return std::nullopt;
}

std::shared_ptr<UITableViewCell> UITableView::State::askForCell(TableRow row) {
    const auto source = dataSource.lock();
    auto cell = source ? source->tableView_cellForRowAtIndexPath(
                             table, NSIndexPath::indexPathForRow_inSection(row.row, row.section))
                       : nullptr;
    if (cell) return cell;
    NSLog("showing row %ld of section %ld: the data source has no cell for it", row.row, row.section);
    return UITableViewCell::alloc()->initWithStyle_reuseIdentifier(UITableViewCellStyleDefault, "");
}

void UITableView::State::showCell(TableRow row, const std::shared_ptr<UITableViewCell>& cell) {
    // The same cell may be handed out for another row than before.
    std::erase_if(items, [&](const auto& item) { return item.second == cell && item.first != itemFor(row); });
    std::erase_if(aside, [&](const auto& other) { return other.second == cell; });
    cell->setAlpha(1);
    placeCell(row, *cell);
    CellInternals::setTable(*cell, strong());
    cell->setSelected_animated(selected == row, /*animated=*/false);
    if (pressed.lock() != cell) cell->setHighlighted_animated(false, /*animated=*/false);
    insertInOrder(itemFor(row), cell);
}

void UITableView::State::placeCell(TableRow row, UITableViewCell& cell) {
    const CGRect frame = geometry.rowRect(row);
    if (cell.frame() != frame) cell.setFrame(frame);
    CellInternals::setPlace(cell, {.isGrouped = style == UITableViewStyleGrouped,
                                   .isFirst = row.row == 0,
                                   .isLast = !geometry.contains({row.section, row.row + 1})});
}

void UITableView::State::insertInOrder(const TableItem& item, const std::shared_ptr<UIView>& view) {
    items[item] = view;
    // The order of the subviews is the order in which the keyboard and assistive technology go through them.
    auto subviews = table.subviews();
    const auto indexOf = [&](const std::shared_ptr<UIView>& other) {
        return std::find(subviews.begin(), subviews.end(), other) - subviews.begin();
    };
    // One that is here already moves without leaving: a finger may be on it.
    const auto former = view->superview().get() == &table ? indexOf(view) : -1;
    std::erase(subviews, view);
    const auto next = items.upper_bound(item);
    const auto self = items.find(item);
    std::ptrdiff_t index = 0;
    if (next != items.end())
        index = indexOf(next->second);
    else if (self != items.begin())
        index = indexOf(std::prev(self)->second) + 1;
    index = std::min<std::ptrdiff_t>(index, std::ssize(subviews));
    if (index != former) table.insertSubview_atIndex(view, static_cast<std::size_t>(index));
}

void UITableView::State::showTexts(long section, double top, double bottom) {
    const TableSection& texts = geometry.sections()[static_cast<std::size_t>(section)];
    const auto isVisible = [&](CGRect rect) { return CGRectGetMaxY(rect) > top && CGRectGetMinY(rect) < bottom; };
    if (const CGRect frame = geometry.headerRect(section); !texts.header.empty() && isVisible(frame))
        showText({section, TableItem::Kind::Header, 0}, texts.header, frame);
    if (const CGRect frame = geometry.footerRect(section); !texts.footer.empty() && isVisible(frame))
        showText({section, TableItem::Kind::Footer, 0}, texts.footer, frame);
}

void UITableView::State::showText(const TableItem& item, const std::string& text, CGRect frame) {
    std::shared_ptr<TableText> label;
    if (const auto found = items.find(item); found != items.end())
        label = std::static_pointer_cast<TableText>(found->second);
    if (!label) {
        label = TableText::alloc()->initWithRole(
            item.kind == TableItem::Kind::Header ? UIAccessibilityRole::Heading : UIAccessibilityRole::StaticText);
        insertInOrder(item, label);
    }
    if (label->text() != text) label->setText(text);
    if (label->frame() != frame) label->setFrame(frame);
}

void UITableView::State::recycle(const std::shared_ptr<UITableViewCell>& cell) {
    if (pressed.lock() == cell) endPress(/*animated=*/false);
    if (cell->superview().get() == &table) cell->removeFromSuperview();
    CellInternals::setTable(*cell, nullptr);
    if (const auto pool = free.find(cell->reuseIdentifier()); pool != free.end()) pool->second.push_back(cell);
}

void UITableView::State::recycleAll() {
    ++generation;
    for (const auto& [item, view] : std::exchange(items, {})) {
        if (item.kind != TableItem::Kind::Row) {
            view->removeFromSuperview();
            continue;
        }
        const auto cell = std::static_pointer_cast<UITableViewCell>(view);
        loseFocus({item.section, item.row}, *cell);
        recycle(cell);
    }
    recycleAside();
}

void UITableView::State::putAside() {
    ++generation;
    for (const auto& [item, view] : std::exchange(items, {})) {
        if (item.kind != TableItem::Kind::Row) {
            view->removeFromSuperview();
            continue;
        }
        const TableRow row{item.section, item.row};
        const auto cell = std::static_pointer_cast<UITableViewCell>(view);
        if (!free.contains(cell->reuseIdentifier())) {
            aside.emplace_back(row, cell);
            continue;
        }
        loseFocus(row, *cell);
        recycle(cell);
    }
}

void UITableView::State::recycleAside() {
    for (const auto& [row, cell] : std::exchange(aside, {})) {
        loseFocus(row, *cell);
        recycle(cell);
    }
}

void UITableView::State::clampOffset() {
    const UIEdgeInsets inset = table.contentInset();
    const double lowest = geometry.contentHeight() + inset.bottom - table.bounds().size.height;
    const double y = std::max(-inset.top, std::min(table.contentOffset().y, lowest));
    if (y != table.contentOffset().y && !table.isDragging()) table.setContentOffset(CGPointMake(0, y));
}

std::shared_ptr<UITableViewCell> UITableView::State::dequeue(const std::string& identifier) {
    auto& pool = free[identifier];
    if (!pool.empty()) {
        auto cell = std::move(pool.back());
        pool.pop_back();
        forgetFocus(*cell);
        cell->prepareForReuse();
        return cell;
    }
    const auto cls = classes.find(identifier);
    if (cls == classes.end()) return nullptr;
    const auto object = class_createInstance(cls->second);
    if (!object) return nullptr;
    return objc_msgSend(*object, "initWithStyle:reuseIdentifier:",
                        {NSNumber::numberWithInteger(UITableViewCellStyleDefault), id(identifier)})
        .object<UITableViewCell>();
}
