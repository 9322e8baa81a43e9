#pragma once

#include "platform/uikit/UITableView.h"

#include <memory>

class UIWindow;

namespace host {

// The table of the screen that the user looks at; nil when it has none, or an alert stands before it.
std::shared_ptr<UITableView> frontTable(const UIWindow& window);

// A row of the front table stays selected: it waits for something, and keys are not the application's meanwhile.
bool frontTableWaits(const UIWindow& window);

} // namespace host
