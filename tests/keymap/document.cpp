// The keymap as a document: what the editor holds of the file, and what its saving does and does not do.

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "system/notify/NotifyListener.h"
#include "tests/keymap/editor_test.h"

namespace {

using testing_support::TestRoot;

using testing_support::dictionary;
constexpr const char* keymapKey = "JVNKeyboardKeymapKey";

TEST_F(KeymapEditor, HoldsThePathTheFileAndACopyOfItsKeymap) {
    openOver({{keymapKey, dictionary({{"4", integer(1)}})}, {"other", "kept"}});
    EXPECT_EQ(editor->path(), preferencesPath);
    EXPECT_EQ(editor->rootSettings()->objectForKey("other"), id("kept"));
    editor->keymap()->setObject_forKey(integer(2), "5");
    EXPECT_EQ(editor->rootSettings()->objectForKey(keymapKey).object<NSDictionary>()->count(), 1u);
}

TEST_F(KeymapEditor, CopiesTheKeymapButNotWhatIsInIt) {
    openOver({{keymapKey, dictionary({{"4", integer(1)}, {"5", NSArray::array()}})}});
    const auto stored = editor->rootSettings()->objectForKey(keymapKey).object<NSDictionary>();
    EXPECT_EQ(editor->keymap()->objectForKey("5").object<NSArray>(), stored->objectForKey("5").object<NSArray>());
}

TEST_F(KeymapEditor, PutsTheLiveKeymapIntoWhatItRead) {
    openOver({{"other", integer(1)}});
    app.goBack();
    EXPECT_EQ(editor->rootSettings()->objectForKey(keymapKey).object<NSDictionary>(), editor->keymap());
}

TEST_F(KeymapEditor, SavesAnEmptyKeymapAsAnEmptyOne) {
    openOver({{keymapKey, NSDictionary::dictionary()}});
    app.goBack();
    EXPECT_EQ(saved(), "");
}

TEST_F(KeymapEditor, SavesNothingBeforeItsViewDisappears) {
    openOver({{"other", integer(1)}});
    arm(2);
    app.touches().key(100);
    app.settle();
    EXPECT_EQ(saved(), "none");
}

TEST_F(KeymapEditor, SavesNumbersOfThirtyTwoBitsWithoutASignUnderDecimalTexts) {
    openOver({{"other", integer(1)}});
    arm(11);
    app.touches().key(keySpace);
    EXPECT_EQ(editor->keymap()->objectForKey("26").number()->type(), NSNumber::Type::Int) << "a default";
    app.goBack();
    const auto keymap = app.preference(keymapKey).object<NSDictionary>();
    ASSERT_TRUE(keymap);
    EXPECT_EQ(keymap->objectForKey("44"), integer(11));
}

TEST_F(KeymapEditor, AnnouncesNoSave) {
    int announced = 0;
    const seat::NotifyListener listener("com.quorrel.jvnprefs.changed", [&] { ++announced; });
    openOver({{"other", integer(1)}});
    app.goBack();
    app.settle();
    EXPECT_EQ(saved(), defaults);
    EXPECT_EQ(announced, 0);
}

TEST_F(KeymapEditor, OverAFileThatIsAListWritesNothing) {
    const std::string list = "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>";
    TestRoot::write(app.preferencesFile(), list);
    open();
    EXPECT_FALSE(editor->rootSettings());
    EXPECT_EQ(keyShown(0), "D");
    app.goBack();
    EXPECT_EQ(TestRoot::read(app.preferencesFile()), list);
}

TEST_F(KeymapEditor, ReadsTheFileAfreshEachTimeItIsMade) {
    openOver({{keymapKey, dictionary({{"4", integer(1)}})}});
    app.goBack();
    app.writePreferences(dictionary({{keymapKey, dictionary({{"5", integer(1)}})}}));
    push();
    EXPECT_EQ(keyShown(0), "B");
}

TEST_F(KeymapEditor, ThatIsMadeIsTheOneThatHearsTheKeysBeforeItIsShown) {
    const auto made = JVNKeymapViewController::alloc()->initWithKeymapPath(preferencesPath);
    EXPECT_EQ(JVNKeymapViewController::activeKeymapController(), made);
    EXPECT_FALSE(made->indexPathOfCellToRemap());
    made->setIndexPathOfCellToRemap(NSIndexPath::indexPathForRow_inSection(10, 0));
    app.touches().key(100);
    EXPECT_EQ(made->selectedKeyCodeForNative(21), 100);
}

TEST_F(KeymapEditor, WithoutAKeymapShowsNoKeysAndTakesNone) {
    openOver({{"other", integer(1)}});
    editor->setKeymap(nullptr);
    editor->tableView()->reloadData();
    EXPECT_EQ(keyShown(0), "(none)");
    arm(0);
    app.touches().key(keyA);
    EXPECT_FALSE(editor->indexPathOfCellToRemap());
    EXPECT_EQ(keyShown(0), "(none)");
}

} // namespace
