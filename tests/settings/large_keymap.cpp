// A keymap of every number that a key can have: the file is large, and a tap must not read it twice.

#include "tests/settings/PageTest.h"
#include "tests/support/SystemCalls.h"

#include <atomic>
#include <sstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using testing_support::SystemCall;
using testing_support::SystemCalls;

class LargeKeymap : public PageTest {
protected:
    void writeXML() const {
        std::ostringstream file;
        file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>controller_type</key>"
                "<integer>6</integer><key>JVNKeyboardKeymapKey</key><dict>\n";
        for (int i = 0; i < 65'536; ++i) file << "<key>" << i << "</key><integer>" << i % 21 + 1 << "</integer>\n";
        file << "</dict></dict></plist>\n";
        testing_support::TestRoot::write(app.preferencesFile(), file.str());
    }
    // How often the main thread begins to read a large file meanwhile.
    template <class Use> static int largeReads(Use use) {
        const auto here = std::this_thread::get_id();
        std::atomic<int> reads = 0;
        SystemCalls calls;
        calls.before(SystemCall::Read, [&](int descriptor) {
            struct stat status {};
            if (std::this_thread::get_id() == here && ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
                status.st_size > 1 << 20 && ::lseek(descriptor, 0, SEEK_CUR) == 0)
                ++reads;
        });
        use();
        calls.clear();
        return reads;
    }
};

TEST_F(LargeKeymap, IsReadOnceByTheTapThatOpensItsEditor) {
    writeXML();
    show();
    // Until its times are far enough behind for a change of it to show.
    const auto type = page->specifierForID("controller_type");
    EXPECT_TRUE(app.waitUntil([&] { return largeReads([&] { page->readPreferenceValue(type); }) == 0; }, 60));
    EXPECT_EQ(page->readPreferenceValue(type), id(NSNumber::numberWithInteger(6)));

    EXPECT_EQ(largeReads([&] { EXPECT_TRUE(app.tap("Configure Keymap")); }), 1);
}

} // namespace
