#include "tests/kit/tables/TableTest.h"

#include <set>

namespace {

using TableRows = TableTest;

TEST_F(TableRows, OnlyRowsOnScreenHaveCells) {
    show({numbered(10'000)});

    EXPECT_EQ(titles(), "0 1 2 3 4 5 6 7 8 9 10");
    EXPECT_EQ(rows->asked, 11);
    EXPECT_TRUE(cell(0));
    EXPECT_FALSE(cell(5000));
    EXPECT_FALSE(cell(-1));
    EXPECT_FALSE(cell(10'000));
    EXPECT_FALSE(table->cellForRowAtIndexPath(nullptr));
}

TEST_F(TableRows, CellsAreReusedWhileScrolling) {
    show({numbered(1000)});
    std::set<UITableViewCell*> made;
    for (int step = 0; step < 200; ++step) {
        table->setContentOffset({0, step * 150.0});
        for (const auto& shown : table->visibleCells()) made.insert(shown.get());
    }

    EXPECT_LE(made.size(), 24u);
    ASSERT_TRUE(cell(680));
    EXPECT_EQ(cell(680)->textLabel()->text(), "680");
}

TEST_F(TableRows, CellForReuseIsBackInItsFirstState) {
    show({numbered(100)});
    table->selectRowAtIndexPath_animated(at(0), /*animated=*/false);
    const auto first = cell(0);
    EXPECT_TRUE(first->isSelected());

    table->setContentOffset({0, 1000});
    bool isReused = false;
    for (const auto& shown : table->visibleCells()) {
        isReused = isReused || shown == first;
        EXPECT_FALSE(shown->isSelected());
    }
    EXPECT_TRUE(isReused);

    table->setContentOffset({0, 0});
    EXPECT_TRUE(cell(0)->isSelected());
}

TEST_F(TableRows, IdentifierWithoutClassAndWithoutFreeCellGivesNil) {
    show({numbered(3)});

    EXPECT_FALSE(table->dequeueReusableCellWithIdentifier_forIndexPath("other", at(0)));
}

TEST_F(TableRows, RegisteredClassIsMadeByTheRuntime) {
    show({numbered(1)});

    const auto made = table->dequeueReusableCellWithIdentifier_forIndexPath("row", at(0));

    ASSERT_TRUE(made);
    EXPECT_EQ(made->reuseIdentifier(), "row");
    EXPECT_TRUE(made->isKindOfClass(objc_getClass("UITableViewCell")));
}

TEST_F(TableRows, DataSourceThatHasNoCellGetsAnEmptyOne) {
    show({numbered(1)});
    table->registerClass_forCellReuseIdentifier(nullptr, "row");
    rows->sections = {numbered(20)};

    table->reloadData();

    EXPECT_TRUE(cell(0));
}

TEST_F(TableRows, HeadersRowsAndFootersStandInReadingOrder) {
    show({{"a", "b"}, {"c"}});
    rows->headers = {"H0", "H1"};
    rows->footers = {"F0"};

    table->reloadData();
    scene.prepareFrame();

    EXPECT_EQ(order(), "H0 a b F0 H1 c");
}

TEST_F(TableRows, TextsAreMeasuredAnewForPixelsOfAnotherSize) {
    show({{"a"}, {"b"}});
    rows->footers = {"A footer of so many words that a line of this window holds only the first of them, and two more "
                     "lines, or three, hold the others."};
    table->reloadData();
    const auto footer = [&] {
        for (const auto& view : table->subviews())
            if (const auto label = std::dynamic_pointer_cast<UILabel>(view)) return label;
        return std::shared_ptr<UILabel>();
    };
    for (const double scale : {2.0, 1.0, 3.0}) {
        scene.resize({320, 480}, scale);
        scene.prepareFrame();
        const auto label = footer();
        ASSERT_TRUE(label);
        EXPECT_NEAR(label->bounds().size.height, label->sizeThatFits({label->bounds().size.width, 1e6}).height, 1)
            << scale;
    }
}

TEST_F(TableRows, OrderOfTheTreeFollowsScrollingInBothDirections) {
    show({numbered(100)});
    table->setContentOffset({0, 2000});
    scene.prepareFrame();
    table->setContentOffset({0, 1800});
    scene.prepareFrame();

    EXPECT_EQ(order(), titles());
}

TEST_F(TableRows, LongHeaderWrapsAndPushesTheRowsDown) {
    show({{"a"}});
    const double plain = table->rectForRowAtIndexPath(at(0)).origin.y;
    rows->headers = {"Connect your keyboard either with USB or Bluetooth (with the builtin Bluetooth pairing)."};
    table->reloadData();
    const double wrapped = table->rectForRowAtIndexPath(at(0)).origin.y;
    scene.resize({1024, 768}, 1);
    scene.prepareFrame();
    const double onOneLine = table->rectForRowAtIndexPath(at(0)).origin.y;

    EXPECT_GT(wrapped, onOneLine);
    EXPECT_GT(onOneLine, plain);
}

TEST_F(TableRows, RowsKeepAReadableWidthInTheMiddleOfAWideWindow) {
    show({{"a"}});
    EXPECT_EQ(written(table->rectForRowAtIndexPath(at(0))), "16,20 288x44");

    scene.resize({1024, 768}, 1);
    scene.prepareFrame();

    EXPECT_EQ(written(table->rectForRowAtIndexPath(at(0))), "212,20 600x44");
    EXPECT_EQ(written(cell(0)->frame()), "212,20 600x44");
}

TEST_F(TableRows, PlainRowsReachFromEdgeToEdge) {
    show({{"a", "b"}}, UITableViewStylePlain);

    EXPECT_EQ(written(cell(0)->frame()), "0,0 320x44");
    EXPECT_EQ(written(cell(1)->frame()), "0,44 320x44");
}

TEST_F(TableRows, ReloadDropsTheSelectionAndKeepsThePlace) {
    show({numbered(100)});
    table->selectRowAtIndexPath_animated(at(20), /*animated=*/false);
    table->setContentOffset({0, 700});

    table->reloadData();

    EXPECT_FALSE(table->indexPathForSelectedRow());
    EXPECT_EQ(table->contentOffset().y, 700);
    EXPECT_EQ(table->visibleCells().front()->textLabel()->text(), "15");
}

TEST_F(TableRows, ReloadOfAListThatShrankShowsItsEnd) {
    show({numbered(100)});
    table->setContentOffset({0, 3000});
    rows->sections = {numbered(20)};

    table->reloadData();
    scene.prepareFrame();

    EXPECT_EQ(table->visibleCells().back()->textLabel()->text(), "19");
    EXPECT_EQ(table->contentOffset().y, table->contentSize().height - 480);
}

TEST_F(TableRows, DataSourceThatReloadsWhileItIsAskedIsShownAsItIsThen) {
    show({numbered(3)});
    rows->onCell = [&] {
        rows->sections = {{"new"}};
        table->reloadData();
    };
    rows->sections = {{"old", "rows"}};

    table->reloadData();
    scene.prepareFrame();

    EXPECT_EQ(titles(), "new");
}

TEST_F(TableRows, DataSourceThatDiedLeavesAnEmptyTable) {
    show({numbered(3)});
    rows.reset();

    table->reloadData();
    scene.prepareFrame();

    EXPECT_EQ(table->numberOfSections(), 0);
    EXPECT_EQ(titles(), "");
}

TEST_F(TableRows, SectionsWithoutRowsAreSkippedOver) {
    show({{}, {"a"}, {}, {"b"}});

    EXPECT_EQ(titles(), "a b");
    EXPECT_EQ(table->numberOfRowsInSection(0), 0);
    EXPECT_EQ(table->numberOfRowsInSection(9), 0);
    EXPECT_EQ(table->indexPathForRowAtPoint({100, cell(0, 3)->center().y})->section(), 3);
}

TEST_F(TableRows, PointBesideTheCardsIsNoRow) {
    show({{"a"}});

    EXPECT_TRUE(table->indexPathForRowAtPoint({100, 40}));
    EXPECT_FALSE(table->indexPathForRowAtPoint({5, 40}));
    EXPECT_FALSE(table->indexPathForRowAtPoint({100, 5}));
    EXPECT_FALSE(table->indexPathForRowAtPoint({100, 64}));
}

TEST_F(TableRows, IndexPathsAreEqualByValue) {
    EXPECT_TRUE(at(3, 1)->isEqual(*at(3, 1)));
    EXPECT_FALSE(at(3, 1)->isEqual(*at(1, 3)));
}

} // namespace
