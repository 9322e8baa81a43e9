// The rows as a table shows them, and what a tap on each kind does.

#include "kit/settings_framework/PSListItemsController.h"
#include "kit/settings_framework/cell_factory.h"
#include "kit/settings_framework/list_state.h"
#include "kit/settings_framework/row_value.h"
#include "platform/uikit/UINavigationController.h"

// The first thing that a table asks for when it asks for everything.
long PSListController::numberOfSectionsInTableView(UITableView&) {
    m_list->sections = seat::sectionsOf(specifiers());
    return std::ssize(m_list->sections);
}

bool PSListController::waitsForKey() const {
    const auto list = table();
    return list && list->indexPathForSelectedRow();
}

long PSListController::tableView_numberOfRowsInSection(UITableView&, long section) {
    const bool exists = section >= 0 && section < std::ssize(m_list->sections);
    return exists ? std::ssize(m_list->sections[static_cast<std::size_t>(section)].rows) : 0;
}

std::shared_ptr<UITableViewCell>
PSListController::tableView_cellForRowAtIndexPath(UITableView&, const std::shared_ptr<NSIndexPath>& indexPath) {
    const auto row = m_list->row(*indexPath);
    if (row && m_list->outdated.erase(row.get()) > 0) seat::refreshCell(row);
    return row ? seat::cellFor(row) : nullptr;
}

std::string PSListController::tableView_titleForHeaderInSection(UITableView&, long section) {
    if (section < 0 || section >= std::ssize(m_list->sections)) return {};
    const auto& group = m_list->sections[static_cast<std::size_t>(section)].group;
    return group ? group->name() : std::string();
}

std::string PSListController::tableView_titleForFooterInSection(UITableView&, long section) {
    if (section < 0 || section >= std::ssize(m_list->sections)) return {};
    const auto& group = m_list->sections[static_cast<std::size_t>(section)].group;
    return group ? seat::textOf(group->propertyForKey("footerText")) : std::string();
}

bool PSListController::tableView_shouldHighlightRowAtIndexPath(UITableView&,
                                                               const std::shared_ptr<NSIndexPath>& indexPath) {
    const auto row = m_list->row(*indexPath);
    return row && (row->cellType() == PSCellType::Button || row->cellType() == PSCellType::LinkList);
}

void PSListController::tableView_didSelectRowAtIndexPath(UITableView& tableView,
                                                         const std::shared_ptr<NSIndexPath>& indexPath) {
    const auto row = m_list->row(*indexPath);
    if (!row) return;
    const auto keepAlive = self(this);
    // The row of an opened list stays marked until the user comes back.
    if (row->cellType() == PSCellType::LinkList) {
        if (const auto navigation = navigationController())
            return navigation->pushViewController_animated(
                PSListItemsController::alloc()->initWithSpecifier_page(row, keepAlive), /*animated=*/true);
    }
    tableView.deselectRowAtIndexPath_animated(indexPath, /*animated=*/true);
    const auto target = row->target();
    if (target && row->buttonAction()) objc_msgSend(*target, row->buttonAction(), {id(row)});
}
