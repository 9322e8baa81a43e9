#pragma once

#include "platform/settings_framework/PSListController.h"
#include "platform/uikit/UITableViewController.h"

#include <cstddef>
#include <optional>

// The choices of a link list, the chosen one checked. A tap stores its value through the row's setter and goes back.
class PSListItemsController final : public UITableViewController {
    NS_CLASS(PSListItemsController)
public:
    ~PSListItemsController() override;

    // The page is weak; its row is shown anew after a choice.
    std::shared_ptr<PSListItemsController> initWithSpecifier_page(const std::shared_ptr<PSSpecifier>& specifier,
                                                                  const std::shared_ptr<PSListController>& page);

    // Checks the choice that is stored by now.
    void showChosen();

    long tableView_numberOfRowsInSection(UITableView& tableView, long section) override;
    std::shared_ptr<UITableViewCell>
    tableView_cellForRowAtIndexPath(UITableView& tableView, const std::shared_ptr<NSIndexPath>& indexPath) override;
    std::string tableView_titleForFooterInSection(UITableView& tableView, long section) override;
    void tableView_didSelectRowAtIndexPath(UITableView& tableView,
                                           const std::shared_ptr<NSIndexPath>& indexPath) override;

private:
    PSListItemsController() = default;
    void check(std::optional<std::size_t> chosen);

    std::shared_ptr<PSSpecifier> m_specifier;
    std::weak_ptr<PSListController> m_page;
};
