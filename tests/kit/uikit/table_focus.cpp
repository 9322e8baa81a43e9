#include "kit/dispatch/main_queue.h"
#include "kit/uikit/hid_keys.h"
#include "tests/kit/uikit/SceneTest.h"

namespace {

namespace hid = seat::hid;

// Rows that tell their number, in cells that are reused, or each in a cell of its own.
class NumberedRows final : public UITableViewController {
    NS_CLASS(NumberedRows)
public:
    std::shared_ptr<NumberedRows> init() {
        if (!UITableViewController::initWithStyle(UITableViewStyleGrouped)) return nullptr;
        tableView()->registerClass_forCellReuseIdentifier(UITableViewCell::classObject(), "cell");
        return self(this);
    }
    long numberOfSectionsInTableView(UITableView&) override { return 1; }
    long tableView_numberOfRowsInSection(UITableView&, long) override { return rows; }
    std::shared_ptr<UITableViewCell>
    tableView_cellForRowAtIndexPath(UITableView& table, const std::shared_ptr<NSIndexPath>& path) override {
        auto cell = keepsCells ? kept[path->row()] : table.dequeueReusableCellWithIdentifier_forIndexPath("cell", path);
        if (!cell) cell = kept[path->row()] = UITableViewCell::alloc()->initWithStyle_reuseIdentifier(0, "kept");
        cell->textLabel()->setText("row " + std::to_string(path->row()));
        return cell;
    }
    void tableView_didSelectRowAtIndexPath(UITableView&, const std::shared_ptr<NSIndexPath>& path) override {
        chosen += std::to_string(path->row()) + " ";
    }

    long rows = 40;
    bool keepsCells = false;
    std::map<long, std::shared_ptr<UITableViewCell>> kept;
    std::string chosen;
};
NS_CLASS_IMPLEMENTATION(NumberedRows, UITableViewController)

class TableFocus : public SceneTest {
protected:
    TableFocus() {
        page = NumberedRows::alloc()->init();
        scene.window()->setRootViewController(page);
        scene.prepareFrame();
    }
    void goDown(int times) {
        for (int i = 0; i < times; ++i) touches.key(hid::down);
    }
    std::string focused() {
        scene.prepareFrame();
        const auto view = scene.window()->focusedView();
        return view ? view->accessibilityLabel() : "none";
    }

    std::shared_ptr<NumberedRows> page;
};

} // namespace

TEST_F(TableFocus, ArrowsReachRowsThatAreNotOnScreenYet) {
    goDown(31);

    EXPECT_EQ(focused(), "row 30");
    EXPECT_GT(page->tableView()->contentOffset().y, 500);
    touches.key(hid::up);
    EXPECT_EQ(focused(), "row 29");
}

TEST_F(TableFocus, RowKeepsTheFocusWhenItIsReloaded) {
    goDown(3);
    const auto before = scene.window()->focusedView();
    const auto path = NSIndexPath::indexPathForRow_inSection(2, 0);

    page->tableView()->reloadRowsAtIndexPaths_withRowAnimation({path}, UITableViewRowAnimationNone);
    EXPECT_EQ(focused(), "row 2");
    EXPECT_NE(scene.window()->focusedView(), before);
    page->tableView()->reloadData();
    EXPECT_EQ(focused(), "row 2");
}

TEST_F(TableFocus, FocusFollowsItsCellToAnotherRow) {
    page->keepsCells = true;
    page->tableView()->reloadData();
    goDown(3);
    const auto cell = scene.window()->focusedView();

    std::swap(page->kept[2], page->kept[4]);
    page->tableView()->reloadData();

    EXPECT_EQ(focused(), "row 4");
    EXPECT_EQ(scene.window()->focusedView(), cell);
}

TEST_F(TableFocus, RowThatIsScrolledAwayHasTheFocusWhenItReturns) {
    goDown(3);

    touches.wheel({100, 100}, {0, 1000});
    EXPECT_EQ(focused(), "none");
    touches.wheel({100, 100}, {0, -1000});
    EXPECT_EQ(focused(), "row 2");
}

TEST_F(TableFocus, FocusThatWentElsewhereIsNotTakenBack) {
    goDown(3);
    touches.wheel({100, 100}, {0, 1000});
    scene.prepareFrame();
    touches.key(hid::tab);
    const std::string elsewhere = focused();
    EXPECT_NE(elsewhere, "none");

    touches.wheel({100, 100}, {0, -60});

    EXPECT_EQ(focused(), elsewhere);
}

TEST_F(TableFocus, KeysAreARowsWhileItStaysSelected) {
    goDown(2);
    touches.key(hid::enter);
    EXPECT_EQ(page->chosen, "1 ");

    touches.key(hid::down);
    touches.key(hid::enter);
    EXPECT_EQ(focused(), "row 1");
    EXPECT_EQ(page->chosen, "1 ");

    // The row is let go between the press of a key and its release.
    touches.keyDown(hid::enter);
    page->tableView()->deselectRowAtIndexPath_animated(NSIndexPath::indexPathForRow_inSection(1, 0), false);
    touches.keyUp(hid::enter);
    seat::drainMainQueue();
    EXPECT_EQ(page->chosen, "1 ");
    touches.key(hid::down);
    EXPECT_EQ(focused(), "row 2");
}

TEST_F(TableFocus, TapOnARowChoosesItAndADragDoesNot) {
    touches.drag({100, 300}, {100, 200});
    touches.settle();
    EXPECT_EQ(page->chosen, "");

    const auto cell = page->tableView()->visibleCells().at(2);
    touches.tap(*cell);
    EXPECT_EQ(page->chosen, std::to_string(page->tableView()->indexPathForCell(cell.get())->row()) + " ");
}
