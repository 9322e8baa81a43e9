#pragma once

#include "tests/kit/uikit/SceneTest.h"

// Rows by section, with a record of what the table asked for and told.
class Rows : public NSObject, public UITableViewDataSource, public UITableViewDelegate {
    NS_CLASS(Rows)
public:
    std::shared_ptr<Rows> init() { return NSObject::init() ? self(this) : nullptr; }

    long numberOfSectionsInTableView(UITableView&) override { return std::ssize(sections); }
    long tableView_numberOfRowsInSection(UITableView&, long section) override {
        return std::ssize(sections.at(static_cast<std::size_t>(section)));
    }
    std::shared_ptr<UITableViewCell> tableView_cellForRowAtIndexPath(UITableView& table,
                                                                     const std::shared_ptr<NSIndexPath>& path) override;
    std::string tableView_titleForHeaderInSection(UITableView&, long section) override {
        return section < std::ssize(headers) ? headers[static_cast<std::size_t>(section)] : std::string();
    }
    std::string tableView_titleForFooterInSection(UITableView&, long section) override {
        return section < std::ssize(footers) ? footers[static_cast<std::size_t>(section)] : std::string();
    }
    void tableView_didSelectRowAtIndexPath(UITableView& table, const std::shared_ptr<NSIndexPath>& path) override;
    bool tableView_shouldHighlightRowAtIndexPath(UITableView&, const std::shared_ptr<NSIndexPath>& path) override {
        return path->row() != lockedRow;
    }

    std::vector<std::vector<std::string>> sections;
    std::vector<std::string> headers;
    std::vector<std::string> footers;
    long lockedRow = -1;
    int asked = 0; // cells
    std::string log;
    std::function<void()> onCell;   // before a cell is given
    std::function<void()> onSelect; // after a row was selected
};

// One table that fills a window of 320x480 points.
class TableTest : public SceneTest {
protected:
    void show(std::vector<std::vector<std::string>> sections, long style = UITableViewStyleGrouped);
    static std::vector<std::string> numbered(long count);
    static std::shared_ptr<NSIndexPath> at(long row, long section = 0) {
        return NSIndexPath::indexPathForRow_inSection(row, section);
    }
    std::shared_ptr<UITableViewCell> cell(long row, long section = 0) const {
        return table->cellForRowAtIndexPath(at(row, section));
    }
    // The cells on screen, from top to bottom.
    std::string titles() const;
    // The subviews in the order of the tree, labels and cells, by their texts.
    std::string order() const;

    std::shared_ptr<Rows> rows;
    std::shared_ptr<UITableView> table;
};
