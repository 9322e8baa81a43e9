// The way from the page to the keymap editor.

#include "keymap/JVNKeymapViewController.h"
#include "tests/settings/PageTest.h"

#include <utility>

namespace {

using KeymapOfThePage = PageTest;

std::shared_ptr<JVNKeymapViewController> front(testing_support::SettingsHost& app) {
    return std::dynamic_pointer_cast<JVNKeymapViewController>(app.navigation()->topViewController());
}

TEST_F(KeymapOfThePage, OpensOverThePreferencesFileForAKeyboard) {
    show(6, 0, {{"JVNKeyboardKeymapKey", testing_support::dictionary({{"44", NSNumber::numberWithInt(1)}})}});
    ASSERT_TRUE(app.tap("Configure Keymap"));
    app.settle();
    const auto editor = front(app);
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->path(), "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist");
    EXPECT_EQ(editor->selectedKeyCodeForNative(1), 44);
    EXPECT_EQ(JVNKeymapViewController::activeKeymapController(), editor);
}

TEST_F(KeymapOfThePage, IsHeldByNobodyButTheReferenceForKeysOnceItIsLeft) {
    show(6);
    ASSERT_TRUE(app.tap("Configure Keymap"));
    app.settle();
    std::weak_ptr<JVNKeymapViewController> editor = front(app);
    app.goBack();
    app.settle();
    ASSERT_FALSE(editor.expired());
    EXPECT_EQ(editor.use_count(), 1);
}

TEST_F(KeymapOfThePage, KeepsASettingWrittenByThePageBeforeAndAfter) {
    show(6, 0);
    ASSERT_TRUE(app.tap("Configure Keymap"));
    app.settle();
    app.goBack();
    EXPECT_EQ(app.preference("controller_type"), id(NSNumber::numberWithInt(6)));
    ASSERT_TRUE(app.tapSwitch("Force Extended Gamepad"));
    app.dismissAlert();
    EXPECT_TRUE(app.preference("JVNKeyboardKeymapKey").object<NSDictionary>()) << "the page writes one key alone";
}

} // namespace
