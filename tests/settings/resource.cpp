// The rows that come from the resource: what the page relies on them for.

#include "kit/settings_framework/row_value.h"
#include "tests/settings/PageTest.h"
#include "tests/support/LoggedLines.h"

#include <gmock/gmock.h>

namespace {

class ResourceRows : public PageTest {
protected:
    ResourceRows() { page = JoyvaneListController::alloc()->init(); }

    std::vector<long> valuesOf(const std::string& identifier) {
        std::vector<long> values;
        const auto row = page->specifierForID(identifier);
        if (!row) return values;
        for (const auto& choice : seat::choicesOf(*row)) {
            EXPECT_FALSE(choice.title.empty()) << identifier;
            values.push_back(choice.value.integerValue());
        }
        return values;
    }

    testing_support::LoggedLines log;
};

TEST_F(ResourceRows, OfferEveryControllerTypeAndBothModes) {
    EXPECT_EQ(valuesOf("controller_type"), (std::vector<long>{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(valuesOf("connection_mode"), (std::vector<long>{0, 1}));
}

// What a row shows and what the page counts with are the same while nothing is stored.
TEST_F(ResourceRows, OfTypeAndModeShowZeroUntilOneIsChosen) {
    for (const char* identifier : {"controller_type", "connection_mode"}) {
        const auto row = page->specifierForID(identifier);
        ASSERT_TRUE(row) << identifier;
        EXPECT_EQ(row->cellType(), PSCellType::LinkList) << identifier;
        EXPECT_EQ(row->propertyForKey("default"), id(NSNumber::numberWithInteger(0))) << identifier;
        EXPECT_FALSE(page->readPreferenceValue(row)) << identifier;
    }
}

TEST_F(ResourceRows, WithASettingStoreItInThePagesDomainAndAnnounceIt) {
    for (const auto& row : page->specifiers()) {
        if (!row->propertyForKey("key")) continue;
        EXPECT_EQ(row->propertyForKey("defaults"), id("com.quorrel.joyvane")) << row->name();
        EXPECT_EQ(row->propertyForKey("PostNotification"), id("com.quorrel.jvnprefs.changed")) << row->name();
        EXPECT_EQ(row->target(), page) << row->name();
    }
}

TEST_F(ResourceRows, HaveOnlyActionsThatThePageHas) {
    app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(1)}}));
    std::vector<std::string> actions;
    for (const auto& row : page->specifiers()) {
        if (!row->buttonAction()) continue;
        actions.push_back(row->buttonAction().name());
        EXPECT_TRUE(page->respondsToSelector(row->buttonAction())) << row->buttonAction().name();
    }
    EXPECT_EQ(actions, (std::vector<std::string>{"pairController", "emailInstructions", "restartDaemons"}));
}

// What the text under the first group says of a kind of controller, and how often the instructions are offered.
TEST_F(ResourceRows, SayWhatTheChosenKindDoesInTheChosenMode) {
    const auto setupFor = [this](long type, long mode) {
        app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(type)},
                                                          {"connection_mode", NSNumber::numberWithInteger(mode)}}));
        page = JoyvaneListController::alloc()->init();
        const auto& list = page->specifiers();
        return list.empty() ? std::string() : seat::textOf(list.front()->propertyForKey("footerText"));
    };
    using testing::HasSubstr;

    for (const long mode : {0, 1, 2}) {
        for (const long type : {-1, 0, 1, 2, 3, 4, 5, 7})
            EXPECT_THAT(setupFor(type, mode), HasSubstr("when you press"));
        EXPECT_THAT(setupFor(0, mode), HasSubstr("from a computer"));
        EXPECT_THAT(setupFor(6, mode), HasSubstr("both Ctrl keys and press Escape"));
    }
    EXPECT_THAT(setupFor(6, 0), HasSubstr("while a game listens"));
    EXPECT_THAT(setupFor(1, 1), HasSubstr("from here"));
}

TEST_F(ResourceRows, OfferTheInstructionsOnce) {
    for (const long type : {0, 1, 6}) {
        app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(type)}}));
        page = JoyvaneListController::alloc()->init();
        EXPECT_EQ(page->indexOfSpecifierID("instructions") >= 0, type != 0) << "the pair row offers them to type 0";
    }
}

// The page's own rows follow it: what the resource put behind it would fall under their headings.
TEST_F(ResourceRows, EndTheFirstGroupWithThePairRow) {
    const auto& list = page->specifiers();
    const long pair = page->indexOfSpecifierID("pair_label");
    ASSERT_GE(pair, 0);
    ASSERT_LT(pair + 1, std::ssize(list));
    EXPECT_EQ(list[static_cast<std::size_t>(pair) + 1]->cellType(), PSCellType::Group);
}

} // namespace
