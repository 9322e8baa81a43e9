// Text as large as the desktop wants it and in other languages, in windows of every shape: nothing of it is cut,
// nothing leaves the window.

#include "tests/app/SettingsPageTest.h"

#include "app/translation.h"
#include "desktop/painting/png.h"
#include "kit/foundation/translation.h"
#include "kit/quartz/text_runs.h"
#include "kit/quartz/text_size.h"
#include "kit/uikit/UISwitch.h"
#include "kit/uikit/appearance.h"
#include "kit/uikit/hid_keys.h"
#include "kit/uikit/snapshot.h"
#include "platform/uikit/UIAlertView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITableView.h"

#include <cstdlib>

namespace large_text_tests {
namespace {

using Role = UIAccessibilityRole;

struct Shape {
    CGSize window;
    double text;
    const char* language = "en";
};

// Before the page is made.
struct Spoken {
    Spoken() {
        ::setenv("LC_ALL", "C.UTF-8", /*overwrite*/ 1);
        ::setenv("LANGUAGE", ::testing::WithParamInterface<Shape>::GetParam().language, /*overwrite*/ 1);
        app::speakTheUsersLanguage();
    }
    ~Spoken() {
        seat::setTranslator(nullptr);
        seat::appearance::setRightToLeft(false);
        ::unsetenv("LANGUAGE");
        ::unsetenv("LC_ALL");
    }
};

class LargeText : private Spoken, public SettingsPageTest, public ::testing::WithParamInterface<Shape> {
protected:
    LargeText() {
        page->scene().resize(GetParam().window, 1);
        page->notices().withdraw(app::NoticeKind::DaemonAbsent);
        settle();
        // As when the desktop's setting changes while the program runs.
        seat::setTextScale(GetParam().text);
        page->scene().layOutAnew();
        settle();
    }
    ~LargeText() override { seat::setTextScale(1); }

    static bool isShown(const UIView& view) { return !view.isHidden() && view.alpha() > 0.01; }

    void expectWhole(const UILabel& label) {
        const auto runs = label.attributedText() ? seat::textRuns(*label.attributedText(), label.font(), nullptr)
                                                 : seat::textRuns(label.text(), label.font(), nullptr);
        const CGSize room = label.bounds().size;
        const CGSize wanted = seat::measureText(runs, label.numberOfLines() == 1 ? 1e6 : room.width, 0).size;
        EXPECT_LE(wanted.width, room.width + 0.5) << screen << ": \"" << label.text() << '"';
        EXPECT_LE(wanted.height, room.height + 0.5) << screen << ": \"" << label.text() << '"';
        const CGRect inWindow = label.convertRect_toView(label.bounds(), page->scene().window().get());
        EXPECT_GE(CGRectGetMinX(inWindow), -0.5) << screen << ": \"" << label.text() << '"';
        EXPECT_LE(CGRectGetMaxX(inWindow), GetParam().window.width + 0.5) << screen << ": \"" << label.text() << '"';
        ++labels;
    }
    void expectWhole(const UIView& view) {
        if (!isShown(view)) return;
        if (const auto* const label = dynamic_cast<const UILabel*>(&view); label && !label->text().empty())
            expectWhole(*label);
        for (const auto& subview : view.subviews()) expectWhole(*subview);
    }
    // With JOYVANE_PICTURES a picture of it is written there, for whoever wants to look.
    void look(const std::string& name) {
        screen = name + " " + GetParam().language + " " + std::to_string(static_cast<int>(GetParam().window.width));
        settle();
        expectWhole(*page->scene().window());
        if (const char* const folder = std::getenv("JOYVANE_PICTURES"))
            seat::writePng(std::string(folder) + "/" + screen + "x" +
                               std::to_string(static_cast<int>(GetParam().window.height)) + "-" +
                               std::to_string(static_cast<int>(GetParam().text * 100)) + " " +
                               std::to_string(pictures++) + ".png",
                           *seat::snapshot(page->scene()));
    }
    static std::shared_ptr<UIScrollView> scrollViewIn(const UIView& view) {
        for (auto subviews = view.subviews(); const auto& subview : subviews) {
            if (!isShown(*subview)) continue;
            if (auto scroll = std::dynamic_pointer_cast<UIScrollView>(subview)) return scroll;
            if (auto scroll = scrollViewIn(*subview)) return scroll;
        }
        return nullptr;
    }
    // The screen in front, from its beginning to its end.
    void lookThrough(const std::string& name) {
        touches->wait(1);
        look(name);
        const auto scroll = scrollViewIn(*page->scene().window()->subviews().back());
        ASSERT_TRUE(scroll) << name;
        const double top = -scroll->contentInset().top;
        const double step = scroll->bounds().size.height + top;
        for (double y = top + step; y + 1 < scroll->contentSize().height; y += step) {
            scroll->setContentOffset({0, std::min(y, scroll->contentSize().height - scroll->bounds().size.height)});
            look(name);
        }
        scroll->setContentOffset({0, top});
        settle();
    }
    void back() {
        touches->key(seat::hid::left, UIKeyEvent::Alt);
        touches->wait(1);
        settle();
    }
    // Wherever the row is scrolled to.
    bool open(const std::string& row) { return bringIn(row) && tap(Role::ListItem, row) && (touches->wait(1), true); }
    bool bringIn(const std::string& row) {
        for (int i = 0; i < 40; ++i) {
            const auto* const node = find(Role::ListItem, row);
            if (node && CGRectGetMinY(node->extent) >= 44 && CGRectGetMaxY(node->extent) <= GetParam().window.height)
                return true;
            touches->key(seat::hid::down);
            touches->wait(1);
        }
        return false;
    }

