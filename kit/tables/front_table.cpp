#include "host/tables/front_table.h"

#include "host/controllers/front_controller.h"
#include "platform/uikit/UIWindow.h"

namespace host {
namespace {

std::shared_ptr<UITableView> tableIn(const std::shared_ptr<UIView>& view) {
    if (!view) return nullptr;
    if (const auto table = std::dynamic_pointer_cast<UITableView>(view)) return table;
    for (const auto& subview : view->subviews())
        if (auto table = tableIn(subview)) return table;
    return nullptr;
}

} // namespace

std::shared_ptr<UITableView> frontTable(const UIWindow& window) {
    for (const auto& view : window.subviews())
        if (view->accessibilityRole() == UIAccessibilityRole::Alert && view->accessibilityViewIsModal()) return nullptr;
    const auto front = frontController(window);
    return front ? tableIn(front->viewIfLoaded()) : nullptr;
}

bool frontTableWaits(const UIWindow& window) {
    const auto table = frontTable(window);
    return table && table->indexPathForSelectedRow();
}

} // namespace host
