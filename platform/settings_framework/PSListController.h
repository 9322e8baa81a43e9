#pragma once

#include "platform/settings_framework/PSSpecifier.h"
#include "platform/settings_framework/PSTableCell.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UIViewController.h"

#include <memory>
#include <optional>
#include <string>

// A settings page: a grouped table made from a list of rows. Main thread only, but for `readPreferenceValue`.
//
// An anchor that is nil, absent or not in the list means "at the beginning" (index 0). A row that is already in the
// list moves; nothing appears twice. Removing an absent row does nothing. Animated or not, the list has changed when a
// call returns.
class PSListController : public UIViewController, public UITableViewDataSource, public UITableViewDelegate {
    NS_CLASS(PSListController)
public:
    ~PSListController() override;

    std::shared_ptr<PSListController> init();

    // The rows and groups, in their order; a group's rows follow it. A subclass fills `_specifiers` the first time. The
    // reference holds until the list changes.
    virtual const PSSpecifierList& specifiers();
    // The rows of a resource of the page's bundle; each row's target is `target`. Empty, and a logged reason, when the
    // resource cannot be read.
    PSSpecifierList loadSpecifiersFromPlistName_target(const std::string& name,
                                                       const std::shared_ptr<NSObject>& target);

    // Drops the list, also rows inserted in code, and builds it again from `specifiers`; the table follows with the
    // next layout. A row that is the same as before (by its "id", else by its title, kind and cell class) keeps its
    // cell, with its looks, its focus and the finger on it, and the page stays scrolled where it was.
    virtual void reloadSpecifiers();
    // Title and value of one row, read again into its cell. nil is ignored.
    void reloadSpecifier(const std::shared_ptr<PSSpecifier>& specifier);
    void reloadSpecifierID(const std::string& identifier);

    // The first with this "id"; nil when absent.
    std::shared_ptr<PSSpecifier> specifierForID(const std::string& identifier);
    bool containsSpecifier(const std::shared_ptr<PSSpecifier>& specifier);
    // -1 when absent.
    long indexOfSpecifier(const std::shared_ptr<PSSpecifier>& specifier);
    long indexOfSpecifierID(const std::string& identifier);

    // Each comes behind the anchor, several in their order; nil rows, and all but the first of equal ones, are left
    // out.
    void insertSpecifier_afterSpecifier_animated(const std::shared_ptr<PSSpecifier>& specifier,
                                                 const std::shared_ptr<PSSpecifier>& after, bool animated = false);
    void insertSpecifier_afterSpecifierID_animated(const std::shared_ptr<PSSpecifier>& specifier,
                                                   const std::string& after, bool animated = false);
    void insertContiguousSpecifiers_afterSpecifier_animated(const PSSpecifierList& specifiers,
                                                            const std::shared_ptr<PSSpecifier>& after,
                                                            bool animated = false);
    void insertContiguousSpecifiers_afterSpecifierID_animated(const PSSpecifierList& specifiers,
                                                              const std::string& after, bool animated = false);
    // The row alone, of a group the heading alone.
    void removeSpecifierID_animated(const std::string& identifier, bool animated = false);

    // The value under the row's "key" in its "defaults" domain, read afresh from the store; nil when absent or when the
    // row is nil or has no key. Any thread.
    id readPreferenceValue(const std::shared_ptr<PSSpecifier>& specifier);
    // Stores the value (nil removes it) under the row's "key" in its "defaults" domain, then posts the row's
    // "PostNotification", if it has one. A value that could be stored only later is announced once more then. Nothing
    // when the row is nil or has no key.
    virtual void setPreferenceValue_specifier(const id& value, const std::shared_ptr<PSSpecifier>& specifier);

    // With the rows as they are now; nil while the view is not loaded.
    std::shared_ptr<UITableView> table() const;
    // From here on the table shows the rows.
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;

    long numberOfSectionsInTableView(UITableView& tableView) override;
    long tableView_numberOfRowsInSection(UITableView& tableView, long section) override;
    std::shared_ptr<UITableViewCell>
    tableView_cellForRowAtIndexPath(UITableView& tableView, const std::shared_ptr<NSIndexPath>& indexPath) override;
    std::string tableView_titleForHeaderInSection(UITableView& tableView, long section) override;
    std::string tableView_titleForFooterInSection(UITableView& tableView, long section) override;
    void tableView_didSelectRowAtIndexPath(UITableView& tableView,
                                           const std::shared_ptr<NSIndexPath>& indexPath) override;

protected:
    PSListController();
    void loadView() override;
    void viewDidLayoutSubviews() override;
    // While a row stays selected.
    bool waitsForKey() const override;
    bool tableView_shouldHighlightRowAtIndexPath(UITableView& tableView,
                                                 const std::shared_ptr<NSIndexPath>& indexPath) override;
    std::optional<PSSpecifierList> _specifiers;

private:
    struct State; // kit/settings_framework/list_state.h
    std::unique_ptr<State> m_list;
};
