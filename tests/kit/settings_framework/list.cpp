#include "tests/kit/settings_framework/pages.h"

namespace {

class PageLists : public PageTest {
protected:
    PageLists() {
        writeResource(group("g1", "One") + item("PSButtonCell", "a", "A") + item("PSButtonCell", "b", "B") +
                      group("g2", "Two") + item("PSButtonCell", "c", "C"));
    }
    std::shared_ptr<PSSpecifier> row(const std::string& identifier, PSCellType kind = PSCellType::Button) const {
        auto made = PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
            "New " + identifier, page, SEL(), SEL(), nullptr, kind, nullptr);
        made->setProperty_forKey(identifier, "id");
        return made;
    }
    void insert(const std::shared_ptr<PSSpecifier>& inserted, const std::string& after, bool animated = false) {
        page->insertSpecifier_afterSpecifierID_animated(inserted, after, animated);
    }
};

TEST_F(PageLists, RowsComeFromTheResourceInItsOrder) {
    show();

    EXPECT_EQ(rows(), "[g1] a b [g2] c");
    EXPECT_EQ(shownTitles(), "A, B, C");
    EXPECT_EQ(page->title(), "Settings");
    EXPECT_EQ(page->indexOfSpecifierID("b"), 2);
    EXPECT_EQ(page->indexOfSpecifierID("none"), -1);
    EXPECT_EQ(page->indexOfSpecifier(nullptr), -1);
    EXPECT_FALSE(page->specifierForID(""));
}

TEST_F(PageLists, RowIsInsertedAfterItsAnchor) {
    show();

    insert(row("x"), "a");

    EXPECT_EQ(rows(), "[g1] a x b [g2] c");
    EXPECT_EQ(shownTitles(), "A, New x, B, C");
}

TEST_F(PageLists, AnchorThatIsNilOrAbsentMeansTheBeginning) {
    show();
    insert(row("x"), "none");
    EXPECT_EQ(rows(), "x [g1] a b [g2] c");

    page->insertSpecifier_afterSpecifier_animated(row("y"), nullptr);
    EXPECT_EQ(rows(), "y x [g1] a b [g2] c");

    page->insertSpecifier_afterSpecifier_animated(row("z"), row("unknown"));
    EXPECT_EQ(rows(), "z y x [g1] a b [g2] c");
    EXPECT_EQ(shownTitles(), "New z, New y, New x, A, B, C");
}

TEST_F(PageLists, RunKeepsItsOrder) {
    show();

    page->insertContiguousSpecifiers_afterSpecifierID_animated(
        {row("g", PSCellType::Group), row("x"), nullptr, row("y")}, "b");

    EXPECT_EQ(rows(), "[g1] a b [g] x y [g2] c");
    EXPECT_EQ(page->table()->numberOfSections(), 3);
}

TEST_F(PageLists, RowThatIsInTheListAlreadyMoves) {
    show();

    page->insertSpecifier_afterSpecifierID_animated(page->specifierForID("a"), "c", /*animated=*/true);
    EXPECT_EQ(rows(), "[g1] b [g2] c a");
    EXPECT_EQ(shownTitles(), "B, C, A");

    const auto b = page->specifierForID("b");
    page->insertContiguousSpecifiers_afterSpecifierID_animated({b, b}, "c");
    EXPECT_EQ(rows(), "[g1] [g2] c b a");
}

TEST_F(PageLists, RowInsertedAfterItselfStays) {
    show();

    insert(page->specifierForID("b"), "b");

    EXPECT_EQ(rows(), "[g1] a b [g2] c");
}

TEST_F(PageLists, NothingIsInsertedForNil) {
    show();

    insert(nullptr, "a");
    page->insertContiguousSpecifiers_afterSpecifierID_animated({nullptr, nullptr}, "a");
    page->insertContiguousSpecifiers_afterSpecifierID_animated({}, "a");

    EXPECT_EQ(rows(), "[g1] a b [g2] c");
}

