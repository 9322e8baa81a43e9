#include "kit/uikit/hid_keys.h"
#include "kit/uikit/keyboard.h"
#include "tests/kit/tables/TableTest.h"

namespace {

class TableSelection : public TableTest {
protected:
    CGPoint middle(long row) const { return cell(row)->convertPoint_toView({100, 22}, nullptr); }
};

TEST_F(TableSelection, TapSelectsAndTheRowStaysSelected) {
    show({numbered(3)});

    touches.tap(*cell(1));

    EXPECT_EQ(rows->log, "selected(0,1) ");
    EXPECT_TRUE(cell(1)->isSelected());
    EXPECT_EQ(table->indexPathForSelectedRow()->row(), 1);
}

TEST_F(TableSelection, OtherRowTakesTheSelectionOver) {
    show({numbered(3)});
    touches.tap(*cell(1));

    touches.tap(*cell(2));

    EXPECT_FALSE(cell(1)->isSelected());
    EXPECT_TRUE(cell(2)->isSelected());
}

TEST_F(TableSelection, SelectedRowCanBeTappedAgain) {
    show({numbered(3)});

    touches.tap(*cell(1));
    touches.tap(*cell(1));

    EXPECT_EQ(rows->log, "selected(0,1) selected(0,1) ");
}

TEST_F(TableSelection, DeselectingConcernsTheNamedRowAlone) {
    show({numbered(3)});
    touches.tap(*cell(1));

    table->deselectRowAtIndexPath_animated(at(0), /*animated=*/true);
    EXPECT_TRUE(cell(1)->isSelected());
    table->deselectRowAtIndexPath_animated(at(1), /*animated=*/true);

    EXPECT_FALSE(cell(1)->isSelected());
    EXPECT_FALSE(table->indexPathForSelectedRow());
}

TEST_F(TableSelection, PressShowsAfterAShortWhile) {
    show({numbered(3)});

    touches.press(middle(1));
    EXPECT_FALSE(cell(1)->isHighlighted());
    touches.wait(0.1);
    EXPECT_TRUE(cell(1)->isHighlighted());
    touches.release();

    EXPECT_FALSE(cell(1)->isHighlighted());
    EXPECT_TRUE(cell(1)->isSelected());
}

TEST_F(TableSelection, ScrollingCancelsThePress) {
    show({numbered(100)});
    touches.press(middle(5));
    touches.wait(0.1);
    EXPECT_TRUE(cell(5)->isHighlighted());

    touches.move({100, 150});
    touches.move({100, 100});
    EXPECT_FALSE(cell(5)->isHighlighted());
    touches.release();

    EXPECT_EQ(rows->log, "");
    EXPECT_GT(table->contentOffset().y, 0);
}

TEST_F(TableSelection, FingerThatLeavesTheRowSelectsNothing) {
    show({numbered(3)});
    touches.press(middle(1));
    touches.wait(0.1);

    touches.move({2, middle(1).y});
    EXPECT_FALSE(cell(1)->isHighlighted());
    touches.release();

    EXPECT_EQ(rows->log, "");
}

TEST_F(TableSelection, RowThatMayNotBeSelectedStaysAsItIs) {
    show({numbered(3)});
    rows->lockedRow = 1;

    touches.press(middle(1));
    touches.wait(0.1);
    EXPECT_FALSE(cell(1)->isHighlighted());
    touches.release();

    EXPECT_EQ(rows->log, "");
    EXPECT_FALSE(cell(1)->isSelected());
}

TEST_F(TableSelection, CellWithoutInteractionOrSelectionStyleTakesNoTap) {
    show({numbered(3)});
    cell(0)->setUserInteractionEnabled(false);
    cell(1)->setSelectionStyle(UITableViewCellSelectionStyle::None);

    touches.tap(middle(0));
    touches.tap(middle(1));

    EXPECT_EQ(rows->log, "");
}

TEST_F(TableSelection, PressOnARowThatIsReloadedIsOver) {
    show({numbered(3)});
    touches.press(middle(1));

    table->reloadData();
    scene.prepareFrame();
    touches.wait(0.2);
    touches.release();

    EXPECT_EQ(rows->log, "");
    EXPECT_FALSE(cell(1)->isHighlighted());
}

TEST_F(TableSelection, TableThatDiesWhenARowIsSelectedIsLeftInPeace) {
    show({numbered(3)});
    rows->onSelect = [&] {
        table->removeFromSuperview();
        table.reset();
    };

    touches.tap({100, 40});

    EXPECT_EQ(rows->log, "selected(0,0) ");
    EXPECT_FALSE(table);
}

TEST_F(TableSelection, ActivatingARowIsWhatATapDoes) {
    show({numbered(100)});

    table->activateRow(at(60));
    table->activateRow(at(100));
    table->activateRow(nullptr);

    EXPECT_EQ(rows->log, "selected(0,60) ");
    EXPECT_TRUE(cell(0)->accessibilityActivate());
    EXPECT_EQ(rows->log, "selected(0,60) selected(0,0) ");
}

TEST_F(TableSelection, TheFrontScreenWaitsForAKeyWhileARowStaysSelected) {
    show({numbered(3)});
    const auto screen = UITableViewController::alloc()->initWithStyle(UITableViewStyleGrouped);
    screen->setView(table);
    scene.window()->setRootViewController(screen);
    EXPECT_FALSE(seat::frontScreenWaits(*scene.window()));

    table->selectRowAtIndexPath_animated(at(1), /*animated=*/false);

    EXPECT_TRUE(seat::frontScreenWaits(*scene.window()));
}

// What waits here takes the key and has done with it, as a row that learns a key does.
TEST_F(TableSelection, TheKeyThatAWaitingRowTakesIsTakenUntilItIsUp) {
    show({numbered(3)});
    const auto screen = UITableViewController::alloc()->initWithStyle(UITableViewStyleGrouped);
    screen->setView(table);
    scene.window()->setRootViewController(screen);
    touches.key(seat::hid::down);
    const auto focused = scene.window()->focusedView();

    table->selectRowAtIndexPath_animated(at(1), /*animated=*/false);
    touches.keyDown(seat::hid::down);
    table->deselectRowAtIndexPath_animated(at(1), /*animated=*/false);
    touches.keyDown(seat::hid::down, 0, /*isRepeat=*/true);
    touches.keyUp(seat::hid::down);
    EXPECT_EQ(scene.window()->focusedView(), focused);

    touches.key(seat::hid::down);
    EXPECT_NE(scene.window()->focusedView(), focused);
}

class Message : public UIView {
    NS_CLASS(Message)
public:
    std::shared_ptr<Message> initWithFrame(CGRect frame) { return UIView::initWithFrame(frame) ? self(this) : nullptr; }
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::Alert; }
};
NS_CLASS_IMPLEMENTATION(Message, UIView)

