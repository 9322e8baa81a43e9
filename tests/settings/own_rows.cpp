// The page as it is made, and the rows that it makes itself.

#include "tests/settings/PageTest.h"
#include "tests/support/LoggedLines.h"

namespace {

class OwnRows : public PageTest {
protected:
    // The row under its identifier; the force row is there for this type only.
    std::shared_ptr<PSSpecifier> forceRow() {
        show(JVNControllerTypeHoldXHome3);
        return page->specifierForID("force_extended");
    }
    void expectRow(const std::shared_ptr<PSSpecifier>& row, const char* title, PSCellType cell, const char* identifier,
                   SEL action) {
        ASSERT_TRUE(row) << title;
        EXPECT_EQ(row->name(), title);
        EXPECT_EQ(row->cellType(), cell) << title;
        EXPECT_EQ(row->identifier(), identifier) << title;
        EXPECT_EQ(row->buttonAction().name(), action.name()) << title;
        EXPECT_EQ(row->target(), page) << title;
    }
    void expectSetting(const std::shared_ptr<PSSpecifier>& row, const id& defaultValue, const char* key) {
        ASSERT_TRUE(row) << key;
        EXPECT_EQ(row->propertyForKey("default"), defaultValue) << key;
        EXPECT_EQ(row->propertyForKey("defaults"), id("com.quorrel.joyvane")) << key;
        EXPECT_EQ(row->propertyForKey("PostNotification"), id("com.quorrel.jvnprefs.changed")) << key;
        EXPECT_EQ(row->propertyForKey("key"), id(key));
        EXPECT_EQ(row->setter(), SEL("setPreferenceValue:specifier:")) << key;
        EXPECT_EQ(row->getter(), SEL("readPreferenceValue:")) << key;
    }
    const id off = NSNumber::numberWithBool(false);
    testing_support::LoggedLines log;
};

TEST_F(OwnRows, OfAFreshPageStandInNoListYet) {
    app.writePreferences(testing_support::dictionary(
        {{"controller_type", NSNumber::numberWithInteger(1)}, {"connection_mode", NSNumber::numberWithInteger(1)}}));

    page = JoyvaneListController::alloc()->init();

    EXPECT_EQ(rows(), "[Setup] | Controller | Connection | Pair Controller | [Help] | PS3 Pairing Instructions | "
                      "Restart Daemons");
    for (const auto& row :
         {page->ds4Group(), page->ds4AmbientColor(), page->ds4ColorChooser(), page->connectSpecifier()}) {
        ASSERT_TRUE(row);
        EXPECT_FALSE(page->containsSpecifier(row)) << row->name();
    }
}

TEST_F(OwnRows, HaveTheirTitleKindIdentifierAndAction) {
    expectRow(forceRow(), "Force Extended Gamepad", PSCellType::Switch, "force_extended", SEL());
    expectRow(page->ds4Group(), "DualShock 4", PSCellType::Group, "JVNDS4GroupID", SEL());
    expectRow(page->ds4AmbientColor(), "Ambient LED Color", PSCellType::Switch, "JVNAmbientColorID", SEL());
    expectRow(page->ds4ColorChooser(), "Choose LED Color", PSCellType::Button, "JVNLEDColorID", "presentColorChooser:");
    expectRow(page->connectSpecifier(), "Connect Controller", PSCellType::Button, "JVNConnectID", "connectController:");
}

TEST_F(OwnRows, OfASettingSayWhereItIsStoredWhatItIsAtFirstAndWhoHearsOfIt) {
    expectSetting(forceRow(), off, "JVNForceExtendedGamepad");
    expectSetting(page->ds4AmbientColor(), off, "JVNAmbientColorKey");
    expectSetting(page->ds4ColorChooser(), "004EFD", "JVNLEDColorKey");
    EXPECT_EQ(page->ds4ColorChooser()->propertyForKey("cellClass"), id(objc_getClass("JVNColorChooserCell")));
    EXPECT_FALSE(page->ds4AmbientColor()->propertyForKey("cellClass"));
}

TEST_F(OwnRows, WithoutASettingAreBoundToNothing) {
    page = JoyvaneListController::alloc()->init();
    for (const auto& row : {page->ds4Group(), page->connectSpecifier()}) {
        for (const char* property : {"default", "defaults", "PostNotification", "key"})
            EXPECT_FALSE(row->propertyForKey(property)) << row->name() << " has " << property;
        EXPECT_FALSE(row->setter()) << row->name();
        EXPECT_FALSE(row->getter()) << row->name();
    }
}

TEST_F(OwnRows, OutliveAReloadWhileTheResourcesAreMadeAnew) {
    show(1, 1);
    const auto chooser = page->ds4ColorChooser();
    const auto connect = page->connectSpecifier();
    const auto pair = page->pairSpecifier();
    const PSSpecifierList once = page->specifiers();
    EXPECT_EQ(page->specifiers(), once) << "the list is loaded once";

    page->reloadSpecifiers();

    EXPECT_NE(page->pairSpecifier(), pair);
    EXPECT_EQ(page->specifierForID("JVNLEDColorID"), chooser);
    EXPECT_EQ(page->specifierForID("JVNConnectID"), connect);
}

TEST(Page, IsMadeByNameAndBelievesNothingYet) {
    const auto made = class_createInstance(objc_getClass("JoyvaneListController"));
    ASSERT_TRUE(made);
    const auto page = objc_msgSend(*made, "init", {}).object<JoyvaneListController>();
    ASSERT_TRUE(page);

    EXPECT_FALSE(page->controllerConnected());
    EXPECT_FALSE(page->discoveryTask());
    EXPECT_FALSE(page->discoveryMessagingCenter());
    ASSERT_TRUE(page->hud());
    EXPECT_FALSE(page->hud()->isShown());
}

TEST(Page, WritesSettingsItsOwnWayAndReadsThemTheFrameworks) {
    const Class page = JoyvaneListController::classObject();
    const Class framework = PSListController::classObject();

    EXPECT_NE(class_getInstanceMethod(page, "setPreferenceValue:specifier:"),
              class_getInstanceMethod(framework, "setPreferenceValue:specifier:"));
    EXPECT_EQ(class_getInstanceMethod(page, "readPreferenceValue:"),
              class_getInstanceMethod(framework, "readPreferenceValue:"));
}

} // namespace
