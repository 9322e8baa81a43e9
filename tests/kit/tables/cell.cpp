#include "kit/quartz/text_size.h"
#include "kit/tables/CellInternals.h"
#include "tests/kit/tables/TableTest.h"

namespace {

using TableCells = TableTest;

std::shared_ptr<UITableViewCell> makeCell(UITableViewCellStyle style = UITableViewCellStyleDefault) {
    auto cell = UITableViewCell::alloc()->initWithStyle_reuseIdentifier(style, "id");
    cell->setFrame({{0, 0}, {300, 44}});
    return cell;
}

TEST_F(TableCells, DefaultStyleHasATitleOnly) {
    EXPECT_TRUE(makeCell()->textLabel());
    EXPECT_FALSE(makeCell()->detailTextLabel());
    EXPECT_TRUE(makeCell(UITableViewCellStyleValue1)->detailTextLabel());
}

TEST_F(TableCells, TitleEndsBeforeTheAccessoryView) {
    const auto cell = makeCell();
    cell->textLabel()->setText("A title that is far too long to fit into this row");
    const auto accessory = UIView::alloc()->initWithFrame({{5, 5}, {40, 20}});

    cell->setAccessoryView(accessory);
    cell->layoutIfNeeded();

    EXPECT_EQ(written(accessory->frame()), "244,12 40x20");
    EXPECT_EQ(CGRectGetMaxX(cell->textLabel()->frame()), 236);
}

TEST_F(TableCells, AccessoryLabelThatChangesItsSizeIsPlacedAnew) {
    show({{"a"}});
    const auto label = UILabel::alloc()->init();
    cell(0)->setAccessoryView(label);
    label->setText("D");
    label->sizeToFit();
    scene.prepareFrame();
    EXPECT_EQ(CGRectGetMaxX(label->frame()), 272);
    const double narrow = label->frame().size.width;

    label->setText("Press Key…");
    label->sizeToFit();
    scene.prepareFrame();

    EXPECT_GT(label->frame().size.width, narrow);
    EXPECT_EQ(CGRectGetMaxX(label->frame()), 272);
    EXPECT_NEAR(label->center().y, 22, 0.5);
}

TEST_F(TableCells, TextThatWasSetSmallerWrapsOnceTextIsLarger) {
    const auto cell = makeCell();
    cell->textLabel()->setText("A title that needs a little more room");
    cell->layoutIfNeeded();
    ASSERT_LT(cell->textLabel()->font()->pointSize(), 17);

    seat::setTextScale(2);
    const auto usual = UILabel::alloc()->init()->font();
    const double height = CellInternals::heightFor(*cell, 300);
    cell->setFrame({{0, 0}, {300, height}});
    cell->contentView()->setNeedsLayout();
    cell->layoutIfNeeded();
    const double line = usual->lineHeight();
    seat::setTextScale(1);

    EXPECT_GE(height, 2 * line);
    EXPECT_EQ(cell->textLabel()->numberOfLines(), 0);
    EXPECT_EQ(cell->textLabel()->font()->pointSize(), usual->pointSize());
}

TEST_F(TableCells, TextThatFindsNoRoomIsSetSmallerBeforeItIsCut) {
    const auto cell = makeCell();
    cell->textLabel()->setText("A title that needs a little more room");
    cell->layoutIfNeeded();
    EXPECT_LT(cell->textLabel()->font()->pointSize(), 17);
    EXPECT_GE(cell->textLabel()->font()->pointSize(), 13);

    cell->textLabel()->setText("Short");
    cell->setNeedsLayout();
    cell->contentView()->setNeedsLayout();
    cell->layoutIfNeeded();

    EXPECT_EQ(cell->textLabel()->font()->pointSize(), 17);
}

TEST_F(TableCells, FontThatWasGivenIsKept) {
    const auto cell = makeCell();
    cell->textLabel()->setFont(UIFont::boldSystemFontOfSize(12));
    cell->textLabel()->setText("Title");

    cell->layoutIfNeeded();

    EXPECT_EQ(cell->textLabel()->font(), UIFont::boldSystemFontOfSize(12));
}

TEST_F(TableCells, ValueKeepsAThirdOfTheRowFromALongTitle) {
    const auto cell = makeCell(UITableViewCellStyleValue1);
    cell->textLabel()->setText(std::string(100, 'x'));
    cell->detailTextLabel()->setText(std::string(100, 'y'));
    cell->layoutIfNeeded();

    EXPECT_NEAR(cell->detailTextLabel()->frame().size.width, (300 - 16 - 16) / 3.0, 1);
    EXPECT_LE(CGRectGetMaxX(cell->textLabel()->frame()) + 8, cell->detailTextLabel()->frame().origin.x);
}

TEST_F(TableCells, ShortTitleLeavesTheRestToTheValue) {
    const auto cell = makeCell(UITableViewCellStyleValue1);
    cell->textLabel()->setText("T");
    cell->detailTextLabel()->setText("A value of some length");
    cell->layoutIfNeeded();

    const double natural = cell->detailTextLabel()->sizeThatFits({1000, 100}).width;
    EXPECT_GE(cell->detailTextLabel()->frame().size.width, natural);
}

TEST_F(TableCells, AccessoryViewHidesTheMarkAndGivesItBack) {
    const auto cell = makeCell();
    cell->setAccessoryType(UITableViewCellAccessoryType::DisclosureIndicator);
    const auto accessory = UIView::alloc()->initWithFrame({{0, 0}, {10, 10}});

    cell->setAccessoryView(accessory);
    EXPECT_TRUE(accessory->superview());
    cell->setAccessoryView(nullptr);

    EXPECT_FALSE(accessory->superview());
    EXPECT_EQ(cell->accessoryType(), UITableViewCellAccessoryType::DisclosureIndicator);
}

TEST_F(TableCells, SameAccessoryViewSetAgainComesBackFromWhereverItWas) {
    const auto cell = makeCell();
    const auto accessory = UIView::alloc()->initWithFrame({{0, 0}, {10, 10}});
    cell->setAccessoryView(accessory);
    accessory->removeFromSuperview();

    cell->setAccessoryView(accessory);

    EXPECT_EQ(accessory->superview(), cell);
}

TEST_F(TableCells, AssistiveTechnologyHearsTitleAndValue) {
    const auto value = makeCell(UITableViewCellStyleValue1);
    value->textLabel()->setText("Controller Type");
    value->detailTextLabel()->setText("DualShock 4");
    EXPECT_EQ(value->accessibilityRole(), UIAccessibilityRole::ListItem);
    EXPECT_EQ(value->accessibilityLabel(), "Controller Type");
    EXPECT_EQ(value->accessibilityValue(), "DualShock 4");

    const auto withSwitch = makeCell();
    const auto toggle = UISwitch::alloc()->init();
    withSwitch->setAccessoryView(toggle);
    EXPECT_EQ(withSwitch->accessibilityValue(), "Off");
    toggle->setOn_animated(true, /*animated=*/false);
    EXPECT_EQ(withSwitch->accessibilityValue(), "On");

    const auto withLabel = makeCell();
    const auto label = UILabel::alloc()->init();
    label->setText("⎋");
    withLabel->setAccessoryView(label);
    EXPECT_EQ(withLabel->accessibilityValue(), "⎋");
}

TEST_F(TableCells, DisabledAndCheckedRowsSaySo) {
    const auto cell = makeCell();
    EXPECT_TRUE(cell->accessibilityIsEnabled());
    EXPECT_FALSE(cell->accessibilityIsSelected());

    cell->textLabel()->setEnabled(false);
    cell->setAccessoryType(UITableViewCellAccessoryType::Checkmark);

    EXPECT_FALSE(cell->accessibilityIsEnabled());
    EXPECT_TRUE(cell->accessibilityIsSelected());
}

TEST_F(TableCells, CellInNoTableDoesNothingWhenActivated) { EXPECT_FALSE(makeCell()->accessibilityActivate()); }

} // namespace
