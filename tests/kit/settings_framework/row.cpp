#include "kit/runtime/log.h"
#include "kit/seat.h"
#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/hid_keys.h"
#include "tests/kit/settings_framework/pages.h"

#include <thread>

namespace {

class PageRows : public PageTest {
protected:
    static id stored(const std::string& key) { return seat::preferenceValue("com.quorrel.test", key); }
    std::shared_ptr<UISwitch> toggle(const std::string& identifier) const {
        return std::dynamic_pointer_cast<UISwitch>(cell(identifier)->accessoryView());
    }
    std::string shownChoices() const {
        std::string text;
        const auto list = std::dynamic_pointer_cast<UITableViewController>(navigation->topViewController());
        if (!list) return "none";
        for (const auto& choice : list->tableView()->visibleCells())
            text += (choice->accessoryType() == UITableViewCellAccessoryType::Checkmark ? "*" : "") +
                    choice->textLabel()->text() + " ";
        return text;
    }
};

TEST_F(PageRows, SwitchShowsTheDefaultWhileNothingIsStored) {
    writeResource(item("PSSwitchCell", "a", "A", bound("a", "<true/>")) +
                  item("PSSwitchCell", "b", "B", bound("b", "<false/>")));
    show();

    EXPECT_TRUE(toggle("a")->isOn());
    EXPECT_FALSE(toggle("b")->isOn());
    EXPECT_FALSE(page->readPreferenceValue(page->specifierForID("a")));
}

TEST_F(PageRows, SwitchStoresABooleanThroughTheRowsSetter) {
    writeResource(item("PSSwitchCell", "a", "A", bound("a", "<false/>")));
    show();

    touches.tap(*toggle("a"));
    touches.settle();

    ASSERT_TRUE(stored("a").number());
    EXPECT_EQ(stored("a").number()->type(), NSNumber::Type::Bool);
    EXPECT_TRUE(stored("a").boolValue());
    EXPECT_EQ(page->log, "set(a) ");
}

TEST_F(PageRows, TapOnASwitchesRowBesideTheSwitchTurnsIt) {
    writeResource(item("PSSwitchCell", "a", "A", bound("a", "<false/>")));
    show();

    touches.tap(cell("a")->convertPoint_toView({40, 22}, nullptr));
    EXPECT_TRUE(stored("a").boolValue());
    touches.tap(cell("a")->convertPoint_toView({40, 22}, nullptr));

    EXPECT_FALSE(stored("a").boolValue());
    EXPECT_EQ(page->log, "set(a) set(a) ") << "once a tap";
    EXPECT_FALSE(page->table()->indexPathForSelectedRow());
}

TEST_F(PageRows, ADragFromASwitchesRowScrollsAndTurnsNothing) {
    writeResource(item("PSSwitchCell", "a", "A", bound("a", "<false/>")));
    show();
    const CGPoint start = cell("a")->convertPoint_toView({40, 22}, nullptr);

    touches.drag(start, {start.x, start.y + 80});
    touches.settle();

    EXPECT_EQ(page->log, "");
}

TEST_F(PageRows, ReloadShowsAValueThatAnotherProgramStored) {
    writeResource(item("PSSwitchCell", "a", "A", bound("a", "<false/>")));
    show();
    seat::setPreferenceValue("com.quorrel.test", "a", NSNumber::numberWithBool(true));

    page->reloadSpecifierID("a");

    EXPECT_TRUE(toggle("a")->isOn());
}

TEST_F(PageRows, ButtonSendsItsActionWithOrWithoutTheRow) {
    writeResource(item("PSButtonCell", "a", "A", "<key>action</key><string>tapped:</string>") +
                  item("PSButtonCell", "b", "B", "<key>action</key><string>plain</string>"));
    show();

    touches.tap(*cell("a"));
    touches.tap(*cell("b"));

    EXPECT_EQ(page->log, "tapped(a) plain ");
    EXPECT_FALSE(page->table()->indexPathForSelectedRow());
}

TEST_F(PageRows, ActionThatDoesNotExistIsLoggedOnceAndNothingHappens) {
    writeResource(item("PSButtonCell", "a", "A", "<key>action</key><string>notBuiltYet</string>"));
    show();
    std::vector<std::string> lines;
    seat::setLogSink([&](std::string_view line) { lines.emplace_back(line); });

    touches.tap(*cell("a"));

    seat::setLogSink({});
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("notBuiltYet"), std::string::npos);
}

