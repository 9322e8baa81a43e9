#include "ledcolour/JVNColorChooserCell.h"

#include "ledcolour/hex_colour.h"
#include "platform/uikit/UIColor.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

std::shared_ptr<PSSpecifier> rowWithValue(const id& value) {
    const auto row = PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
        "LED Color", nullptr, nullptr, nullptr, nullptr, PSCellType::Button, nullptr);
    if (value) row->setProperty_forKey(value, "value");
    return row;
}

std::shared_ptr<JVNColorChooserCell> cellFor(const id& value) {
    return JVNColorChooserCell::alloc()->initWithStyle_reuseIdentifier_specifier(0, "cell", rowWithValue(value));
}

void expectColor(const std::shared_ptr<UIView>& view, const std::string& hex) {
    ASSERT_TRUE(view);
    EXPECT_TRUE(view->backgroundColor()->isEqual(*JVNColorForHexString(hex))) << hex;
}

class ColorChooserCell : public ::testing::Test {
protected:
    PickerScene window;
};

} // namespace

TEST_F(ColorChooserCell, ShowsTheRowsValueInASwatchThatIsNotQuiteACircle) {
    const auto cell = cellFor("12ab34");
    EXPECT_EQ(cell->accessoryView(), cell->colorMark());
    EXPECT_EQ(cell->colorMark()->bounds().size, (CGSize{25, 25}));
    EXPECT_EQ(cell->colorMark()->layer()->cornerRadius(), 12.0);
    EXPECT_EQ(cell->colorMark()->layer()->borderWidth(), 0);
    expectColor(cell->colorMark(), "12ab34");
    EXPECT_EQ(cell->reuseIdentifier(), "cell");
}

TEST_F(ColorChooserCell, WithoutAValueShowsTheDefaultBlue) {
    expectColor(cellFor(nullptr)->colorMark(), "004EFD");
    const auto rowless = JVNColorChooserCell::alloc()->initWithStyle_reuseIdentifier_specifier(0, "cell", nullptr);
    expectColor(rowless->colorMark(), "004EFD");
}

TEST_F(ColorChooserCell, ValueThatIsNoHexColourShowsBlack) {
    expectColor(cellFor("#004EFD")->colorMark(), "000000");
    expectColor(cellFor("")->colorMark(), "000000");
    expectColor(cellFor(NSNumber::numberWithInt(7))->colorMark(), "000000");
}

TEST_F(ColorChooserCell, NewValueIsShownAndNilIsTheDefaultBlueNotBlack) {
    const auto cell = cellFor("12ab34");
    cell->setValue("ff0000");
    expectColor(cell->accessoryView(), "ff0000");
    cell->setValue(nullptr);
    expectColor(cell->accessoryView(), "004EFD");
}

TEST_F(ColorChooserCell, NewValueBringsBackTheSwatchAfterAnotherAccessory) {
    const auto cell = cellFor("12ab34");
    const auto mark = cell->colorMark();
    cell->setAccessoryView(UIView::alloc()->init());

    cell->setValue("00ff00");

    EXPECT_EQ(cell->accessoryView(), mark);
    expectColor(mark, "00ff00");
}

TEST_F(ColorChooserCell, ShowsNoValueText) {
    const auto cell = cellFor("12ab34");
    cell->setValue("ff0000");
    EXPECT_TRUE(!cell->detailTextLabel() || cell->detailTextLabel()->text().empty());
}

TEST_F(ColorChooserCell, ValueLeavesTheTextOfACellThatHasRoomForOne) {
    const auto cell = JVNColorChooserCell::alloc()->initWithStyle_reuseIdentifier_specifier(
        UITableViewCellStyleValue1, "cell", rowWithValue("12ab34"));
    ASSERT_TRUE(cell->detailTextLabel());
    cell->detailTextLabel()->setText("as it was");

    cell->setValue("ff0000");

    EXPECT_EQ(cell->detailTextLabel()->text(), "as it was");
    expectColor(cell->accessoryView(), "ff0000");
}

TEST_F(ColorChooserCell, IsMadeByNameAsTheFrameworkDoes) {
    const auto object = class_createInstance(objc_getClass("JVNColorChooserCell"));
    ASSERT_TRUE(object);
    const id made = objc_msgSend(*object, "initWithStyle:reuseIdentifier:specifier:",
                                 {id(NSNumber::numberWithInt(0)), id("cell"), id(rowWithValue("abcdef"))});
    const auto cell = made.object<JVNColorChooserCell>();
    ASSERT_TRUE(cell);
    expectColor(cell->accessoryView(), "abcdef");
}

TEST_F(ColorChooserCell, TellsItsColourToThoseWhoDoNotSeeIt) {
    const auto cell = cellFor("12AB34");
    EXPECT_EQ(cell->accessibilityValue(), "green, 12ab34");
    cell->setValue("ff0000");
    EXPECT_EQ(cell->accessibilityValue(), "red, ff0000");
    cell->setValue(nullptr);
    EXPECT_EQ(cell->accessibilityValue(), "blue, 004efd");
    cell->setColorMark(nullptr);
    EXPECT_EQ(cell->accessibilityValue(), "");
}
