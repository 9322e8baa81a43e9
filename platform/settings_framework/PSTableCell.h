#pragma once

#include "platform/settings_framework/PSSpecifier.h"
#include "platform/uikit/UITableViewCell.h"

// The cell of a settings row. Made by the class in the row's "cellClass", else by the row's kind; kept in the row's
// "cellObject" as long as the row lives in the list, so that a look given to it survives a reload. A reload that builds
// the same row anew gives it the same cell.
class PSTableCell : public UITableViewCell {
    NS_CLASS(PSTableCell)
public:
    ~PSTableCell() override;

    // "initWithStyle:reuseIdentifier:specifier:" to the runtime, by which the framework makes cells.
    std::shared_ptr<PSTableCell> initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                                                         const std::shared_ptr<PSSpecifier>& specifier);

    // nil when the row is gone.
    std::shared_ptr<PSSpecifier> specifier() const { return m_specifier.lock(); }
    // The framework's, when a rebuilt list has the same row as another object; a refresh follows.
    void setSpecifier(const std::shared_ptr<PSSpecifier>& specifier) { m_specifier = specifier; }

    // Called by the framework with the preference value (nil when absent) when the cell was made and on each reload of
    // its row. By default shows the value's text.
    virtual void setValue(const id& value);
    // Title and the like, from the row; called by the framework before `setValue`.
    virtual void refreshCellContentsWithSpecifier(const std::shared_ptr<PSSpecifier>& specifier);

protected:
    PSTableCell();
    std::weak_ptr<PSSpecifier> m_specifier;
};
