#include "kit/settings_framework/PSListItemsController.h"

#include "kit/settings_framework/row_value.h"
#include "platform/uikit/UINavigationController.h"

NS_CLASS_IMPLEMENTATION(PSListItemsController, UITableViewController)

PSListItemsController::~PSListItemsController() = default;

std::shared_ptr<PSListItemsController>
PSListItemsController::initWithSpecifier_page(const std::shared_ptr<PSSpecifier>& specifier,
                                              const std::shared_ptr<PSListController>& page) {
    if (!specifier || !UITableViewController::initWithStyle(UITableViewStyleGrouped)) return nullptr;
    m_specifier = specifier;
    m_page = page;
    setTitle(specifier->name());
    return self(this);
}

long PSListItemsController::tableView_numberOfRowsInSection(UITableView&, long) {
    return static_cast<long>(seat::choicesOf(*m_specifier).size());
}

std::shared_ptr<UITableViewCell>
PSListItemsController::tableView_cellForRowAtIndexPath(UITableView&, const std::shared_ptr<NSIndexPath>& indexPath) {
    const auto choices = seat::choicesOf(*m_specifier);
    const auto index = static_cast<std::size_t>(indexPath->row());
    auto cell = UITableViewCell::alloc()->initWithStyle_reuseIdentifier(UITableViewCellStyleDefault, "");
    if (index >= choices.size()) return cell;
    cell->textLabel()->setText(choices[index].title);
    if (seat::choiceOf(choices, seat::shownValue(m_specifier)) == index)
        cell->setAccessoryType(UITableViewCellAccessoryType::Checkmark);
    return cell;
}

void PSListItemsController::showChosen() {
    if (isViewLoaded()) check(seat::choiceOf(seat::choicesOf(*m_specifier), seat::shownValue(m_specifier)));
}

void PSListItemsController::check(std::optional<std::size_t> chosen) {
    const auto& table = tableView();
    for (long row = 0; row < table->numberOfRowsInSection(0); ++row)
        if (const auto cell = table->cellForRowAtIndexPath(NSIndexPath::indexPathForRow_inSection(row, 0)))
            cell->setAccessoryType(chosen == static_cast<std::size_t>(row) ? UITableViewCellAccessoryType::Checkmark
                                                                           : UITableViewCellAccessoryType::None);
}

std::string PSListItemsController::tableView_titleForFooterInSection(UITableView&, long) {
    return seat::textOf(m_specifier->propertyForKey("footerText"));
}

void PSListItemsController::tableView_didSelectRowAtIndexPath(UITableView& tableView,
                                                              const std::shared_ptr<NSIndexPath>& indexPath) {
    const auto choices = seat::choicesOf(*m_specifier);
    const auto index = static_cast<std::size_t>(indexPath->row());
    if (index >= choices.size()) return;
    const auto keepAlive = shared_from_this();
    seat::storeValue(m_specifier, choices[index].value);
    check(index);
    tableView.deselectRowAtIndexPath_animated(indexPath, /*animated=*/true);
    if (const auto page = m_page.lock()) page->reloadSpecifier(m_specifier);
    if (const auto navigation = navigationController()) navigation->popViewControllerAnimated(/*animated=*/true);
}
