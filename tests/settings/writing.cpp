// Settings as they are read from the store and written into it, by touch.

#include "platform/foundation/NSData.h"
#include "system/files/Descriptor.h"
#include "system/notify/NotifyListener.h"
#include "tests/settings/PageTest.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/SystemCalls.h"

#include <fcntl.h>
#include <sys/file.h>

namespace {

const id yes = NSNumber::numberWithBool(true);
const id no = NSNumber::numberWithBool(false);

class Settings : public PageTest {
protected:
    Settings()
        : m_changed("com.quorrel.jvnprefs.changed", [this] { announced.push_back(app.preference(watchedKey)); }) {}

    // What the file held under the key whenever a change was announced.
    void watch(const std::string& key) {
        watchedKey = key;
        announced.clear();
    }
    std::vector<std::string> buttonsInSight() {
        std::vector<std::string> names;
        app.settle();
        auto& tree = app.scene().accessibility();
        tree.update();
        for (const auto& [identity, node] : tree.nodes())
            if (node.role == UIAccessibilityRole::Button) names.push_back(node.name);
        return names;
    }

    std::string watchedKey;
    std::vector<id> announced;
    testing_support::LoggedLines log;

private:
    seat::NotifyListener m_changed;
};

TEST_F(Settings, OfASwitchAreInTheFileWhenTheyAreAnnounced) {
    show(1);
    watch("JVNAmbientColorKey");

    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));
    EXPECT_EQ(announced, std::vector<id>{yes});
    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));
    EXPECT_EQ(announced, (std::vector<id>{yes, no}));
}

TEST_F(Settings, ThatWarnAreInTheFileAndAnnouncedAllTheSame) {
    show(5);
    watch("JVNForceExtendedGamepad");

    ASSERT_TRUE(app.tapSwitch("Force Extended Gamepad"));

    EXPECT_TRUE(app.alert());
    EXPECT_EQ(announced, std::vector<id>{yes});
}

TEST_F(Settings, OfAListAreInTheFileWhenTheyAreAnnounced) {
    show();
    watch("connection_mode");

    ASSERT_TRUE(app.tap("Connection"));
    ASSERT_TRUE(app.tap("Connect by Hand"));

    EXPECT_EQ(announced, std::vector<id>{NSNumber::numberWithInteger(1)});
}

TEST_F(Settings, ThatWaitForAnotherProgramsLockAreShownAndAnnouncedWhenTheyAreInTheFile) {
    show(1);
    watch("JVNAmbientColorKey");
    const std::string lock = app.root() + "/var/mobile/Library/Preferences/.lock.com.quorrel.joyvane";
    seat::Descriptor held(::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_EQ(::flock(held.get(), LOCK_EX), 0);

    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));
    app.settle();
    EXPECT_EQ(announced, std::vector<id>{});
    EXPECT_TRUE(page->readPreferenceValue(page->specifierForID("JVNAmbientColorID")).boolValue());
    held.reset();

    EXPECT_TRUE(app.waitUntil([&] { return !announced.empty(); }));
    EXPECT_EQ(announced, std::vector<id>{yes});
}

TEST_F(Settings, ThatCannotBeStoredAreNotAnnouncedAndThePageShowsWhatTheFileHas) {
    show(1);
    watch("JVNAmbientColorKey");
    const std::string before = rows();
    testing_support::SystemCalls calls;
    calls.fail(testing_support::SystemCall::Flush, EIO);

    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));
    app.settle();

    EXPECT_EQ(announced, std::vector<id>{});
    EXPECT_EQ(rows(), before);
    EXPECT_FALSE(page->readPreferenceValue(page->specifierForID("JVNAmbientColorID")).boolValue());
}

TEST_F(Settings, AreWrittenBeforeThePageReacts) {
    show(1);
    const std::string before = rows();
    std::string whileWriting;
    testing_support::SystemCalls calls;
    calls.before(testing_support::SystemCall::Flush, [&](int) { whileWriting = rows(); });

    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));

    calls.clear();
    EXPECT_EQ(whileWriting, before);
    EXPECT_NE(rows(), before);
}

TEST_F(Settings, AreWrittenBeforeThePageWarns) {
    show(5);
    const auto views = [&] { return app.scene().window()->subviews().size(); };
    const std::size_t before = views();
    std::size_t whileWriting = 0;
    testing_support::SystemCalls calls;
    calls.before(testing_support::SystemCall::Flush, [&](int) { whileWriting = views(); });

    ASSERT_TRUE(app.tapSwitch("Force Extended Gamepad"));

    calls.clear();
    EXPECT_EQ(whileWriting, before);
    EXPECT_EQ(views(), before + 1);
}

TEST_F(Settings, WarningHasDismissAsItsOnlyButton) {
    show(5);

    ASSERT_TRUE(app.tapSwitch("Force Extended Gamepad"));

    EXPECT_EQ(buttonsInSight(), std::vector<std::string>{"Dismiss"});
}

TEST_F(Settings, OfOtherRowsSetOffNothingMore) {
    show(1, 1);
    const std::string before = rows();

    page->setPreferenceValue_specifier("ff0000", page->ds4ColorChooser());
    page->setPreferenceValue_specifier(NSNumber::numberWithInteger(6), page->specifierForID("controller_type"));

    EXPECT_EQ(rows(), before) << "rows follow a new type when the page comes back from its list";
    EXPECT_EQ(app.alert(), std::nullopt);
    EXPECT_EQ(app.preference("JVNLEDColorKey"), id("ff0000"));
    EXPECT_EQ(app.preference("controller_type").integerValue(), 6);
}

TEST_F(Settings, LeaveEveryOtherKeyOfTheFileAlone) {
    const std::uint8_t address[] = {1, 2, 3, 4, 5, 6};
    show(1, 1, {{"PS4BluetoothAddress", NSData::dataWithBytes(address)}, {"TheDaemonsOwn", "kept"}});

    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));

    const auto expected = testing_support::dictionary({{"PS4BluetoothAddress", NSData::dataWithBytes(address)},
                                                       {"TheDaemonsOwn", "kept"},
                                                       {"controller_type", NSNumber::numberWithInteger(1)},
                                                       {"connection_mode", NSNumber::numberWithInteger(1)},
                                                       {"JVNAmbientColorKey", yes}});
    ASSERT_TRUE(app.preferences());
    EXPECT_TRUE(app.preferences()->isEqual(*expected));
}

TEST_F(Settings, TypeAndModeCountByTheirIntegerValueHoweverTheyAreStored) {
    const std::pair<id, long> cases[] = {{id("6"), 6},
                                         {id(NSNumber::numberWithDouble(1.9)), 1},
                                         {yes, 1},
                                         {id("by hand"), 0},
                                         {id(NSData::dataWithVector({1})), 0}};
    for (const auto& [stored, value] : cases) {
        show({{"controller_type", stored}, {"connection_mode", stored}});
        EXPECT_EQ(page->currentControllerType(), value);
        EXPECT_EQ(page->connectionType(), value);
        app.close();
    }
}

} // namespace