TEST_F(PageRows, ButtonWithoutActionDoesNothing) {
    writeResource(item("PSButtonCell", "a", "A"));
    show();

    touches.tap(*cell("a"));

    EXPECT_FALSE(page->table()->indexPathForSelectedRow());
}

TEST_F(PageRows, DisabledRowTakesNoTap) {
    writeResource(item("PSButtonCell", "a", "A", "<key>action</key><string>tapped:</string>"));
    show();
    cell("a")->setUserInteractionEnabled(false);

    touches.tap(*cell("a"));
    EXPECT_EQ(page->log, "");
    cell("a")->setUserInteractionEnabled(true);
    touches.tap(*cell("a"));

    EXPECT_EQ(page->log, "tapped(a) ");
}

class LinkLists : public PageRows {
protected:
    LinkLists() {
        writeResource(item("PSLinkListCell", "type", "Type",
                           bound("type", "<integer>1</integer>") + choices({"Zero", "One", "Two"}) +
                               "<key>footerText</key><string>About the types.</string>") +
                      item("PSButtonCell", "b", "B"));
    }
};

TEST_F(LinkLists, ShowTheTitleOfTheStoredValueElseOfTheDefault) {
    show();
    EXPECT_EQ(cell("type")->detailTextLabel()->text(), "One");

    seat::setPreferenceValue("com.quorrel.test", "type", NSNumber::numberWithInteger(2));
    page->reloadSpecifierID("type");

    EXPECT_EQ(cell("type")->detailTextLabel()->text(), "Two");
}

TEST_F(LinkLists, ValueOfAnotherTypeIsShownAsItsNumber) {
    seat::setPreferenceValue("com.quorrel.test", "type", "2");
    show();
    EXPECT_EQ(cell("type")->detailTextLabel()->text(), "Two");

    seat::setPreferenceValue("com.quorrel.test", "type", NSNumber::numberWithDouble(0));
    page->reloadSpecifierID("type");

    EXPECT_EQ(cell("type")->detailTextLabel()->text(), "Zero");
}

TEST_F(LinkLists, ValueOutsideTheListIsShownAsItIs) {
    seat::setPreferenceValue("com.quorrel.test", "type", NSNumber::numberWithInteger(99));
    show();

    EXPECT_EQ(cell("type")->detailTextLabel()->text(), "99");
}

TEST_F(LinkLists, TapOpensTheListWithTheChosenOneChecked) {
    show();

    touches.tap(*cell("type"));
    touches.settle();

    EXPECT_EQ(shownChoices(), "Zero *One Two ");
    EXPECT_EQ(navigation->topViewController()->title(), "Type");
    EXPECT_EQ(page->table()->indexPathForSelectedRow()->row(), 0);
}

TEST_F(LinkLists, ChoiceIsStoredThroughTheSetterShownAndLeadsBack) {
    show();
    touches.tap(*cell("type"));
    touches.settle();
    const auto list = std::dynamic_pointer_cast<UITableViewController>(navigation->topViewController());

    touches.tap(*list->tableView()->visibleCells()[2]);
    EXPECT_EQ(stored("type").integerValue(), 2);
    EXPECT_EQ(page->log, "set(type) ");
    touches.settle();

    EXPECT_EQ(navigation->topViewController(), page);
    EXPECT_EQ(cell("type")->detailTextLabel()->text(), "Two");
    EXPECT_FALSE(page->table()->indexPathForSelectedRow());
}

TEST_F(LinkLists, GoingBackWithoutAChoiceStoresNothing) {
    show();
    touches.tap(*cell("type"));
    touches.settle();

    touches.key(seat::hid::escape);
    touches.settle();

    EXPECT_FALSE(stored("type"));
    EXPECT_EQ(navigation->topViewController(), page);
    EXPECT_FALSE(page->table()->indexPathForSelectedRow());
}

