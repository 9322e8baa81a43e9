#include "kit/settings_framework/stored_values.h"

#include "kit/settings_framework/PSListItemsController.h"
#include "kit/settings_framework/cell_factory.h"
#include "kit/settings_framework/row_value.h"
#include "platform/uikit/UINavigationController.h"

#include <algorithm>

namespace seat {
namespace {

// Rows without a cell ask for their value when they get one.
bool isOutdated(PSListController& page) {
    return std::ranges::any_of(page.specifiers(), [](const auto& row) {
        return row && row->getter() && keptCell(*row) && shownValue(row) != row->propertyForKey("value");
    });
}

} // namespace

void showStoredValues(UINavigationController& navigation) {
    // A page that is reloaded may change them.
    const auto screens = navigation.viewControllers(); // NOLINT(performance-unnecessary-copy-initialization)
    for (const auto& screen : screens) {
        if (const auto page = std::dynamic_pointer_cast<PSListController>(screen); page && isOutdated(*page))
            page->reloadSpecifiers();
        if (const auto choices = std::dynamic_pointer_cast<PSListItemsController>(screen)) choices->showChosen();
    }
}

} // namespace seat
