#pragma once

#include "platform/settings_framework/PSListController.h"

#include <optional>

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

    std::shared_ptr<PSSpecifier> row(const NSIndexPath& path) const;         // nil when there is none
    std::shared_ptr<NSIndexPath> pathOf(const PSSpecifier* specifier) const; // nil for groups and strangers
    // The table follows from the old list to the new one.
    void showChange(const PSSpecifierList& before, const PSSpecifierList& after, bool animated);
};
