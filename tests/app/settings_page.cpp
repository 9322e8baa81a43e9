// The real bundle's page in the application, as a finger and a keyboard meet it.

#include "tests/app/SettingsPageTest.h"

#include "kit/uikit/hid_keys.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "system/notify/NotifyListener.h"
#include "tests/support/BusPeer.h"
#include "tests/support/ScriptedDaemon.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

std::string builtBundle() { return JOYVANE_BUNDLE; }

namespace {

namespace fs = std::filesystem;

TEST_F(SettingsPageTest, EscapeDuringASearchInterruptsTheToolAndTakesThePanelAway) {
    startSearch();

    touches->key(seat::hid::escape);

    EXPECT_TRUE(waitUntil([&] { return toolLog() == "started\ninterrupted\n"; }));
    EXPECT_FALSE(find(UIAccessibilityRole::ProgressIndicator));
}

TEST_F(SettingsPageTest, CancelDuringASearchInterruptsTheToolAndTakesThePanelAway) {
    startSearch();

    ASSERT_TRUE(tap(UIAccessibilityRole::Button, "Cancel"));

    EXPECT_TRUE(waitUntil([&] { return toolLog() == "started\ninterrupted\n"; }));
    EXPECT_FALSE(find(UIAccessibilityRole::ProgressIndicator));
}

TEST_F(SettingsPageTest, TheNoticeOfAnAbsentDaemonStaysUntilItIsReachedAgain) {
    touches->wait(600);
    ASSERT_TRUE(find(UIAccessibilityRole::Alert)) << "without a daemon";
    const testing_support::ScriptedDaemon daemon(root.path());

    ASSERT_TRUE(tap(UIAccessibilityRole::ListItem, "Restart Daemons"));

    constexpr const char* isThere = "The daemon has started. What could not be done before can be tried again now.";
    EXPECT_TRUE(waitUntil([&] {
        const auto* const notice = find(UIAccessibilityRole::Alert);
        return notice && notice->name == isThere;
    }));
    ASSERT_TRUE(tap(UIAccessibilityRole::Button, "Close"));
    EXPECT_FALSE(find(UIAccessibilityRole::Alert));
    ASSERT_TRUE(tap(UIAccessibilityRole::ListItem, "Restart Daemons"));
    touches->wait(1);
    EXPECT_FALSE(find(UIAccessibilityRole::Alert)) << "it was there already";
}

TEST_F(SettingsPageTest, ADaemonThatGoesAgainIsNotSaidToHaveStarted) {
    {
        const testing_support::ScriptedDaemon daemon(root.path());
        ASSERT_TRUE(tap(UIAccessibilityRole::ListItem, "Restart Daemons"));
        ASSERT_TRUE(waitUntil([&] {
            const auto* const notice = find(UIAccessibilityRole::Alert);
            return notice && notice->name.starts_with("The daemon has started.");
        }));
    }
    page->navigation()->viewControllers().front()->viewWillAppear(false); // asks the daemon
    EXPECT_TRUE(waitUntil([&] {
        const auto* const notice = find(UIAccessibilityRole::Alert);
        return notice && notice->name.find("does not answer") != std::string::npos;
    }));
    ASSERT_TRUE(tap(UIAccessibilityRole::Button, "Close"));
    EXPECT_FALSE(find(UIAccessibilityRole::Alert));
}

TEST_F(SettingsPageTest, ADaemonThatDoesNotAnswerIsSaidUntilItDoes) {
    page->notices().withdraw(app::NoticeKind::DaemonAbsent);
    testing_support::ScriptedDaemon daemon(root.path()); // takes what it is sent
    const auto screen = page->navigation()->viewControllers().front();
    const auto silence = [&] {
        const auto* const notice = find(UIAccessibilityRole::Alert);
        return notice && notice->name.starts_with("The daemon has not answered in time.");
    };

    screen->viewWillAppear(false); // asks the daemon
    EXPECT_TRUE(waitUntil(silence));

    daemon.setScript([](testing_support::DaemonPeer& peer) {
        peer.read(12);
        peer.write({5, 0, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0});
        peer.readToEnd();
    });
    // A busy machine may keep the answer from coming in time.
    for (int i = 0; i < 20 && silence(); ++i) {
        const std::size_t ended = daemon.connectionCount();
        screen->viewWillAppear(false);
        ASSERT_TRUE(waitUntil([&] { return daemon.connectionCount() > ended; }));
        settle();
    }
    EXPECT_FALSE(silence());
}

TEST_F(SettingsPageTest, WhatFailsForThePageOfAnotherRootIsNoNewsHere) {
    page->notices().withdraw(app::NoticeKind::DaemonAbsent); // of the first appearance
    ASSERT_FALSE(find(UIAccessibilityRole::Alert));
    bool heard = false;
    const seat::NotifyListener listener("com.quorrel.jvnfailure", [&] { heard = true; });
    const testing_support::BusPeer other(bus.address());
    ASSERT_TRUE(waitUntil([&] {
        other.emitSignal("/com/quorrel", "com.quorrel", "jvnfailure");
        return heard;
    }));
    touches->wait(0.1);

    EXPECT_FALSE(find(UIAccessibilityRole::Alert));
}

TEST_F(SettingsPageTest, AToolThatIsMissingIsSaidUntilOneRuns) {
    page->notices().withdraw(app::NoticeKind::DaemonAbsent);
    ASSERT_TRUE(tap(UIAccessibilityRole::ListItem, "Pair Controller"));
    const auto* const notice = find(UIAccessibilityRole::Alert);
    ASSERT_TRUE(notice);
    EXPECT_NE(notice->name.find("/usr/bin/jvndiscovery, does not run: No such file"), std::string::npos)
        << notice->name;

    touches->key(seat::hid::escape); // the panel may lie over the row
    startSearch();

    EXPECT_FALSE(find(UIAccessibilityRole::Alert));
}

TEST_F(SettingsPageTest, WhatBecomesOfATapIsSaidBeforeTheDaemonsAbsence) {
    const auto* const absent = find(UIAccessibilityRole::Alert);
    ASSERT_TRUE(absent && absent->name.find("daemon does not answer") != std::string::npos);
    const std::size_t lines = log.lines().size();

    EXPECT_FALSE(UIApplication::sharedApplication()->openURL("gopher://a.example/")); // no browser's

    const auto* const notice = find(UIAccessibilityRole::Alert);
    ASSERT_TRUE(notice);
    EXPECT_TRUE(notice->name.ends_with("Open this in one yourself: gopher://a.example/")) << notice->name;
    EXPECT_EQ(log.lines().size(), lines + 1);
    ASSERT_TRUE(tap(UIAccessibilityRole::Button, "Close"));
    ASSERT_TRUE(find(UIAccessibilityRole::Alert)) << "which is true still";
}

TEST_F(SettingsPageTest, AToolThatEndsBadlyIsSaidAndOneThatIsInterruptedIsNot) {
    page->notices().withdraw(app::NoticeKind::DaemonAbsent);
    startSearch();
    touches->key(seat::hid::escape);
    ASSERT_TRUE(waitUntil([&] { return toolLog() == "started\ninterrupted\n"; }));
    EXPECT_FALSE(find(UIAccessibilityRole::Alert));

    std::ofstream(root.path() + "/usr/bin/jvndiscovery") << "#!/bin/sh\nexit 3\n";
    ASSERT_TRUE(tap(UIAccessibilityRole::ListItem, "Pair Controller"));

    EXPECT_TRUE(waitUntil([&] {
        const auto* const notice = find(UIAccessibilityRole::Alert);
        return notice && notice->name.find("it ended with 3") != std::string::npos;
    }));
}

TEST_F(SettingsPageTest, ASettingThatIsNotStoredIsSaidUntilOneIs) {
    page->notices().withdraw(app::NoticeKind::DaemonAbsent);
    const fs::path preferences = root.path() + "/var/mobile/Library/Preferences";
    fs::rename(preferences, preferences.string() + ".away");
    std::ofstream(preferences) << "a file where a folder is wanted";
    seat::setPreferenceValue("com.quorrel.joyvane", "key", id(NSNumber::numberWithInteger(1)));
    EXPECT_TRUE(waitUntil([&] {
        const auto* const notice = find(UIAccessibilityRole::Alert);
        return notice && notice->name.starts_with("Your change could not be stored: ");
    }));

    fs::remove(preferences);
    fs::rename(preferences.string() + ".away", preferences);
    seat::setPreferenceValue("com.quorrel.joyvane", "key", id(NSNumber::numberWithInteger(2)));

    EXPECT_TRUE(waitUntil([&] { return !find(UIAccessibilityRole::Alert); }));
}

TEST_F(SettingsPageTest, WithoutADiscoveryToolThereIsAWayOutToo) {
    ASSERT_TRUE(tap(UIAccessibilityRole::ListItem, "Pair Controller"));
    ASSERT_TRUE(find(UIAccessibilityRole::ProgressIndicator));

    touches->key(seat::hid::escape);

    EXPECT_FALSE(find(UIAccessibilityRole::ProgressIndicator));
}

TEST_F(SettingsPageTest, ASettingThatCannotBeStoredIsSaidWithTheReason) {
    const fs::path file = root.path() + "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";
    ASSERT_TRUE(find(UIAccessibilityRole::Switch, "Ambient LED Color"));
    fs::remove(file);
    fs::create_directory(file);

    ASSERT_TRUE(tap(UIAccessibilityRole::Switch, "Ambient LED Color"));

    EXPECT_TRUE(waitUntil([&] {
        return find(UIAccessibilityRole::Alert, "Your change could not be stored: a folder is in its place. Put that "
                                                "right and change it once more.");
    }));
}

TEST_F(SettingsPageTest, ADamagedFileThatWasMovedAsideIsSaidWithItsNewName) {
    const fs::path file = root.path() + "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist";
    ASSERT_TRUE(find(UIAccessibilityRole::Switch, "Ambient LED Color"));
    std::ofstream(file) << "damaged";

    ASSERT_TRUE(tap(UIAccessibilityRole::Switch, "Ambient LED Color"));

    EXPECT_TRUE(waitUntil([&] {
        return find(UIAccessibilityRole::Alert,
                    "Your settings could not be read, so this is a new beginning. The old file is kept as "
                    "com.quorrel.joyvane.damaged-1 (it is no property list).");
    }));
}

TEST_F(SettingsPageTest, ADamagedResourceIsSaidWithTheFileAndTheReason) {
    testing_support::TemporaryFolder folder;
    fs::copy(JOYVANE_BUNDLE, folder.file("Joyvane.bundle"), fs::copy_options::recursive);
    const std::string rows = folder.file("Joyvane.bundle/Joyvane.plist");
    ASSERT_TRUE(fs::exists(rows));
    std::ofstream(rows) << "damaged";
    std::string problem;
    const app::Bundle bundle = app::readBundle(folder.file("Joyvane.bundle"), problem);

    app::SettingsPage damaged(bundle, objc_getClass(bundle.principalClass), CGSize{375, 667}, 1);

    std::string said;
    for (const auto& view : damaged.scene().window()->subviews())
        if (view->accessibilityRole() == UIAccessibilityRole::Alert) said += view->accessibilityLabel();
    EXPECT_NE(said.find(rows + ": property list "), std::string::npos) << said;
}

} // namespace
