// Preferences files of real life through a whole visit to the editor: from the page's row, a key pressed, and back.

#include "settings/JoyvaneListController.h"
#include "tests/keymap/editor_test.h"
#include "tests/system/preferences/Child.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr const char* python = "/usr/bin/python3";
const std::string script = TEST_SCRIPTS "/real_life_files.py";

class RealLifeFiles : public KeymapEditor {
protected:
    // Opens the page over this file, then the editor by its row.
    void openThroughPage(const fs::path& file) {
        fs::create_directories(fs::path(app.preferencesFile()).parent_path());
        fs::copy_file(file, app.preferencesFile(), fs::copy_options::overwrite_existing);
        app.open(JoyvaneListController::alloc()->init());
        ASSERT_TRUE(app.tap("Configure Keymap"));
        editor = std::dynamic_pointer_cast<JVNKeymapViewController>(app.navigation()->topViewController());
        ASSERT_TRUE(editor);
    }
};

// Made by Python's own library, and held by it against what the visit left: value for value and type for type.
TEST_F(RealLifeFiles, FortyKeepAllThatIsNotTheKeymapAndGetTheKeyThatWasPressed) {
    if (::access(python, X_OK) != 0) GTEST_SKIP() << "no " << python;
    const fs::path folder = app.root() + "/files";
    fs::create_directory(folder);
    ASSERT_EQ(Child({python, script, "make", folder}).wait(), 0);

    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder)) files.push_back(entry.path());
    std::ranges::sort(files);
    for (const auto& file : files) {
        long row = 0;
        long key = 0;
        ASSERT_EQ(std::sscanf(file.filename().c_str(), "%ld-%ld", &row, &key), 2);
        openThroughPage(file);
        arm(row);
        app.touches().key(key);
        EXPECT_EQ(editor->keymap()->objectForKey(std::to_string(key)),
                  integer(keymapButtons[static_cast<std::size_t>(row)].nativeCode))
            << file;
        editor = nullptr;
        app.goBack();
        fs::copy_file(app.preferencesFile(), file.string() + ".after");
        app.close();
    }

    EXPECT_EQ(files.size(), 40u);
    const Child check({python, script, "compare", folder});
    EXPECT_EQ(check.line(), "40 files agree");
}

} // namespace
