#pragma once

// What a table view keeps, and what it does with it, by aspect: table_rows.cpp (cells on screen), table_changes.cpp
// (rows that come and go), table_selection.cpp (touches, selection, focus),
// table_focus.cpp (focus that outlives cells).

#include "kit/dispatch/run_loop_sources.h"
#include "kit/tables/TableGeometry.h"
#include "platform/uikit/UITableView.h"

#include <functional>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace seat {

// A view of the table's content, in reading order.
struct TableItem {
    enum class Kind { Header, Row, Footer };
    long section = 0;
    Kind kind = Kind::Row;
    long row = 0;
    friend auto operator<=>(const TableItem&, const TableItem&) = default;
};

inline TableItem itemFor(TableRow row) { return {row.section, TableItem::Kind::Row, row.row}; }

} // namespace seat

struct UITableView::State {
    explicit State(UITableView& owner) : table(owner) {}
    ~State() { seat::removeSource(pressTimer); }

    // Rows.
    void askForSections();
    void layOut();
    // With large text rows are as high as their own text wants them: each is asked for its cell.
    bool measuresRows() const;
    double measuredHeight(seat::TableRow row, double width);
    bool areRowsOutgrown() const; // a cell on screen wants another height than it has
    // Brings the cells on screen up to date with the data and the place; cheap when they are.
    void update();
    // As far as the table's width and the screen's pixels go.
    bool isLaidOutForNow() const;
    void showVisibleItems();
    std::shared_ptr<UITableViewCell> cellAt(seat::TableRow row) const; // nil when not on screen
    std::optional<seat::TableRow> rowOf(const UIView& view) const;     // of the cell that is or holds the view
    std::shared_ptr<UITableViewCell> askForCell(seat::TableRow row);
    void showCell(seat::TableRow row, const std::shared_ptr<UITableViewCell>& cell);
    void recycle(const std::shared_ptr<UITableViewCell>& cell);
    void recycleAll();
    // All rows are asked for anew. A cell that no pool takes stays in its place until then: handed out again for its
    // row it has never been away, and keeps the finger and the focus that are on it.
    void putAside();
    void recycleAside(); // what was not handed out again
    void clampOffset();
    std::shared_ptr<UITableViewCell> dequeue(const std::string& identifier);

    // Changes. `newRow` says where an old row stands afterwards, nothing when it has gone; `isNew` which rows came.
    struct Change {
        std::function<std::optional<seat::TableRow>(seat::TableRow)> newRow;
        std::function<bool(seat::TableRow)> isNew;
        bool animated = false;
    };
    void apply(const Change& change);
    // A cell on its way out: to where its row stands now, out of sight, or to nothing where it is.
    struct LeavingCell {
        std::shared_ptr<UITableViewCell> cell;
        std::optional<CGRect> target;
    };

    // Selection.
    bool canSelect(seat::TableRow row) const;
    void select(seat::TableRow row, bool animated);
    void deselect(bool animated);
    void endPress(bool animated);
    // The row under the finger; nothing when its cell has gone, or says something else by now.
    std::optional<seat::TableRow> pressedRow() const;

    // Focus (table_focus.cpp). It stays with a row that is reloaded, or scrolled away and back.
    void loseFocus(seat::TableRow row, const UITableViewCell& cell); // the cell will stand for the row no more
    void forgetFocus(const UITableViewCell& cell);                   // it is given to another row
    void regainFocus();
    void showPress();

    std::shared_ptr<UITableView> strong() const {
        return std::static_pointer_cast<UITableView>(table.shared_from_this());
    }

    UITableView& table;
    std::weak_ptr<UITableViewDataSource> dataSource;
    std::weak_ptr<UITableViewDelegate> delegate;
    long style = UITableViewStylePlain;

    seat::TableGeometry geometry;
    double laidOutWidth = -1;
    double laidOutScale = 0;  // of the screen: on pixels of another size texts have another height
    unsigned laidOutText = 0; // its generation
    bool isMeasuring = false;
    bool isLoaded = false;
    bool isShowing = false;
    std::uint64_t generation = 0; // of the data; a data source may change it while it is asked
    std::map<seat::TableItem, std::shared_ptr<UIView>> items;                       // on screen
    std::vector<std::pair<seat::TableRow, std::shared_ptr<UITableViewCell>>> aside; // on screen until rows are shown
    std::unordered_map<std::string, double> measured; // heights of texts at the laid out width

    std::unordered_map<std::string, Class> classes;
    std::unordered_map<std::string, std::vector<std::shared_ptr<UITableViewCell>>> free; // only identifiers asked for

    std::optional<seat::TableRow> selected;
    std::weak_ptr<UITableViewCell> pressed; // under a finger
    std::string pressedTitle;               // what it said when the finger came down
    seat::SourceToken pressTimer = 0;

    struct LostFocus {
        seat::TableRow row;
        std::weak_ptr<UIView> view;    // what had it, until its cell is given to another row
        std::weak_ptr<UIView> instead; // what has had it since
    };
    std::optional<LostFocus> lostFocus;

private:
    void insertInOrder(const seat::TableItem& item, const std::shared_ptr<UIView>& view);
    void showTexts(long section, double top, double bottom);
    void showText(const seat::TableItem& item, const std::string& text, CGRect frame);
    void removeItemsOutside(double top, double bottom);
    void placeCell(seat::TableRow row, UITableViewCell& cell);
    void animateIn(const Change& change, const std::map<const UIView*, CGRect>& startFrames, double shift);
    void animateOut(const std::vector<LeavingCell>& leaving);
};
