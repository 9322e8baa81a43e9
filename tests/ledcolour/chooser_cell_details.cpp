// The swatch of the chooser's row: where it comes from, and whose it stays.

#include "ledcolour/JVNColorChooserCell.h"
#include "ledcolour/hex_colour.h"
#include "platform/uikit/UIColor.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

std::shared_ptr<PSSpecifier> row() {
    return PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
        "Choose LED Color", nullptr, nullptr, nullptr, nullptr, PSCellType::Button, nullptr);
}

std::shared_ptr<JVNColorChooserCell> cellOf(const std::shared_ptr<PSSpecifier>& specifier) {
    return JVNColorChooserCell::alloc()->initWithStyle_reuseIdentifier_specifier(UITableViewCellStyleDefault, "cell",
                                                                                 specifier);
}

bool shows(const std::shared_ptr<UIView>& view, const std::string& hex) {
    return view && view->backgroundColor()->isEqual(*JVNColorForHexString(hex));
}

class ColorChooserCellDetails : public ::testing::Test {
protected:
    PickerScene window;
};

} // namespace

TEST_F(ColorChooserCellDetails, SwatchIsMadeTwentyFivePointsSquareAtTheOrigin) {
    const auto cell = cellOf(row());
    EXPECT_EQ(cell->colorMark()->frame(), (CGRect{{0, 0}, {25, 25}}));
    EXPECT_EQ(cell->colorMark()->isa(), UIView::classObject());
    EXPECT_EQ(cell->colorMark()->alpha(), 1);
}

TEST_F(ColorChooserCellDetails, StandsAtTheRightEndOfItsRow) {
    const auto cell = cellOf(row());
    window.show(cell, {{0, 0}, {320, 44}});
    const CGRect mark = cell->colorMark()->frame();
    EXPECT_EQ(mark.size, (CGSize{25, 25}));
    EXPECT_GT(CGRectGetMaxX(mark), 290);
    EXPECT_NEAR(CGRectGetMidY(mark), 22, 0.5);
}

TEST_F(ColorChooserCellDetails, StyleIdentifierAndRowReachTheBaseCell) {
    const auto specifier = row();
    const auto cell = cellOf(specifier);
    EXPECT_EQ(cell->textLabel()->text(), "Choose LED Color");
    EXPECT_EQ(cell->specifier(), specifier);
    EXPECT_EQ(cell->reuseIdentifier(), "cell");
    EXPECT_FALSE(cell->detailTextLabel());
}

TEST_F(ColorChooserCellDetails, LooksForTheRowsValueAndNotForItsDefault) {
    const auto specifier = row();
    specifier->setProperty_forKey("ff0000", "default");
    EXPECT_TRUE(shows(cellOf(specifier)->colorMark(), "004EFD"));
}

TEST_F(ColorChooserCellDetails, ValueIsReadLeniently) {
    const auto cell = cellOf(row());
    for (const auto& [value, hex] : {std::pair{" 0x12ab34", "12ab34"}, std::pair{"FFF", "000fff"},
                                     std::pair{"7712ab34", "12ab34"}, std::pair{"123456789", "ffffff"}}) {
        cell->setValue(value);
        EXPECT_TRUE(shows(cell->accessoryView(), hex)) << value;
    }
}

TEST_F(ColorChooserCellDetails, SwatchThatIsReplacedComesInWithTheNextValue) {
    const auto cell = cellOf(row());
    const auto first = cell->colorMark();
    const auto other = UIView::alloc()->initWithFrame({{0, 0}, {10, 10}});

    cell->setColorMark(other);
    EXPECT_EQ(cell->accessoryView(), first);
    cell->setValue("00ff00");

    EXPECT_EQ(cell->accessoryView(), other);
    EXPECT_TRUE(shows(other, "00ff00"));
    EXPECT_TRUE(shows(first, "004EFD"));
}

TEST_F(ColorChooserCellDetails, WithoutASwatchAValueShowsNothing) {
    const auto cell = cellOf(row());
    cell->setColorMark(nullptr);
    cell->setValue("00ff00");
    EXPECT_FALSE(cell->accessoryView());
}
