#include "kit/runtime/log.h"
#include "kit/settings_framework/SpecifierResource.h"
#include "kit/settings_framework/bundle.h"
#include "tests/kit/settings_framework/pages.h"

#include <chrono>

namespace {

class Resources : public PageTest {
protected:
    ~Resources() override { seat::setLogSink({}); }

    void write(const std::string& bytes) const { testing_support::TestRoot::write(file("bundle/Page.plist"), bytes); }
    // The rows of the resource, and that nothing or exactly one line was logged.
    std::size_t load() {
        lines.clear();
        seat::setLogSink([this](std::string_view line) { lines.emplace_back(line); });
        page = TestPage::alloc()->init();
        const std::size_t count = page->specifiers().size();
        seat::setLogSink({});
        return count;
    }
    // What is right beside it is shown.
    void expectLeftOut(const std::string& items) {
        writeResource(group("g", "Good") + items + item("PSButtonCell", "b", "Good"));
        EXPECT_EQ(load(), 2u) << items;
        EXPECT_EQ(lines.size(), 1u) << items;
    }

    std::vector<std::string> lines;
};

TEST_F(Resources, EveryPropertyOfAnItemBecomesTheRows) {
    writeResource(item("PSLinkListCell", "type", "Type",
                       bound("t", "<integer>3</integer>") + choices({"Zero"}) +
                           "<key>anything</key><array><string>else</string></array>"));
    ASSERT_EQ(load(), 1u);
    const auto& row = page->specifiers()[0];

    EXPECT_EQ(row->name(), "Type");
    EXPECT_EQ(row->cellType(), PSCellType::LinkList);
    EXPECT_EQ(row->identifier(), "type");
    EXPECT_EQ(row->propertyForKey("key"), id("t"));
    EXPECT_EQ(row->propertyForKey("default").integerValue(), 3);
    EXPECT_EQ(row->propertyForKey("defaults"), id("com.quorrel.test"));
    EXPECT_EQ(row->propertyForKey("PostNotification"), id("com.quorrel.test.changed"));
    EXPECT_TRUE(row->propertyForKey("anything"));
    EXPECT_EQ(row->target(), page);
    EXPECT_EQ(row->setter(), SEL("setPreferenceValue:specifier:"));
    EXPECT_EQ(row->getter(), SEL("readPreferenceValue:"));
    EXPECT_TRUE(lines.empty());
}

TEST_F(Resources, AnItemMayBeThereForSomeValuesOfASettingOnly) {
    const auto onlyFor = [](const std::string& settings) {
        return "<key>JVNOnlyFor</key><dict>" + settings + "</dict>";
    };
    const auto notFor = [](const std::string& settings) { return "<key>JVNNotFor</key><dict>" + settings + "</dict>"; };
    const std::string two = "<key>type</key><array><integer>2</integer><integer>3</integer></array>";
    const std::string off = "<key>mode</key><array><integer>0</integer></array>";
    writeResource(item("PSButtonCell", "a", "A", onlyFor(two)) + item("PSButtonCell", "b", "B", onlyFor(two + off)) +
                  item("PSButtonCell", "c", "C", onlyFor("<key>nowhere</key><array><integer>0</integer></array>")) +
                  item("PSButtonCell", "d", "D", notFor(two)) +
                  item("PSButtonCell", "e", "E", onlyFor(two) + notFor(off)) +
                  item("PSSwitchCell", "type", "Type", bound("t", "<integer>3</integer>")) +
                  item("PSSwitchCell", "mode", "Mode", bound("m", "<integer>0</integer>")));
    const auto names = [this] {
        load();
        std::string all;
        for (const auto& row : page->specifiers()) all += row->name() + " ";
        return all;
    };

    EXPECT_EQ(names(), "A B Type Mode ") << "nothing is stored: the default counts";
    EXPECT_FALSE(page->specifiers()[0]->propertyForKey("JVNOnlyFor"));
    seat::setPreferenceValue("com.quorrel.test", "m", id(NSNumber::numberWithInteger(1)));
    EXPECT_EQ(names(), "A E Type Mode ");
    seat::setPreferenceValue("com.quorrel.test", "t", id("1"));
    EXPECT_EQ(names(), "D Type Mode ");
}

TEST_F(Resources, RowWithoutKeyIsBoundToNothing) {
    writeResource(item("PSButtonCell", "a", "A", "<key>action</key><string>tapped:</string>"));
    ASSERT_EQ(load(), 1u);
    const auto& row = page->specifiers()[0];

    EXPECT_FALSE(row->setter());
    EXPECT_FALSE(row->getter());
    EXPECT_EQ(row->buttonAction(), SEL("tapped:"));
}

TEST_F(Resources, AFaultyItemCostsItsRow) {
    expectLeftOut("<string>no dictionary</string>");
    expectLeftOut("<dict/>");
    expectLeftOut(item("PSNoSuchCell", "a", "A"));
    expectLeftOut("<dict><key>cell</key><integer>1</integer></dict>");
    expectLeftOut("<dict><key>cell</key><string>PSButtonCell</string><key>label</key><true/></dict>");
    expectLeftOut(item("PSButtonCell", "a", "A", "<key>action</key><integer>1</integer>"));
    expectLeftOut(item("PSSwitchCell", "a", "A", "<key>key</key><integer>1</integer>"));
    expectLeftOut(item("PSSwitchCell", "a", "A", "<key>defaults</key><data></data>"));
    expectLeftOut(item("PSButtonCell", "a", "A", "<key>cellClass</key><array/>"));
    expectLeftOut(item("PSLinkListCell", "a", "A"));
    expectLeftOut(item("PSButtonCell", "a", "A", "<key>JVNOnlyFor</key><array/>"));
    expectLeftOut(item("PSButtonCell", "a", "A", "<key>JVNNotFor</key><true/>"));
    expectLeftOut(item("PSLinkListCell", "a", "A",
                       "<key>validValues</key><array><integer>0</integer></array><key>validTitles</key><array/>"));
    expectLeftOut(item("PSLinkListCell", "a", "A",
                       "<key>validValues</key><array><integer>0</integer></array>"
                       "<key>validTitles</key><array><integer>0</integer></array>"));
}

TEST_F(Resources, FaultsAreReportedOnceWithTheFileAndTheReason) {
    std::vector<std::string> faults;
    seat::setResourceFaultHandler([&](const std::string& path, const std::string& reason) {
        faults.push_back(path.substr(path.rfind('/') + 1) + ": " + reason);
    });

    load();
    writeResource(item("PSNoSuchCell", "a", "A"));
    load();
    writeResource(item("PSNoSuchCell", "a", "A") + group("g", "Good") + "<dict/><dict/>");
    load();
    write("nonsense");
    load();

    seat::setResourceFaultHandler({});
    ASSERT_EQ(faults.size(), 4u);
    EXPECT_EQ(faults[0].substr(0, 12), "Page.plist: ");
    EXPECT_EQ(faults[1], "Page.plist: item 0 is left out: its \"cell\" is no known kind");
    EXPECT_EQ(faults[2], "Page.plist: item 0 is left out: its \"cell\" is no known kind; others left out: 2");
    EXPECT_EQ(faults[3].substr(0, 26), "Page.plist: property list ");
}

TEST_F(Resources, TenThousandItemsAreReadAndOneMoreIsRefused) {
    std::string items;
    for (int i = 0; i < 10'000; ++i) items += "<dict><key>cell</key><string>PSGroupCell</string></dict>";
    writeResource(items);
    EXPECT_EQ(load(), 10'000u);
    EXPECT_EQ(lines.size(), 0u);

    writeResource(group("g", "Good") + items);
    EXPECT_EQ(load(), 0u);
    EXPECT_EQ(lines.size(), 1u);
}

TEST_F(Resources, ResourceThatIsNoneIsRefusedWithOneLine) {
    for (const std::string& bytes :
         {std::string(), std::string("nonsense"), std::string("<plist version=\"1.0\"><array/></plist>"),
          std::string("<plist version=\"1.0\"><dict/></plist>"),
          std::string("<plist version=\"1.0\"><dict><key>items</key><dict/></dict></plist>"), std::string("bplist00"),
          std::string("\xff\xfe\x00", 3)}) {
        write(bytes);
        EXPECT_EQ(load(), 0u) << bytes;
        EXPECT_EQ(lines.size(), 1u) << bytes;
    }
}

TEST_F(Resources, MissingResourceIsRefusedWithOneLine) {
    EXPECT_EQ(load(), 0u);
    EXPECT_EQ(lines.size(), 1u);
}

TEST_F(Resources, NameThatLeavesTheBundleIsNoResource) {
    writeResource(item("PSButtonCell", "a", "A"));
    page = TestPage::alloc()->init();
    seat::setLogSink([this](std::string_view line) { lines.emplace_back(line); });

    EXPECT_TRUE(page->loadSpecifiersFromPlistName_target("../Page", page).empty());
    EXPECT_TRUE(page->loadSpecifiersFromPlistName_target("", page).empty());
    seat::setResourceFolder({});
    EXPECT_TRUE(page->loadSpecifiersFromPlistName_target("Page", page).empty());

    EXPECT_EQ(lines.size(), 3u);
}

TEST_F(Resources, ResourceCutAnywhereShowsAnEmptyPageSoon) {
    writeResource(group("g", "One") + item("PSSwitchCell", "a", "A", bound("a", "<true/>")));
    const std::string whole = testing_support::TestRoot::read(file("bundle/Page.plist")).value_or("");
    for (std::size_t length = 0; length < whole.size() - 10; length += 3) {
        write(whole.substr(0, length));
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(load(), 0u) << length;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
        EXPECT_EQ(lines.size(), 1u) << length;
    }
}

TEST_F(Resources, PageWithoutRowsIsShownEmpty) {
    show();

    EXPECT_EQ(rows(), "");
    EXPECT_EQ(page->table()->numberOfSections(), 0);
}

} // namespace
