// The keymap editor as the application shows it: real touches, keys through the application object, a real file.

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSData.h"
#include "tests/keymap/editor_test.h"

namespace {

using testing_support::TestRoot;

using testing_support::dictionary;

TEST_F(KeymapEditor, ShowsTheElevenDefaults) {
    open();
    const char* shown[21] = {"D",      "A",      "W",      "S",      "K",      "L",      "J",
                             "I",      "2",      "8",      "⎋",      "(none)", "(none)", "(none)",
                             "(none)", "(none)", "(none)", "(none)", "(none)", "(none)", "(none)"};
    for (long row = 0; row < 21; ++row) EXPECT_EQ(keyShown(row), shown[row]) << keymapButtons[std::size_t(row)].title;
}

TEST_F(KeymapEditor, HasTheTwentyOneRowsInTheirOrder) {
    open();
    const int codes[21] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 21, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20};
    for (long row = 0; row < 21; ++row)
        EXPECT_EQ(editor->buttonNativeFromIndexPath(*NSIndexPath::indexPathForRow_inSection(row, 7)), codes[row]);
    for (const long section : {-1L, 0L, 1L, 99L}) {
        EXPECT_EQ(editor->tableView_numberOfRowsInSection(*editor->tableView(), section), 21);
        EXPECT_EQ(editor->tableView_titleForHeaderInSection(*editor->tableView(), section),
                  "Connect your keyboard either with USB or Bluetooth (with the builtin iOS Bluetooth pairing).");
    }
    EXPECT_EQ(editor->numberOfSectionsInTableView(*editor->tableView()), 1);
    EXPECT_EQ(editor->title(), "");
}

TEST_F(KeymapEditor, ShowsNoKeysForAnEmptyKeymap) {
    openOver({{"JVNKeyboardKeymapKey", NSDictionary::dictionary()}});
    for (long row = 0; row < 21; ++row) EXPECT_EQ(keyShown(row), "(none)");
}

TEST_F(KeymapEditor, ReadsStringValuesAsNumbersAndTakesTheFirstOfSeveralKeys) {
    openOver(
        {{"JVNKeyboardKeymapKey",
          dictionary({{"5", "3"}, {"6", integer(3)}, {"7", NSNumber::numberWithDouble(1.9)}, {"8", integer(99)}})}});
    EXPECT_EQ(keyShown(2), "B");
    EXPECT_EQ(keyShown(0), "D");
    EXPECT_EQ(editor->stringSelectedKeyCodeForNative(3), "5");
    EXPECT_EQ(editor->selectedKeyCodeForNative(3), 5);
    EXPECT_EQ(editor->selectedKeyCodeForNative(4), -1);
    EXPECT_EQ(editor->stringSelectedKeyCodeForNative(4), std::nullopt);
}

TEST_F(KeymapEditor, TakesTheDefaultsForAKeymapThatIsNoDictionary) {
    for (const id& value : {id("text"), integer(3), id(NSArray::array()), id(NSData::dataWithVector({1}))}) {
        openOver({{"JVNKeyboardKeymapKey", value}});
        EXPECT_EQ(keyShown(0), "D");
        app.close();
    }
}

TEST_F(KeymapEditor, EditsACopyOfTheStoredKeymap) {
    openOver({{"JVNKeyboardKeymapKey", dictionary({{"4", integer(1)}})}});
    EXPECT_NE(editor->keymap(), editor->rootSettings()->objectForKey("JVNKeyboardKeymapKey").object<NSDictionary>());
}

TEST_F(KeymapEditor, ArmingARowShowsPressKeyInBlueAndKeepsItSelected) {
    open();
    arm(3);
    EXPECT_EQ(keyShown(3), "Press Key…");
    EXPECT_TRUE(keyLabel(3)->textColor()->isEqual(*UIColor::blueColor()));
    EXPECT_TRUE(isSelected(3));
}

TEST_F(KeymapEditor, ArmingAnotherRowBringsTheFormerOneBack) {
    open();
    arm(3);
    arm(5);
    EXPECT_EQ(keyShown(3), "S");
    EXPECT_TRUE(keyLabel(3)->textColor()->isEqual(*UIColor::blackColor()));
    EXPECT_EQ(keyShown(5), "Press Key…");
    EXPECT_TRUE(keyLabel(5)->textColor()->isEqual(*UIColor::blueColor()));
    EXPECT_FALSE(isSelected(3));
}

TEST_F(KeymapEditor, ArmingTheArmedRowLeavesItArmed) {
    open();
    arm(3);
    arm(3);
    EXPECT_EQ(keyShown(3), "Press Key…");
    EXPECT_EQ(editor->indexPathOfCellToRemap()->row(), 3);
}

