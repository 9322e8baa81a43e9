#pragma once

#include "platform/settings_framework/PSListController.h"

#include <map>
#include <optional>
#include <set>
#include <string>

namespace seat {

// A group with the rows up to the next one.
struct ListSection {
    std::shared_ptr<PSSpecifier> group; // nil: rows before the first group
    PSSpecifierList rows;
};

std::vector<ListSection> sectionsOf(const PSSpecifierList& specifiers);

} // namespace seat

// What a settings page keeps beside its rows.
struct PSListController::State {
    std::shared_ptr<UITableView> table; // nil while the view is not loaded
    std::vector<seat::ListSection> sections;
    // Where the page was scrolled to before its rows were rebuilt; put back when the rows that are inserted in code
    // stand there again.
    std::optional<double> scrolledBeforeReload; // points from the top
    // The table is told of a rebuilt list only with the next layout: by then the rows that are inserted in code stand
    // there again, and whatever is as it was keeps its cell.
    bool needsReload = false;
    std::map<std::string, std::shared_ptr<PSSpecifier>> formerRows; // of the list before, with cells; nil: ambiguous
    std::set<const PSSpecifier*> outdated; // have the cell of a former row, and show what that one said

    std::shared_ptr<PSSpecifier> row(const NSIndexPath& path) const;         // nil when there is none
    std::shared_ptr<NSIndexPath> pathOf(const PSSpecifier* specifier) const; // nil for groups and rows of other lists
    void rememberRows(const PSSpecifierList& list);
    // A row that is what a former one was takes over its cell.
    void takeFormerCell(const std::shared_ptr<PSSpecifier>& row);
    void reloadLater(UIView& page);
    void reloadNow(); // if it was to be done later
    // The table follows from the old list to the new one.
    void showChange(const PSSpecifierList& before, const PSSpecifierList& after, bool animated);
};
