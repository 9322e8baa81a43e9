#pragma once

#include "platform/uikit/UITableView.h"
#include "platform/uikit/UIViewController.h"

// A screen that is one table; data source and delegate of it. Main thread only.
class UITableViewController : public UIViewController, public UITableViewDataSource, public UITableViewDelegate {
    NS_CLASS(UITableViewController)
public:
    ~UITableViewController() override;

    // A UITableViewStyle.
    std::shared_ptr<UITableViewController> initWithStyle(long style);

    // Loads the view where it is not loaded yet; never nil.
    std::shared_ptr<UITableView> tableView();
    // Deselects nothing: a row that waits for something stays selected. The table asks for its data when it is first
    // laid out or asked about.
    void viewWillAppear(bool animated) override;

    // One section without rows, for a subclass to override.
    long numberOfSectionsInTableView(UITableView& tableView) override;
    long tableView_numberOfRowsInSection(UITableView& tableView, long section) override;
    // Override it together with the counts.
    std::shared_ptr<UITableViewCell>
    tableView_cellForRowAtIndexPath(UITableView& tableView, const std::shared_ptr<NSIndexPath>& indexPath) override;

protected:
    UITableViewController();
    void loadView() override;
    // While a row stays selected.
    bool waitsForKey() const override;
    long m_style = UITableViewStylePlain;
};