TEST_F(KeymapEditor, PressingTheOwnKeyChangesNothing) {
    open();
    arm(2);
    app.touches().key(keyW);
    EXPECT_EQ(keyShown(2), "W");
    EXPECT_FALSE(editor->indexPathOfCellToRemap());
    EXPECT_EQ(editor->selectedKeyCodeForNative(3), keyW);
    EXPECT_EQ(editor->keymap()->count(), 11u);
}

TEST_F(KeymapEditor, PressingAnotherInputsKeyTakesItAway) {
    open();
    arm(2);
    app.touches().key(keyD);
    EXPECT_EQ(keyShown(2), "D");
    EXPECT_EQ(keyShown(0), "(none)");
    EXPECT_FALSE(editor->keymap()->objectForKey("26"));
    EXPECT_FALSE(isSelected(2));
}

TEST_F(KeymapEditor, BindsSpaceToAStickRow) {
    open();
    arm(11);
    app.touches().key(keySpace);
    EXPECT_EQ(keyShown(11), "space");
    EXPECT_EQ(editor->keymap()->objectForKey("44"), integer(11));
    EXPECT_EQ(editor->keymap()->objectForKey("44").number()->type(), NSNumber::Type::UnsignedInt);
}

TEST_F(KeymapEditor, BindsTheDigitZeroAndRightControlUnderTheirCodes) {
    open();
    arm(4);
    app.touches().key(39);
    EXPECT_EQ(keyShown(4), "Key (39)");
    arm(5);
    app.touches().key(228);
    EXPECT_EQ(keyShown(5), "Key (228)");
    EXPECT_TRUE(editor->keymap()->objectForKey("228"));
}

TEST_F(KeymapEditor, TakesTheKeysOfTheApplicationToo) {
    open();
    for (const long key : {keyTab, keyReturn, keyEscape, keyDown, keySpace, 225L, 229L, 224L, 104L, 115L, 88L}) {
        arm(6);
        app.touches().key(key);
        EXPECT_EQ(editor->selectedKeyCodeForNative(7), key);
        EXPECT_EQ(app.navigation()->topViewController(), editor) << key;
    }
}

TEST_F(KeymapEditor, HearsTheFirstEventOnlyPressOrRelease) {
    open();
    arm(6);
    app.touches().keyUp(keyA);
    EXPECT_EQ(editor->selectedKeyCodeForNative(7), keyA);
    app.touches().keyDown(keyW);
    EXPECT_EQ(editor->selectedKeyCodeForNative(7), keyA);
}

TEST_F(KeymapEditor, AKeyWithoutAnArmedRowChangesNothing) {
    open();
    app.touches().key(100);
    EXPECT_EQ(editor->keymap()->count(), 11u);
    EXPECT_FALSE(editor->keymap()->objectForKey("100"));
}

TEST_F(KeymapEditor, SkipsTheRedrawOfARowThatDoesNotExist) {
    openOver({{"JVNKeyboardKeymapKey", dictionary({{"4", integer(77)}, {"5", "3"}})}});
    arm(0);
    app.touches().key(keyA);
    EXPECT_EQ(keyShown(0), "A");
    arm(1);
    app.touches().key(5);
    EXPECT_EQ(keyShown(1), "B");
}

TEST_F(KeymapEditor, WithSeveralKeysForOneInputTakesOnlyTheFirstAway) {
    openOver({{"JVNKeyboardKeymapKey", dictionary({{"4", integer(1)}, {"5", integer(1)}})}});
    arm(0);
    app.touches().key(6);
    EXPECT_FALSE(editor->keymap()->objectForKey("4"));
    EXPECT_TRUE(editor->keymap()->objectForKey("5"));
    EXPECT_TRUE(editor->keymap()->objectForKey("6"));
}

TEST_F(KeymapEditor, SavesTheDefaultsOnTheFirstDisappearanceThoughNothingWasChanged) {
    openOver({{"controller_type", integer(6)}});
    app.goBack();
    EXPECT_EQ(saved(), defaults);
    EXPECT_EQ(app.preference("controller_type"), integer(6));
}

TEST_F(KeymapEditor, SavesWhatWasRemapped) {
    openOver({{"controller_type", integer(6)}});
    arm(2);
    app.touches().key(keyD);
    app.goBack();
    EXPECT_EQ(saved(), "4:2 22:4 7:3 12:8 13:7 14:5 15:6 31:9 37:10 41:21");
}

