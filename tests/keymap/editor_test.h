#pragma once

#include "keymap/JVNKeymapViewController.h"

#include "keymap/button_table.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/SettingsHost.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

inline constexpr const char* preferencesPath = "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";
inline constexpr long keyA = 4, keyD = 7, keyW = 26, keySpace = 44, keyTab = 43, keyReturn = 40, keyEscape = 41,
                      keyDown = 81;

inline id integer(long value) { return NSNumber::numberWithInteger(value); }

// The editor as the application shows it, over a file in a root of its own.
class KeymapEditor : public testing::Test {
protected:
    ~KeymapEditor() override {
        app.close();
        editor = nullptr;
        former.clear();
    }

    void open() {
        app.open(UIViewController::alloc()->init());
        push();
    }
    void openOver(std::initializer_list<std::pair<const char*, id>> preferences) {
        app.writePreferences(testing_support::dictionary(preferences));
        open();
    }
    void push() {
        editor = nullptr; // one that is held here would empty the reference at its end
        editor = JVNKeymapViewController::alloc()->initWithKeymapPath(preferencesPath);
        app.navigation()->pushViewController_animated(editor, true);
        editor->tableView()->reloadData();
        app.settle();
    }
    std::shared_ptr<UILabel> keyLabel(long row) {
        const auto path = NSIndexPath::indexPathForRow_inSection(row, 0);
        editor->tableView()->scrollToRowAtIndexPath_animated(path, false);
        app.settle();
        const auto cell = editor->tableView()->cellForRowAtIndexPath(path);
        return cell ? std::dynamic_pointer_cast<UILabel>(cell->accessoryView()) : nullptr;
    }
    std::string keyShown(long row) {
        const auto label = keyLabel(row);
        return label ? label->text() : "no cell";
    }
    bool isSelected(long row) {
        const auto selected = editor->tableView()->indexPathForSelectedRow();
        return selected && selected->row() == row;
    }
    void arm(long row) {
        ASSERT_TRUE(app.tap(keymapButtons[static_cast<std::size_t>(row)].title));
        ASSERT_TRUE(editor->indexPathOfCellToRemap());
    }
    std::string saved() {
        const auto keymap = app.preference("JVNKeyboardKeymapKey").object<NSDictionary>();
        if (!keymap) return "none";
        std::string text;
        keymap->enumerate([&](const std::string& key, const id& value) {
            text += (text.empty() ? "" : " ") + key + ":" + std::to_string(value.integerValue());
            return true;
        });
        return text;
    }

    testing_support::LoggedLines log;
    testing_support::SettingsHost app;
    std::shared_ptr<JVNKeymapViewController> editor;
    std::vector<std::shared_ptr<JVNKeymapViewController>> former;
    const std::string defaults = "26:3 4:2 22:4 7:1 12:8 13:7 14:5 15:6 31:9 37:10 41:21";
};
