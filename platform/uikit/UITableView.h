#pragma once

#include "platform/uikit/NSIndexPath.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UITableViewCell.h"

#include <memory>
#include <string>
#include <vector>

class UITableView;

// In cards with space between the sections, or from edge to edge.
enum UITableViewStyle : long { UITableViewStylePlain = 0, UITableViewStyleGrouped = 1 };
enum UITableViewRowAnimation : long { UITableViewRowAnimationFade = 0, UITableViewRowAnimationNone = 5 };

using NSIndexPathList = std::vector<std::shared_ptr<NSIndexPath>>;

// What the table shows. Asked on the main thread, for the counts once a reload, for a cell when its row comes on
// screen; a negative count is none. It may not change its answers without telling the table.
class UITableViewDataSource {
public:
    virtual ~UITableViewDataSource() = default;
    virtual long numberOfSectionsInTableView(UITableView& tableView) = 0;
    virtual long tableView_numberOfRowsInSection(UITableView& tableView, long section) = 0;
    virtual std::shared_ptr<UITableViewCell>
    tableView_cellForRowAtIndexPath(UITableView& tableView, const std::shared_ptr<NSIndexPath>& indexPath) = 0;
    // Above and below a section's rows, wrapped. Empty: none.
    virtual std::string tableView_titleForHeaderInSection(UITableView& tableView, long section);
    virtual std::string tableView_titleForFooterInSection(UITableView& tableView, long section);
};

// Who hears what the user does. Main thread.
class UITableViewDelegate {
public:
    virtual ~UITableViewDelegate() = default;
    // The row is selected by now, and stays so until somebody deselects it. May reload the table.
    virtual void tableView_didSelectRowAtIndexPath(UITableView& tableView,
                                                   const std::shared_ptr<NSIndexPath>& indexPath);
    // False: a finger on the row does nothing. True by default.
    virtual bool tableView_shouldHighlightRowAtIndexPath(UITableView& tableView,
                                                         const std::shared_ptr<NSIndexPath>& indexPath);
};

// Rows in sections. Cells are made for the rows on screen only and reused: the data source is asked for a row's cell
// when it comes on screen, and the cell is free again when it has left it. A finger on a row highlights it; lifted
// there it selects the row, in place of the row selected before, and tells the delegate; moved away, or when the table
// begins to scroll, it does nothing. A path that does not exist, or is nil, selects, scrolls and finds nothing. Main
// thread.
class UITableView : public UIScrollView {
    NS_CLASS(UITableView)
public:
    ~UITableView() override;

    std::shared_ptr<UITableView> initWithFrame_style(CGRect frame, long style);

    // Both weak. Another data source means everything is asked for again.
    void setDataSource(const std::shared_ptr<UITableViewDataSource>& source);
    void setDelegate(const std::shared_ptr<UITableViewDelegate>& delegate);
    // A UITableViewStyle, as it was made with.
    long style() const;

    // A class that is derived from UITableViewCell, made by "initWithStyle:reuseIdentifier:"; nil takes it back.
    void registerClass_forCellReuseIdentifier(Class cls, const std::string& identifier);
    // A cell to reuse, or a new one of the registered class; nil when no class is registered and none is free.
    std::shared_ptr<UITableViewCell>
    dequeueReusableCellWithIdentifier_forIndexPath(const std::string& identifier,
                                                   const std::shared_ptr<NSIndexPath>& indexPath);

    // Asks the data source for everything again; the selection goes.
    void reloadData();
    // Synchronous: the data source is asked for the new cells before it returns; the animation is only looks. Paths
    // that do not exist are skipped.
    void reloadRowsAtIndexPaths_withRowAnimation(const NSIndexPathList& indexPaths, long animation);
    // The data source has changed by these rows already.
    void insertRowsAtIndexPaths_withRowAnimation(const NSIndexPathList& indexPaths, long animation);
    void deleteRowsAtIndexPaths_withRowAnimation(const NSIndexPathList& indexPaths, long animation);

    // Neither tells the delegate. nil selects nothing; only the selected row is deselected.
    void selectRowAtIndexPath_animated(const std::shared_ptr<NSIndexPath>& indexPath, bool animated);
    void deselectRowAtIndexPath_animated(const std::shared_ptr<NSIndexPath>& indexPath, bool animated);
    // nil when none is.
    std::shared_ptr<NSIndexPath> indexPathForSelectedRow() const;
    // nil when the row is not on screen.
    std::shared_ptr<UITableViewCell> cellForRowAtIndexPath(const std::shared_ptr<NSIndexPath>& indexPath) const;
    // nil, and an empty rectangle, for what is not there. Points are the table's, scrolled with the content.
    std::shared_ptr<NSIndexPath> indexPathForCell(const UITableViewCell* cell) const;
    std::shared_ptr<NSIndexPath> indexPathForRowAtPoint(CGPoint point) const;
    CGRect rectForRowAtIndexPath(const std::shared_ptr<NSIndexPath>& indexPath) const;
    // From the top.
    std::vector<std::shared_ptr<UITableViewCell>> visibleCells() const;
    // What the data source said last; 0 for a section that does not exist.
    long numberOfSections() const;
    long numberOfRowsInSection(long section) const;
    // As little as needed; a section's first row brings its header along.
    void scrollToRowAtIndexPath_animated(const std::shared_ptr<NSIndexPath>& indexPath, bool animated);

    // What a tap on the row does: selects it and tells the delegate.
    void activateRow(const std::shared_ptr<NSIndexPath>& indexPath);

    void layoutSubviews() override;
    UIAccessibilityRole accessibilityRole() const override;

protected:
    UITableView();
    void contentOffsetChanged() override;
    void touchesBegan_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesMoved_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesEnded_withEvent(const UITouchList& touches, UIEvent& event) override;
    void touchesCancelled_withEvent(const UITouchList& touches, UIEvent& event) override;
    std::shared_ptr<UIView> focusNeighbour(const UIView& focused, bool forward) override;

private:
    struct State; // kit/tables/table_state.h
    std::unique_ptr<State> m_table;
};
