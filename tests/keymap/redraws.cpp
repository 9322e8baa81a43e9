// Which rows a key press redraws, and when.

#include "tests/keymap/editor_test.h"

namespace {

using testing_support::dictionary;

// Writes down the rows that are asked for, and whether one waited for a key then.
class NotingEditor final : public JVNKeymapViewController {
    NS_CLASS(NotingEditor)
    std::shared_ptr<UITableViewCell>
    tableView_cellForRowAtIndexPath(UITableView& tableView, const std::shared_ptr<NSIndexPath>& indexPath) override {
        drawn += (drawn.empty() ? "" : " ") + std::to_string(indexPath->row());
        waited = waited || indexPathOfCellToRemap();
        return JVNKeymapViewController::tableView_cellForRowAtIndexPath(tableView, indexPath);
    }
    std::string take() {
        waited = false;
        return std::exchange(drawn, {});
    }
    std::string drawn;
    bool waited = false;
};
NS_CLASS_IMPLEMENTATION(NotingEditor, JVNKeymapViewController)

class KeymapRedraws : public testing::Test {
protected:
    ~KeymapRedraws() override {
        app.close();
        editor = nullptr;
    }
    void openOver(const std::shared_ptr<NSDictionary>& keymap) {
        app.writePreferences(keymap ? dictionary({{"JVNKeyboardKeymapKey", keymap}}) : dictionary({}));
        app.open(UIViewController::alloc()->init());
        editor = NotingEditor::alloc();
        editor->initWithKeymapPath(preferencesPath);
        app.navigation()->pushViewController_animated(editor, false);
        app.settle();
    }
    // The rows that a key redraws when the row waits for it.
    std::string redrawn(const char* row, long key) {
        EXPECT_TRUE(app.tap(row));
        app.settle();
        editor->take();
        app.touches().key(key);
        return editor->take();
    }

    testing_support::SettingsHost app{{375, 1400}}; // all rows at once
    std::shared_ptr<NotingEditor> editor;
};

TEST_F(KeymapRedraws, OwnKeyRedrawsTheArmedRowAlone) {
    openOver(nullptr);
    EXPECT_EQ(redrawn("D-pad up", keyW), "2");
}

TEST_F(KeymapRedraws, FreeKeyRedrawsTheArmedRowAlone) {
    openOver(nullptr);
    EXPECT_EQ(redrawn("D-pad up", 100), "2");
}

TEST_F(KeymapRedraws, KeyOfAnotherInputRedrawsThatRowToo) {
    openOver(nullptr);
    EXPECT_EQ(redrawn("face button A", keyD), "0 4");
    EXPECT_EQ(redrawn("D-pad up", keyEscape), "2 10") << "Pause has the last code, and not the last row";
}

TEST_F(KeymapRedraws, RowOfTheOtherInputIsFoundByTheValueOfItsNumber) {
    openOver(dictionary({{"4", NSNumber::numberWithDouble(6)}, {"5", NSNumber::numberWithDouble(6.5)}, {"6", "6"}}));
    EXPECT_EQ(redrawn("D-pad right", 4), "0 5") << "6.0 is 6";
    EXPECT_EQ(redrawn("D-pad left", 5), "1") << "6.5 is no row's";
    EXPECT_EQ(redrawn("D-pad up", 6), "2") << "nor is a text";
}

TEST_F(KeymapRedraws, KeyOfTheArmedInputInAnotherFormIsItsOwn) {
    openOver(dictionary({{"4", "1"}}));
    EXPECT_EQ(redrawn("D-pad right", 4), "0");
    EXPECT_EQ(editor->keymap()->objectForKey("4").number()->type(), NSNumber::Type::UnsignedInt);
}

TEST_F(KeymapRedraws, RowWaitsUntilItIsRedrawn) {
    openOver(nullptr);
    ASSERT_TRUE(app.tap("D-pad up"));
    app.settle();
    editor->take();
    app.touches().keyDown(keyW);
    EXPECT_TRUE(editor->waited);
    EXPECT_FALSE(editor->indexPathOfCellToRemap());
}

TEST_F(KeymapRedraws, ArmingRedrawsTheFormerRowAlone) {
    openOver(nullptr);
    editor->take();
    ASSERT_TRUE(app.tap("D-pad up"));
    EXPECT_EQ(editor->take(), "");
    ASSERT_TRUE(app.tap("D-pad left"));
    EXPECT_EQ(editor->take(), "2");
    ASSERT_TRUE(app.tap("D-pad left"));
    EXPECT_EQ(editor->take(), "1");
}

TEST_F(KeymapRedraws, KeyWithoutAnArmedRowRedrawsNothing) {
    openOver(nullptr);
    editor->take();
    app.touches().key(keyW);
    EXPECT_EQ(editor->take(), "");
}

} // namespace
