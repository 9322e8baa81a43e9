#include "kit/tables/table_focus.h"

#include "kit/tables/table_state.h"
#include "kit/uikit/WindowInternals.h"
#include "platform/uikit/UIApplication.h"

std::shared_ptr<UIView> seat::firstFocusable(const std::shared_ptr<UIView>& view) {
    if (view->isHidden() || !view->isUserInteractionEnabled()) return nullptr;
    if (view->canBecomeFocused()) return view;
    for (const auto& subview : view->subviews())
        if (auto found = firstFocusable(subview)) return found;
    return nullptr;
}

void UITableView::State::loseFocus(seat::TableRow row, const UITableViewCell& cell) {
    const auto window = table.window();
    const auto focused = window ? window->focusedView() : nullptr;
    if (!focused || !focused->isDescendantOfView(&cell)) return;
    WindowInternals::forgetFocus(*window, cell);
    lostFocus = LostFocus{row, focused, window->focusedView()};
}

void UITableView::State::forgetFocus(const UITableViewCell& cell) {
    const auto view = lostFocus ? lostFocus->view.lock() : nullptr;
    if (view && view->isDescendantOfView(&cell)) lostFocus->view.reset();
    // A table of a covered screen may be given new rows, too.
    if (const auto window = UIApplication::sharedApplication()->keyWindow())
        WindowInternals::forgetFocus(*window, cell);
}

void UITableView::State::regainFocus() {
    const auto window = table.window();
    if (!lostFocus || !window) return;
    if (window->focusedView() != lostFocus->instead.lock()) {
        lostFocus.reset(); // the focus went its own way
        return;
    }
    // The same view, wherever its row stands now; else what is in its row.
    const auto same = lostFocus->view.lock();
    const auto cell = cellAt(lostFocus->row);
    const auto view = same && same->isDescendantOfView(&table) ? same : cell ? seat::firstFocusable(cell) : nullptr;
    if (!view) return;
    lostFocus.reset();
    window->setFocusedView(view);
}