TEST_F(PageLists, RemovingTakesTheRowAndAnAbsentOneNothing) {
    show();

    page->removeSpecifierID_animated("b");
    page->removeSpecifierID_animated("b");
    page->removeSpecifierID_animated("");

    EXPECT_EQ(rows(), "[g1] a [g2] c");
    EXPECT_EQ(shownTitles(), "A, C");
}

TEST_F(PageLists, RemovingAGroupJoinsItsRowsToTheOneBefore) {
    show();

    page->removeSpecifierID_animated("g2", /*animated=*/true);

    EXPECT_EQ(rows(), "[g1] a b c");
    EXPECT_EQ(page->table()->numberOfSections(), 1);
    EXPECT_EQ(shownTitles(), "A, B, C");
}

TEST_F(PageLists, AnimatedOrNotTheListHasChangedWhenTheCallReturns) {
    show();

    insert(row("x"), "a", /*animated=*/true);
    EXPECT_EQ(shownTitles(), "A, New x, B, C");
    page->removeSpecifierID_animated("x", /*animated=*/true);
    EXPECT_EQ(shownTitles(), "A, B, C");

    EXPECT_TRUE(touches.settle(1));
    EXPECT_EQ(shownTitles(), "A, B, C");
}

TEST_F(PageLists, RowThatComesBackWhileItIsLeavingIsWholeAgain) {
    show();
    const auto b = page->specifierForID("b");
    page->removeSpecifierID_animated("b", /*animated=*/true);
    touches.wait(0.1);

    page->insertSpecifier_afterSpecifierID_animated(b, "a", /*animated=*/true);
    touches.settle(1);

    EXPECT_EQ(shownTitles(), "A, B, C");
    EXPECT_EQ(cell("b")->alpha(), 1);
    EXPECT_TRUE(cell("b")->window());
}

TEST_F(PageLists, ReloadDropsRowsInsertedInCode) {
    show();
    const auto former = page->specifierForID("a");
    insert(row("x"), "a");

    page->reloadSpecifiers();

    EXPECT_EQ(rows(), "[g1] a b [g2] c");
    EXPECT_NE(page->specifierForID("a"), former);
    EXPECT_EQ(shownTitles(), "A, B, C");
}

TEST_F(PageLists, RowsCanChangeBeforeThePageIsSeen) {
    page = TestPage::alloc()->init();
    insert(row("x"), "a");
    page->removeSpecifierID_animated("b", /*animated=*/true);
    page->reloadSpecifier(page->specifierForID("c"));

    EXPECT_EQ(rows(), "[g1] a x [g2] c");
    EXPECT_FALSE(page->isViewLoaded());
}

TEST_F(PageLists, ReloadKeepsThePlaceWhenRowsComeBackInCode) {
    std::string items = group("g", "Many");
    for (int i = 0; i < 20; ++i) items += item("PSButtonCell", "r" + std::to_string(i), std::to_string(i));
    writeResource(items);
    show();
    const auto insertMore = [&] {
        for (int i = 0; i < 10; ++i) insert(row("x" + std::to_string(i)), "r19");
    };
    insertMore();
    const auto table = page->table();
    table->setContentOffset({0, 850});
    scene.prepareFrame();
    const CGPoint before = table->contentOffset();
    ASSERT_EQ(before.y, 850);

    page->reloadSpecifiers();
    insertMore();
    scene.prepareFrame();

    EXPECT_EQ(table->contentOffset(), before);
}

TEST_F(PageLists, ReloadKeepsTheKeyboardOnItsRow) {
    show();
    scene.window()->setFocusedView(cell("b"));

    page->reloadSpecifiers();

    ASSERT_TRUE(cell("b"));
    EXPECT_EQ(scene.window()->focusedView(), cell("b"));
}

TEST_F(PageLists, HeadersAndFootersComeFromTheGroups) {
    writeResource(group("g", "Header", "Footer") + item("PSButtonCell", "a", "A"));
    show();

    EXPECT_EQ(page->tableView_titleForHeaderInSection(*page->table(), 0), "Header");
    EXPECT_EQ(page->tableView_titleForFooterInSection(*page->table(), 0), "Footer");
    EXPECT_EQ(page->tableView_titleForHeaderInSection(*page->table(), 7), "");
}

} // namespace