TEST_F(TableSelection, WhatOnlyTellsOfSomethingDoesNotKeepARowFromWaiting) {
    show({numbered(3)});
    const auto screen = UITableViewController::alloc()->initWithStyle(UITableViewStyleGrouped);
    screen->setView(table);
    scene.window()->setRootViewController(screen);
    table->selectRowAtIndexPath_animated(at(1), /*animated=*/false);
    const auto message = add<Message>({{0, 400}, {320, 60}});
    EXPECT_TRUE(seat::frontScreenWaits(*scene.window()));

    message->setAccessibilityViewIsModal(true);

    EXPECT_FALSE(seat::frontScreenWaits(*scene.window()));
}

class TableFocus : public TableSelection {
protected:
    std::string focused() const {
        const auto view = std::dynamic_pointer_cast<UITableViewCell>(scene.window()->focusedView());
        return view ? view->textLabel()->text() : std::string("none");
    }
};

TEST_F(TableFocus, KeysGoThroughAllRowsAndScrollThemIn) {
    show({numbered(40)});
    for (int i = 0; i < 40; ++i) {
        touches.key(seat::hid::down);
        EXPECT_EQ(focused(), std::to_string(i));
        const CGRect shown = scene.window()->focusedView()->convertRect_toView({{0, 0}, {10, 44}}, nullptr);
        EXPECT_GE(shown.origin.y, 0);
        EXPECT_LE(CGRectGetMaxY(shown), 480);
    }
    for (int i = 38; i >= 0; --i) {
        touches.key(seat::hid::up);
        EXPECT_EQ(focused(), std::to_string(i));
    }
    EXPECT_EQ(table->contentOffset().y, 0);
}

TEST_F(TableFocus, RowsThatCannotBeSelectedAreSteppedOver) {
    show({{"a", "b", "c"}});
    cell(1)->setSelectionStyle(UITableViewCellSelectionStyle::None);

    touches.key(seat::hid::down);
    touches.key(seat::hid::down);

    EXPECT_EQ(focused(), "c");
}

TEST_F(TableFocus, ControlInARowHasTheFocusInItsPlace) {
    show({{"a", "b", "c"}});
    const auto toggle = UISwitch::alloc()->init();
    cell(1)->setAccessoryView(toggle);
    cell(1)->setSelectionStyle(UITableViewCellSelectionStyle::None);
    scene.prepareFrame();

    touches.key(seat::hid::down);
    touches.key(seat::hid::down);
    EXPECT_EQ(scene.window()->focusedView(), toggle);
    touches.key(seat::hid::down);

    EXPECT_EQ(focused(), "c");
}

TEST_F(TableFocus, FocusLeavesTheTableAtItsEnds) {
    show({{"a", "b"}});
    table->setFrame({{0, 0}, {320, 300}});
    const auto below = add<UISwitch>({{10, 400}, {51, 31}});

    touches.key(seat::hid::down);
    touches.key(seat::hid::down);
    touches.key(seat::hid::down);
    EXPECT_EQ(scene.window()->focusedView(), below);
    touches.key(seat::hid::up);

    EXPECT_EQ(focused(), "b");
}

TEST_F(TableFocus, ReturnActivatesTheFocusedRow) {
    show({{"a", "b"}});
    touches.key(seat::hid::down);
    touches.key(seat::hid::down);

    touches.key(seat::hid::enter);

    EXPECT_EQ(rows->log, "selected(0,1) ");
}

} // namespace
