// The process ends while the last editor is still kept for keys, each time in a process of its own.

#include "tests/keymap/editor_test.h"

#include <cstdlib>

namespace {

// Made before the editor's own statics, so that it goes after them: nothing of the editor may be left to die by then.
struct LastStatic {
    ~LastStatic() {
        // An editor that had died before would have emptied the reference.
        if (isWatching && !JVNKeymapViewController::activeKeymapController()) std::_Exit(3);
    }
    bool isWatching = false;
};
LastStatic lastStatic;

class KeymapEndDeathTest : public KeymapEditor {
protected:
    KeymapEndDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_F(KeymapEndDeathTest, TheLastEditorIsNotDestroyedAtTheEndOfTheProcess) {
    EXPECT_EXIT(
        {
            openOver({{"other", integer(1)}});
            arm(0);
            lastStatic.isWatching = true;
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KeymapEndDeathTest, AnEditorWhoseScreenWasLeftIsNotEither) {
    EXPECT_EXIT(
        {
            openOver({{"other", integer(1)}});
            editor = nullptr;
            app.goBack();
            app.close();
            lastStatic.isWatching = true;
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