TEST_F(LinkLists, ChoiceCanBeMadeByKeysAlone) {
    show();
    touches.key(seat::hid::down);
    touches.key(seat::hid::enter);
    touches.settle();
    ASSERT_EQ(shownChoices(), "Zero *One Two ");

    const auto list = std::dynamic_pointer_cast<UITableViewController>(navigation->topViewController());
    for (int i = 0; i < 5 && scene.window()->focusedView() != list->tableView()->visibleCells()[2]; ++i)
        touches.key(seat::hid::down);
    touches.key(seat::hid::enter);
    touches.settle();

    EXPECT_EQ(stored("type").integerValue(), 2);
    EXPECT_EQ(navigation->topViewController(), page);
}

TEST_F(LinkLists, RowThatWasRebuiltMeanwhileStillShowsTheChoice) {
    show();
    touches.tap(*cell("type"));
    touches.settle();
    page->reloadSpecifiers();
    const auto list = std::dynamic_pointer_cast<UITableViewController>(navigation->topViewController());

    touches.tap(*list->tableView()->visibleCells()[0]);
    touches.settle();
    page->reloadSpecifiers();
    scene.prepareFrame();

    EXPECT_EQ(cell("type")->detailTextLabel()->text(), "Zero");
}

TEST_F(PageRows, StaticTextShowsItsValueAndTakesNoTap) {
    writeResource(item("PSStaticTextCell", "a", "Version", "<key>default</key><string>1.0</string>"));
    show();
    EXPECT_EQ(cell("a")->detailTextLabel()->text(), "1.0");

    touches.tap(*cell("a"));

    EXPECT_FALSE(page->table()->indexPathForSelectedRow());
    EXPECT_FALSE(cell("a")->canBecomeFocused());
}

TEST_F(PageRows, RowWithoutKeyOrDomainStoresNothing) {
    writeResource(item("PSSwitchCell", "a", "A", "<key>key</key><string>k</string>"));
    show();

    touches.tap(*toggle("a"));
    touches.settle();

    EXPECT_EQ(page->log, "set(a) ");
    EXPECT_FALSE(page->readPreferenceValue(page->specifierForID("a")));
    EXPECT_FALSE(page->readPreferenceValue(nullptr));
    EXPECT_FALSE(testing_support::TestRoot::exists(file("var")));
}

TEST_F(PageRows, PreferenceMayBeReadOnAWorker) {
    writeResource(item("PSSwitchCell", "a", "A", bound("a", "<false/>")));
    show();
    const auto row = page->specifierForID("a");
    std::vector<std::thread> readers;
    for (int i = 0; i < 4; ++i)
        readers.emplace_back([&] {
            for (int read = 0; read < 200; ++read) page->readPreferenceValue(row);
        });
    for (int i = 0; i < 20; ++i) {
        page->setPreferenceValue_specifier(NSNumber::numberWithBool(i % 2), row);
        page->reloadSpecifier(row);
    }
    for (auto& reader : readers) reader.join();

    EXPECT_TRUE(page->readPreferenceValue(row).boolValue());
}

TEST_F(PageRows, AssistiveTechnologyHearsEachRow) {
    writeResource(group("g", "Header", "Footer") + item("PSSwitchCell", "s", "Switch", bound("s", "<true/>")) +
                  item("PSLinkListCell", "l", "List", bound("l", "<integer>0</integer>") + choices({"Zero"})) +
                  item("PSButtonCell", "b", "Button"));
    show();
    auto& tree = scene.accessibility();
    tree.update();

    std::string heard;
    const auto hear = [&](auto&& again, seat::AccessibilityIdentity identity) -> void {
        const auto* node = tree.node(identity);
        using enum UIAccessibilityRole;
        if (node->role == ListItem || node->role == Switch || node->role == Heading || node->role == StaticText)
            heard += node->name + (node->value.empty() ? "" : "=" + node->value) +
                     (node->isOn ? (*node->isOn ? "(on)" : "(off)") : "") + "; ";
        for (const auto child : node->children) again(again, child);
    };
    hear(hear, tree.root());

    EXPECT_NE(heard.find("Header; Switch=On; Switch(on); List=Zero; Button; Footer; "), std::string::npos) << heard;
}

} // namespace