    std::string screen;
    int labels = 0;
    int pictures = 0;
};

TEST_P(LargeText, NothingOfThePageIsCut) {
    lookThrough("page");
    EXPECT_GT(labels, 8);
}

TEST_P(LargeText, NothingOfChoicesAndKeysIsCut) {
    ASSERT_TRUE(open(seat::translated("Controller")));
    lookThrough("choices");
    ASSERT_TRUE(open(seat::translated("Keyboard")));
    lookThrough("page with a keyboard");
    ASSERT_TRUE(open("Configure Keymap"));
    lookThrough("keys");
    labels = 0;
    touches->key(seat::hid::down);
    touches->key(seat::hid::enter);
    look("waiting for a key");
    EXPECT_GT(labels, 1);
}

TEST_P(LargeText, NothingOfAlertsNoticesAndPanelsIsCut) {
    ASSERT_TRUE(bringIn("Pair Controller"));
    startSearch();
    look("search");
    back();
    page->notices().post(app::NoticeKind::DaemonEnded, {.text = "The daemon was ended by signal 9. Until it runs again "
                                                                "nothing can be connected.",
                                                        .actionTitle = "Start It Again",
                                                        .action = [] {}});
    look("notice");
    const auto alert = UIAlertView::alloc()->initWithTitle_message_delegate_cancelButtonTitle_otherButtonTitles(
        "Pairing failed", "The controller could not be paired. Hold SHARE and PS until its light flashes.", nullptr,
        "Cancel", {"Try Again"});
    alert->show();
    touches->wait(1);
    look("alert");
    alert->dismissWithClickedButtonIndex_animated(0, false);
}

TEST_P(LargeText, NothingOfTheHelpIsCut) {
    page->offerHelp({.inputSocket = root.path() + "/input", .guide = "/guide.html", .isSimulated = false}, [] {});
    page->showHelp();
    lookThrough("help");
}

class Languages : public LargeText {};

TEST_P(Languages, TextsOfOursAreTranslatedAndThePagesOwnStayAsTheyAre) {
    const bool isGerman = std::string(GetParam().language) == "de";
    page->offerHelp({.inputSocket = root.path() + "/input", .guide = {}, .isSimulated = false}, [] {});
    EXPECT_TRUE(find(Role::Button, isGerman ? "Hilfe" : "مساعدة"));
    const auto* const connection = find(Role::ListItem, isGerman ? "Verbindung" : "الاتصال");
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->value, isGerman ? "Automatisch" : "تلقائي");
    EXPECT_TRUE(find(Role::ListItem, "Pair Controller"));
    EXPECT_TRUE(find(Role::ListItem, "Ambient LED Color"));
    // For the ear everything is ours.
    const auto* const colour = find(Role::ListItem, "Choose LED Color");
    ASSERT_TRUE(colour);
    EXPECT_EQ(colour->value, isGerman ? "blau, 004efd" : "أزرق, 004efd");
}

TEST_P(Languages, ThePageIsLaidOutInTheirDirection) {
    const bool isRightToLeft = std::string(GetParam().language) == "ar";
    const double middle = GetParam().window.width / 2;
    const auto isAtTheEnd = [&](const seat::AccessibilityNode& node) {
        return isRightToLeft ? CGRectGetMaxX(node.extent) < middle : CGRectGetMinX(node.extent) > middle;
    };
    page->offerHelp({.inputSocket = root.path() + "/input", .guide = {}, .isSimulated = false}, [] {});
    look("direction");
    const auto* const ambient = find(Role::Switch, "Ambient LED Color");
    ASSERT_TRUE(ambient);
    EXPECT_TRUE(isAtTheEnd(*ambient));
    const auto* const help = find(Role::Button, seat::translated("Help"));
    ASSERT_TRUE(help);
    EXPECT_TRUE(isAtTheEnd(*help));

    ASSERT_TRUE(open(seat::translated("Controller")));
    const std::string back = seat::filled(seat::translated("Back to %1"), {"Joyvane"});
    ASSERT_TRUE(find(Role::Button, back));
    EXPECT_FALSE(isAtTheEnd(*find(Role::Button, back)));
}

INSTANTIATE_TEST_SUITE_P(Windows, Languages, ::testing::Values(Shape{{375, 667}, 1, "de"}, Shape{{375, 667}, 1, "ar"}));
INSTANTIATE_TEST_SUITE_P(Windows, LargeText,
                         ::testing::Values(Shape{{320, 480}, 1}, Shape{{320, 480}, 1.5}, Shape{{320, 480}, 2},
                                           Shape{{320, 240}, 2}, Shape{{375, 667}, 2}, Shape{{720, 360}, 2},
                                           Shape{{1024, 768}, 1.5}, Shape{{1024, 768}, 2}, Shape{{320, 480}, 1, "de"},
                                           Shape{{320, 480}, 2, "de"}, Shape{{320, 480}, 1, "ar"},
                                           Shape{{375, 667}, 1.5, "ar"}));

} // namespace
} // namespace large_text_tests
