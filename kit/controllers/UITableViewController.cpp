#include "platform/uikit/UITableViewController.h"

#include "kit/controllers/ControllerInternals.h"

NS_CLASS_IMPLEMENTATION(UITableViewController, UIViewController)

UITableViewController::UITableViewController() = default;
UITableViewController::~UITableViewController() = default;

std::shared_ptr<UITableViewController> UITableViewController::initWithStyle(long style) {
    if (!UIViewController::init()) return nullptr;
    m_style = style;
    return self(this);
}

std::shared_ptr<UITableView> UITableViewController::tableView() {
    return std::dynamic_pointer_cast<UITableView>(view());
}

void UITableViewController::loadView() {
    const auto table = UITableView::alloc()->initWithFrame_style(ControllerInternals::initialFrame(), m_style);
    const auto me = self(this);
    table->setDataSource(me);
    table->setDelegate(me);
    setView(table);
}

// The table asks its data source when it is first laid out; nothing is left to do here.
void UITableViewController::viewWillAppear(bool animated) { UIViewController::viewWillAppear(animated); }

bool UITableViewController::waitsForKey() const {
    const auto table = std::dynamic_pointer_cast<UITableView>(viewIfLoaded());
    return table && table->indexPathForSelectedRow();
}

long UITableViewController::numberOfSectionsInTableView(UITableView&) { return 1; }
long UITableViewController::tableView_numberOfRowsInSection(UITableView&, long) { return 0; }

std::shared_ptr<UITableViewCell>
UITableViewController::tableView_cellForRowAtIndexPath(UITableView&, const std::shared_ptr<NSIndexPath>&) {
    return nullptr;
}
