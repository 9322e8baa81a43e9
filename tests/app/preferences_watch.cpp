// What another program writes into the preferences, on the page.

#include "tests/app/SettingsPageTest.h"

#include "app/PreferencesWatch.h"
#include "kit/uikit/hid_keys.h"
#include "platform/uikit/UITableView.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

namespace preferences_watch_tests {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using Role = UIAccessibilityRole;

class StoredValues : public SettingsPageTest {
protected:
    fs::path folder() const { return root.path() + "/var/mobile/Library/Preferences"; }
    // As a program does it that knows how: the file is there whole at every moment.
    void write(const std::string& keys) const {
        const fs::path fresh = folder() / "com.quorrel.joyvane.plist.other";
        std::ofstream(fresh) << "<plist version=\"1.0\"><dict>" << keys << "</dict></plist>";
        fs::rename(fresh, folder() / "com.quorrel.joyvane.plist");
    }
    static std::string number(const std::string& key, int value) {
        return "<key>" + key + "</key><integer>" + std::to_string(value) + "</integer>";
    }
    bool shows(const std::string& row, const std::string& value) {
        return waitUntil([&] {
            const auto* const node = find(Role::ListItem, row);
            return node && node->value == value;
        });
    }
    std::shared_ptr<UITableView> table() const {
        const auto& view = page->navigation()->viewControllers().front()->view();
        return std::dynamic_pointer_cast<UITableView>(view->subviews().front());
    }
};

TEST_F(StoredValues, OfAnotherProgramAreShownWithTheirRows) {
    ASSERT_TRUE(find(Role::ListItem, "Ambient LED Color"));

    write(number("controller_type", 2) + number("connection_mode", 1));

    EXPECT_TRUE(shows("Controller", "Red SYNC Button"));
    EXPECT_TRUE(shows("Connection", "Connect by Hand"));
    EXPECT_TRUE(find(Role::ListItem, "Connect Controller"));
    EXPECT_FALSE(find(Role::ListItem, "Ambient LED Color"));
}

TEST_F(StoredValues, AreShownWithoutLosingTheFocus) {
    ASSERT_TRUE(find(Role::ListItem, "Connection"));
    for (int i = 0; i < 10 && !find(Role::ListItem, "Connection")->isFocused; ++i) touches->key(seat::hid::down);
    ASSERT_TRUE(find(Role::ListItem, "Connection")->isFocused);

    write(number("controller_type", 2) + number("connection_mode", 1));

    ASSERT_TRUE(shows("Connection", "Connect by Hand"));
    EXPECT_TRUE(find(Role::ListItem, "Connection")->isFocused);
}

TEST_F(StoredValues, AreShownWithoutLosingThePlaceThatIsScrolledTo) {
    page->notices().withdraw(app::NoticeKind::DaemonAbsent);
    page->scene().resize({320, 300}, 1);
    settle();
    table()->setContentOffset({0, 40});
    settle();

    write(number("controller_type", 2) + number("connection_mode", 1));

    ASSERT_TRUE(waitUntil([&] { return find(Role::ListItem, "Connect Controller") != nullptr; }));
    EXPECT_EQ(table()->contentOffset().y, 40);
}

TEST_F(StoredValues, AreShownUnderAFingerThatGoesOn) {
    const auto* const node = find(Role::ListItem, "Connection");
    ASSERT_TRUE(node);
    const CGPoint place{CGRectGetMidX(node->extent), CGRectGetMidY(node->extent)};
    page->scene().window()->touchBegan(1, place, clock.mediaTime());

    write(number("controller_type", 1) + number("connection_mode", 1));

    ASSERT_TRUE(shows("Connection", "Connect by Hand"));
    page->scene().window()->touchEnded(1, place, clock.mediaTime());
    EXPECT_TRUE(waitUntil([&] { return find(Role::NavigationBar, "Connection") != nullptr; })) << "it was a tap";
}

TEST_F(StoredValues, AreCheckedAmongTheChoicesThatAreOpen) {
    ASSERT_TRUE(tap(Role::ListItem, "Controller"));
    touches->wait(1);
    ASSERT_TRUE(find(Role::ListItem, "DualShock 4")->isSelected);

    write(number("controller_type", 3));

    EXPECT_TRUE(waitUntil([&] { return find(Role::ListItem, "X + HOME 1")->isSelected; }));
    EXPECT_FALSE(find(Role::ListItem, "DualShock 4")->isSelected);
}

TEST_F(StoredValues, ThatCannotBeReadLeaveThePageAsItIs) {
    ASSERT_TRUE(shows("Controller", "DualShock 4"));
    std::ofstream(folder() / "com.quorrel.joyvane.plist") << "damaged";
    touches->wait(1);
    settle();
    EXPECT_TRUE(shows("Controller", "DualShock 4"));

    write(number("controller_type", 2));
    EXPECT_TRUE(shows("Controller", "Red SYNC Button"));
}

TEST_F(StoredValues, InAFolderThatWasMadeAnewAreShown) {
    fs::remove_all(root.path() + "/var");
    ASSERT_TRUE(waitUntil([&] {
        const auto* const node = find(Role::ListItem, "Controller");
        return node && node->value == "PS3 Controller";
    }));

    fs::create_directories(folder());
    write(number("controller_type", 2));

    EXPECT_TRUE(shows("Controller", "Red SYNC Button"));
}

// What the system refuses costs a line, and nothing else.
class UnwatchedValues : public testing::Test {
protected:
    std::vector<std::string> lines(const std::string& folder) {
        const testing_support::CapturedLog log;
        const app::PreferencesWatch watch(folder, [] { ADD_FAILURE() << "nothing was written"; });
        return log.lines();
    }
};

TEST_F(UnwatchedValues, AreSaidOnceWhenThereIsNoDescriptorForTheWatch) {
    ::rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const ::rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    const auto said = lines("/tmp");
    ::setrlimit(RLIMIT_NOFILE, &before);

    EXPECT_THAT(said, ElementsAre("watch /tmp: Too many open files; what other programs change is shown later"));
}

TEST_F(UnwatchedValues, AreSaidOnceWhenTheirFolderCannotBeWatched) {
    const testing_support::TemporaryFolder folder;
    fs::create_symlink(folder.file("circle"), folder.file("circle"));

    EXPECT_THAT(lines(folder.file("circle")),
                ElementsAre(testing::EndsWith("circle: Too many levels of symbolic links; what other programs "
                                              "change is shown later")));
}

} // namespace
} // namespace preferences_watch_tests
