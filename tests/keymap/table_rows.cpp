// The table of the editor as it is drawn: titles, cells, and the label that shows the key.

#include "tests/keymap/editor_test.h"

#include <set>

namespace {

using testing_support::dictionary;

class KeymapTable : public KeymapEditor {
protected:
    std::shared_ptr<UITableViewCell> cell(long row) {
        keyLabel(row); // scrolls there
        return editor->tableView()->cellForRowAtIndexPath(NSIndexPath::indexPathForRow_inSection(row, 0));
    }
    void scrollTo(long row) {
        editor->tableView()->scrollToRowAtIndexPath_animated(NSIndexPath::indexPathForRow_inSection(row, 0), false);
        app.settle();
    }
};

TEST_F(KeymapTable, RowsHaveTheirTitlesInThisOrder) {
    open();
    const char* titles[21] = {"D-pad right",
                              "D-pad left",
                              "D-pad up",
                              "D-pad down",
                              "face button A",
                              "face button B",
                              "face button X",
                              "face button Y",
                              "Left Shoulder (L1)",
                              "Right Shoulder (R1)",
                              "Pause",
                              "Left Analog Stick right",
                              "Left Analog Stick left",
                              "Left Analog Stick up",
                              "Left Analog Stick down",
                              "Right Analog Stick right",
                              "Right Analog Stick left",
                              "Right Analog Stick up",
                              "Right Analog Stick down",
                              "Left Trigger (L2)",
                              "Right Trigger (R2)"};
    for (long row = 0; row < 21; ++row) EXPECT_EQ(cell(row)->textLabel()->text(), titles[row]);
}

TEST_F(KeymapTable, IsGroupedAndAloneOnItsScreen) {
    open();
    EXPECT_EQ(editor->tableView()->style(), UITableViewStyleGrouped);
    EXPECT_EQ(editor->view(), editor->tableView());
    EXPECT_EQ(editor->title(), "");
    EXPECT_TRUE(
        app.find("Connect your keyboard either with USB or Bluetooth (with the builtin iOS Bluetooth pairing)."));
}

TEST_F(KeymapTable, CellsArePlainOnesUnderTheExportedIdentifier) {
    open();
    EXPECT_STREQ(JVNKeymapCellID, "JVNKeymapCellID");
    EXPECT_EQ(cell(4)->reuseIdentifier(), "JVNKeymapCellID");
    EXPECT_EQ(cell(4)->isa(), UITableViewCell::classObject());
    EXPECT_EQ(cell(4)->accessoryType(), UITableViewCellAccessoryType::None);
}

TEST_F(KeymapTable, LabelOfTheKeyComesWithACellsFirstUseAndStaysWithIt) {
    open();
    std::map<UITableViewCell*, UIView*> labels;
    std::set<UITableViewCell*> reused;
    for (long row = 0; row < 21; ++row) {
        const auto shown = cell(row);
        const auto [known, isNew] = labels.try_emplace(shown.get(), shown->accessoryView().get());
        EXPECT_EQ(known->second, shown->accessoryView().get());
        if (!isNew) reused.insert(shown.get());
        EXPECT_TRUE(std::dynamic_pointer_cast<UILabel>(shown->accessoryView()));
    }
    EXPECT_FALSE(reused.empty());
}

TEST_F(KeymapTable, LabelFitsItsTextWhateverItShows) {
    open();
    const auto fits = [&](long row) {
        const auto label = keyLabel(row);
        return label->bounds().size == label->sizeThatFits({0, 0});
    };
    EXPECT_TRUE(fits(0));
    EXPECT_TRUE(fits(12));
    arm(0);
    EXPECT_TRUE(fits(0));
    app.touches().key(228);
    EXPECT_TRUE(fits(0));
}

TEST_F(KeymapTable, ShowsNoValueThatIsNoInput) {
    openOver({{"JVNKeyboardKeymapKey",
               dictionary({{"4", integer(0)}, {"5", integer(22)}, {"6", integer(-1)}, {"7", integer(4294967297)}})}});
    for (long row = 0; row < 21; ++row) EXPECT_EQ(keyShown(row), "(none)");
}

TEST_F(KeymapTable, LabelThatWaitedIsBlackInTheRowThatUsesItNext) {
    open();
    arm(0);
    scrollTo(20);
    for (long row = 10; row < 21; ++row)
        if (const auto label = keyLabel(row)) {
            EXPECT_TRUE(label->textColor()->isEqual(*UIColor::blackColor())) << row;
            EXPECT_NE(label->text(), "Press Key…");
        }
}

TEST_F(KeymapTable, RowThatIsScrolledAwayStaysArmed) {
    open();
    arm(0);
    scrollTo(20);
    app.touches().key(keySpace);
    EXPECT_EQ(editor->selectedKeyCodeForNative(1), keySpace);
    EXPECT_EQ(keyShown(0), "space");
    EXPECT_FALSE(isSelected(0));
}

TEST_F(KeymapTable, RowOfAnySectionHasTheCodeOfItsNumber) {
    open();
    for (const long section : {-3L, 0L, 12L})
        EXPECT_EQ(editor->buttonNativeFromIndexPath(*NSIndexPath::indexPathForRow_inSection(10, section)), 21);
}

} // namespace