TEST_F(KeymapEditor, SavesBinaryWhateverTheFileWas) {
    TestRoot::write(app.preferencesFile(),
                    "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>x</key><date>2001-01-01T00:00:00Z</date>"
                    "</dict></plist>");
    open();
    app.goBack();
    EXPECT_EQ(TestRoot::read(app.preferencesFile()).value_or("").substr(0, 8), "bplist00");
    EXPECT_EQ(app.preference("x"), id(NSDate{0}));
}

TEST_F(KeymapEditor, WritesBackWhatItReadAtItsCreation) {
    openOver({{"other", integer(1)}});
    app.writePreferences(dictionary({{"other", integer(2)}, {"PS4BluetoothAddress", "new"}}));
    app.goBack();
    EXPECT_EQ(app.preference("other"), integer(1));
    EXPECT_FALSE(app.preference("PS4BluetoothAddress"));
}

TEST_F(KeymapEditor, WritesOnEveryDisappearance) {
    openOver({{"other", integer(1)}});
    app.navigation()->pushViewController_animated(UIViewController::alloc()->init(), false);
    app.settle();
    EXPECT_EQ(saved(), defaults);
    TestRoot::remove(app.preferencesFile());
    app.goBack();
    app.goBack();
    EXPECT_EQ(saved(), defaults);
}

TEST_F(KeymapEditor, WithoutAFileEditsTheDefaultsAndWritesNone) {
    open();
    EXPECT_FALSE(editor->rootSettings());
    arm(0);
    app.touches().key(keyA);
    EXPECT_EQ(keyShown(0), "A");
    app.goBack();
    EXPECT_FALSE(TestRoot::exists(app.preferencesFile()));
}

TEST_F(KeymapEditor, OverADamagedFileWritesNothing) {
    TestRoot::write(app.preferencesFile(), "bplist00 damaged");
    open();
    EXPECT_EQ(keyShown(0), "D");
    app.goBack();
    EXPECT_EQ(TestRoot::read(app.preferencesFile()), "bplist00 damaged");
}

TEST_F(KeymapEditor, ThatCannotWriteLeavesTheFileAsItWas) {
    openOver({{"other", integer(1)}});
    // Where the temporary would stand is no folder any more.
    editor->setPath("/var/mobile/Library/Preferences/com.quorrel.joyvane.plist/x");
    app.goBack();
    EXPECT_EQ(app.preference("other"), integer(1));
    EXPECT_EQ(saved(), "none");
}

TEST_F(KeymapEditor, TheSecondThirdAndTenthEditorHearKeys) {
    app.writePreferences(dictionary({}));
    app.open(UIViewController::alloc()->init());
    for (int i = 1; i <= 10; ++i) {
        push();
        arm(0);
        app.touches().key(100 + i);
        EXPECT_EQ(editor->selectedKeyCodeForNative(1), 100 + i) << "editor " << i;
        EXPECT_EQ(JVNKeymapViewController::activeKeymapController(), editor);
        app.goBack();
    }
}

TEST_F(KeymapEditor, OutlivesItsScreenUntilTheNextOne) {
    open();
    const std::weak_ptr<JVNKeymapViewController> first = editor;
    editor = nullptr;
    app.goBack();
    ASSERT_FALSE(first.expired());
    push();
    EXPECT_TRUE(first.expired());
}

TEST_F(KeymapEditor, ARowLeftArmedIsRemappedInMemoryByTheNextKey) {
    openOver({{"other", integer(1)}});
    arm(0);
    app.goBack();
    const std::string before = saved();
    app.touches().key(200);
    EXPECT_EQ(editor->selectedKeyCodeForNative(1), 200);
    EXPECT_EQ(saved(), before);
    push();
    EXPECT_FALSE(editor->indexPathOfCellToRemap());
}

TEST_F(KeymapEditor, TheEndOfAnEditorHeldElsewhereEmptiesTheReference) {
    open();
    former.push_back(editor);
    push();
    app.navigation()->popViewControllerAnimated(false);
    app.navigation()->popViewControllerAnimated(false);
    app.settle();
    ASSERT_EQ(JVNKeymapViewController::activeKeymapController(), editor);
    former.clear();
    app.settle();
    EXPECT_FALSE(JVNKeymapViewController::activeKeymapController());
}

TEST_F(KeymapEditor, IsHeardAfterTheApplicationsOwnHandler) {
    // Escape would take the screen away; with no row armed it does, and the editor changes nothing.
    open();
    app.touches().key(keyEscape);
    app.settle();
    EXPECT_NE(app.navigation()->topViewController(), editor);
    EXPECT_EQ(editor->keymap()->count(), 11u);
}

} // namespace
