#include "tests/system/preferences/Child.h"
#include "tests/system/preferences/fixture.h"

using namespace seat;

namespace {

using FilesOfOthers = PreferencesTest;

constexpr const char* python = "/usr/bin/python3";

// Property lists as real programs write them, made by Python's own library and held by it against what is left after a
// change by ours: value for value and type for type.
TEST_F(FilesOfOthers, FortyRealShapedFilesKeepEveryOtherValueAndType) {
    if (access(python, X_OK) != 0) GTEST_SKIP() << "no " << python;
    const std::string script = TEST_SCRIPTS "/real_shaped_files.py";
    const std::string originals = root() + "/originals";
    std::filesystem::create_directory(originals);
    ASSERT_EQ(Child({python, script, "make", originals, folder()}).wait(), 0);

    int changed = 0;
    for (const auto& entry : std::filesystem::directory_iterator(originals)) {
        const std::string name = entry.path().stem().string();
        EXPECT_TRUE(set(name, "JVNForceExtendedGamepad", NSNumber::numberWithBool(true))) << name;
        EXPECT_TRUE(set(name, "controller_type", NSNumber::numberWithInteger(5))) << name;
        ++changed;
    }

    EXPECT_EQ(changed, 40);
    const Child check({python, script, "compare", originals, folder()});
    EXPECT_EQ(check.line(), "40 files agree");
}

} // namespace
