#include "tests/kit/tables/TableTest.h"

namespace {

using TableChanges = TableTest;

TEST_F(TableChanges, ReloadOfARowIsSynchronousAndGivesTheOldCellBackAfterwards) {
    show({{"a", "b", "c"}});
    const auto old = cell(1);
    rows->sections = {{"a", "B", "c"}};

    table->reloadRowsAtIndexPaths_withRowAnimation({at(1)}, UITableViewRowAnimationFade);

    EXPECT_EQ(cell(1)->textLabel()->text(), "B");
    EXPECT_NE(cell(1), old);
    EXPECT_FALSE(old->superview());
    // Free for the next one that is asked for.
    table->reloadRowsAtIndexPaths_withRowAnimation({at(0)}, UITableViewRowAnimationNone);
    EXPECT_EQ(cell(0), old);
}

TEST_F(TableChanges, ReloadOfRowsThatDoNotExistOrAreNotOnScreenAsksForNothing) {
    show({numbered(100)});
    const int before = rows->asked;

    table->reloadRowsAtIndexPaths_withRowAnimation({at(50), at(-1), at(100), at(0, 7), nullptr},
                                                   UITableViewRowAnimationFade);

    EXPECT_EQ(rows->asked, before);
}

TEST_F(TableChanges, ReloadedRowStaysSelected) {
    show({{"a", "b"}});
    table->selectRowAtIndexPath_animated(at(1), /*animated=*/false);

    table->reloadRowsAtIndexPaths_withRowAnimation({at(1)}, UITableViewRowAnimationFade);

    EXPECT_TRUE(cell(1)->isSelected());
}

TEST_F(TableChanges, FadeIsLooksOnly) {
    show({{"a"}});

    table->reloadRowsAtIndexPaths_withRowAnimation({at(0)}, UITableViewRowAnimationFade);

    EXPECT_EQ(cell(0)->contentView()->alpha(), 1);
    EXPECT_TRUE(touches.settle(1));
}

TEST_F(TableChanges, InsertedRowsAreThereAtOnceAndMoveTheOthers) {
    show({{"a", "b", "c"}});
    const auto b = cell(1);
    rows->sections = {{"a", "new", "b", "c"}};

    table->insertRowsAtIndexPaths_withRowAnimation({at(1)}, UITableViewRowAnimationFade);

    EXPECT_EQ(titles(), "a new b c");
    EXPECT_EQ(cell(2), b);
    EXPECT_EQ(written(b->frame()), written(table->rectForRowAtIndexPath(at(2))));
    EXPECT_EQ(order(), "a new b c");
    EXPECT_TRUE(touches.settle(1));
    EXPECT_EQ(cell(1)->alpha(), 1);
}

TEST_F(TableChanges, DeletedRowIsGoneAtOnceAndItsCellAfterTheMovement) {
    show({{"a", "b", "c"}});
    const auto b = cell(1);
    rows->sections = {{"a", "c"}};

    table->deleteRowsAtIndexPaths_withRowAnimation({at(1)}, UITableViewRowAnimationFade);

    EXPECT_EQ(titles(), "a c");
    EXPECT_EQ(table->numberOfRowsInSection(0), 2);
    EXPECT_EQ(b->superview(), table);
    EXPECT_TRUE(touches.settle(1));
    EXPECT_FALSE(b->superview());
}

TEST_F(TableChanges, ChangeWithoutAnimationLeavesNothingBehind) {
    show({{"a", "b", "c"}});
    const auto b = cell(1);
    rows->sections = {{"a", "c"}};

    table->deleteRowsAtIndexPaths_withRowAnimation({at(1)}, UITableViewRowAnimationNone);
    scene.prepareFrame();

    EXPECT_EQ(titles(), "a c");
    EXPECT_FALSE(b->superview());
    EXPECT_EQ(written(cell(1)->frame()), written(table->rectForRowAtIndexPath(at(1))));
}

TEST_F(TableChanges, SelectionFollowsItsRow) {
    show({{"a", "b", "c"}});
    table->selectRowAtIndexPath_animated(at(1), /*animated=*/false);

    rows->sections = {{"new", "a", "b", "c"}};
    table->insertRowsAtIndexPaths_withRowAnimation({at(0)}, UITableViewRowAnimationFade);
    EXPECT_EQ(table->indexPathForSelectedRow()->row(), 2);

    rows->sections = {{"a", "b", "c"}};
    table->deleteRowsAtIndexPaths_withRowAnimation({at(0)}, UITableViewRowAnimationFade);
    EXPECT_EQ(table->indexPathForSelectedRow()->row(), 1);

    rows->sections = {{"a", "c"}};
    table->deleteRowsAtIndexPaths_withRowAnimation({at(1)}, UITableViewRowAnimationFade);
    EXPECT_FALSE(table->indexPathForSelectedRow());
}

TEST_F(TableChanges, RowsPushedOffTheScreenLeaveItsCellsForReuse) {
    show({numbered(100)});
    auto& section = rows->sections[0];
    for (int i = 0; i < 50; ++i) {
        section.insert(section.begin() + 1, "new");
        table->insertRowsAtIndexPaths_withRowAnimation({at(1)}, UITableViewRowAnimationFade);
        touches.settle(1);
    }

    EXPECT_EQ(table->visibleCells().size(), 11u);
    EXPECT_LE(table->subviews().size(), 13u);
}

TEST_F(TableChanges, DeletingAtTheEndWhileScrolledToItShowsTheRowsAbove) {
    show({numbered(50)});
    table->setContentOffset({0, table->contentSize().height - 480});
    auto& section = rows->sections[0];
    NSIndexPathList gone;
    for (long row = 20; row < 50; ++row) gone.push_back(at(row));
    section.resize(20);

    table->deleteRowsAtIndexPaths_withRowAnimation(gone, UITableViewRowAnimationFade);

    EXPECT_EQ(table->visibleCells().back()->textLabel()->text(), "19");
    EXPECT_TRUE(touches.settle(1));
    EXPECT_EQ(table->contentOffset().y, table->contentSize().height - 480);
}

TEST_F(TableChanges, MovementOfOneChangeDoesNotDisturbTheNext) {
    show({{"a", "b", "c", "d"}});
    const auto c = cell(2);
    rows->sections = {{"a", "b", "d"}};
    table->deleteRowsAtIndexPaths_withRowAnimation({at(2)}, UITableViewRowAnimationFade);
    touches.wait(0.1);

    rows->sections = {{"a", "b", "c", "d"}};
    table->insertRowsAtIndexPaths_withRowAnimation({at(2)}, UITableViewRowAnimationFade);
    touches.settle(1);

    EXPECT_EQ(order(), "a b c d");
    for (long row = 0; row < 4; ++row) {
        EXPECT_EQ(cell(row)->alpha(), 1);
        EXPECT_EQ(written(cell(row)->frame()), written(table->rectForRowAtIndexPath(at(row))));
    }
}

TEST_F(TableChanges, TableThatDiesWhileItMovesTakesNothingAlong) {
    show({{"a", "b"}});
    rows->sections = {{"a"}};
    table->deleteRowsAtIndexPaths_withRowAnimation({at(1)}, UITableViewRowAnimationFade);
    table->removeFromSuperview();
    const std::weak_ptr<UITableView> weak = table;
    table.reset();

    EXPECT_TRUE(touches.settle(1));
    EXPECT_TRUE(weak.expired());
}

TEST_F(TableChanges, CountsThatDoNotMatchTheChangeAreTakenFromTheDataSource) {
    show({{"a", "b", "c"}});
    rows->sections = {{"x"}};

    table->insertRowsAtIndexPaths_withRowAnimation({at(7)}, UITableViewRowAnimationFade);
    touches.settle(1);

    EXPECT_EQ(table->numberOfRowsInSection(0), 1);
    EXPECT_EQ(table->visibleCells().size(), 1u);
}

} // namespace
