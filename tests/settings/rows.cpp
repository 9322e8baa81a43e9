#include "kit/settings_framework/bundle.h"
#include "tests/settings/PageTest.h"

namespace {

const std::string head = "[Setup] | Controller | Connection | ";
const std::string tail = " | [Help] | PS3 Pairing Instructions | Restart Daemons";

std::string between(const char* rows) { return head + rows + tail; }
const id yes = NSNumber::numberWithBool(true);

class Rows : public PageTest {};

TEST_F(Rows, WithoutAFileAreThoseOfAPS3ControllerThatConnectsByItself) {
    show();

    EXPECT_EQ(rows(), head + "E-mail Pairing Instructions | [Help] | Restart Daemons");
    EXPECT_EQ(page->currentControllerType(), 0);
    EXPECT_EQ(page->connectionType(), 0);
    EXPECT_FALSE(app.preferences()) << "showing the page writes nothing";
}

TEST_F(Rows, OfADualShock4FollowThePairRow) {
    show(1);

    EXPECT_EQ(rows(), head + "Pair Controller | [DualShock 4] | Ambient LED Color | Choose LED Color" + tail);
}

TEST_F(Rows, OfADualShock4ThatIsConnectedByHandPutTheConnectRowBehindTheMode) {
    show(1, 1);

    EXPECT_EQ(rows(), head +
                          "Connect Controller | Pair Controller | [DualShock 4] | Ambient LED Color | "
                          "Choose LED Color" +
                          tail);
}

TEST_F(Rows, WithAmbientColourOnHaveNoChooser) {
    show(1, 0, {{"JVNAmbientColorKey", yes}});

    EXPECT_EQ(rows(), head + "Pair Controller | [DualShock 4] | Ambient LED Color" + tail);
}

TEST_F(Rows, OfTheOtherPairedTypesHaveOnlyThePairRow) {
    for (const long type : {2, 3, 4}) {
        show(type);
        EXPECT_EQ(rows(), between("Pair Controller")) << type;
    }
}

TEST_F(Rows, OfTypesFiveAndSixOfferTheExtendedProfile) {
    show(5);
    EXPECT_EQ(rows(), head + "Pair Controller | Force Extended Gamepad" + tail);
    show(6);
    EXPECT_EQ(rows(), head + "Configure Keymap | Force Extended Gamepad" + tail);
}

TEST_F(Rows, OfAKeyboardNeverHaveTheConnectRow) {
    show(6, 1);

    EXPECT_EQ(rows(), head + "Configure Keymap | Force Extended Gamepad" + tail);
}

TEST_F(Rows, OfTheHandConnectedTypesHaveTheConnectRow) {
    for (const long type : {0, 1, 2, 3, 4, 5}) {
        show(type, 1);
        EXPECT_EQ(page->indexOfSpecifierID("JVNConnectID"), page->indexOfSpecifierID("connection_mode") + 1) << type;
    }
}

TEST_F(Rows, InOtherModesHaveNoConnectRow) {
    for (const long mode : {0, 2, -1, 100}) {
        show(1, mode);
        EXPECT_EQ(page->indexOfSpecifierID("JVNConnectID"), -1) << mode;
    }
}

TEST_F(Rows, OfATypeBeyondTheKnownOnesPairByDiscovery) {
    show(7);
    EXPECT_EQ(rows(), head + "Pair Controller" + tail);
    show(-1);
    EXPECT_EQ(rows(), head + "Pair Controller" + tail);
}

TEST_F(Rows, StayTheSameHoweverOftenThePageReloads) {
    show(1, 1);
    const std::string once = rows();

    for (int i = 0; i < 5; ++i) page->reloadSpecifiers();

    EXPECT_EQ(rows(), once);
}

TEST_F(Rows, SwitchingFromType1To2LeavesTheChooserUntilTheNextRebuild) {
    show(1);

    page->fixPairLabel(2);

    EXPECT_EQ(rows(), head + "Pair Controller | Choose LED Color" + tail);
}

TEST_F(Rows, SwitchingBackDoesNotShowTheChooserTwice) {
    show(1);

    page->fixPairLabel(2);
    page->fixPairLabel(1);

    EXPECT_EQ(rows(), head + "Pair Controller | [DualShock 4] | Ambient LED Color | Choose LED Color" + tail);
}

TEST_F(Rows, TakeTheConnectRowFromTheStoredTypeNotFromTheArgument) {
    show(6, 1);

    page->fixPairLabel(1);

    EXPECT_EQ(page->indexOfSpecifierID("JVNConnectID"), -1);
}

TEST_F(Rows, TitleTheConnectRowByWhatThePageBelieves) {
    show(1, 1);
    page->setControllerConnected(true);
    page->reloadSpecifiers();
    EXPECT_EQ(page->connectSpecifier()->name(), "Disconnect Controller");
    EXPECT_TRUE(app.find("Disconnect Controller"));

    page->setControllerConnected(false);
    page->reloadSpecifiers();
    EXPECT_EQ(page->connectSpecifier()->name(), "Connect Controller");
}

TEST_F(Rows, TitleTheConnectRowAlsoWhileItIsNotInTheList) {
    show(1, 0);
    page->setControllerConnected(true);

    page->reloadSpecifiers();

    EXPECT_EQ(page->connectSpecifier()->name(), "Disconnect Controller");
}

TEST_F(Rows, TheForceRowIsBuiltAnewEachTimeItComes) {
    show(5);
    const auto first = page->specifierForID("force_extended");
    page->setHasForceExtendedCell(true);
    EXPECT_EQ(page->specifierForID("force_extended"), first);

    page->setHasForceExtendedCell(false);
    EXPECT_FALSE(page->specifierForID("force_extended"));
    page->setHasForceExtendedCell(false);
    page->setHasForceExtendedCell(true);

    EXPECT_NE(page->specifierForID("force_extended"), first);
}

TEST_F(Rows, ChoosingATypeInItsListChangesThePage) {
    show();

    ASSERT_TRUE(app.tap("Controller"));
    ASSERT_TRUE(app.tap("DualShock 4"));

    EXPECT_TRUE(app.waitUntil([&] { return app.navigation()->topViewController() == page; }));
    EXPECT_EQ(app.preference("controller_type").integerValue(), 1);
    EXPECT_EQ(rows(), head + "Pair Controller | [DualShock 4] | Ambient LED Color | Choose LED Color" + tail);
}

TEST_F(Rows, TurningAmbientOnTakesTheChooserAwayAndOffBringsItBackBehindTheSwitch) {
    show(1);

    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));
    EXPECT_EQ(app.preference("JVNAmbientColorKey"), yes);
    EXPECT_EQ(rows(), head + "Pair Controller | [DualShock 4] | Ambient LED Color" + tail);

    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));
    EXPECT_EQ(app.preference("JVNAmbientColorKey"), id(NSNumber::numberWithBool(false)));
    EXPECT_EQ(rows(), head + "Pair Controller | [DualShock 4] | Ambient LED Color | Choose LED Color" + tail);
}

TEST_F(Rows, ShowingTheChooserWithoutAddingItDoesNothing) {
    show(1, 0, {{"JVNAmbientColorKey", yes}});
    const std::string before = rows();

    page->setHasColorChooserSpecifier_addIfMissing(true, false);

    EXPECT_EQ(rows(), before);
}

TEST_F(Rows, HidingTheChooserTakesItAwayWhetherItMayBeAddedOrNot) {
    for (const bool addIfMissing : {false, true}) {
        show(1);
        page->setHasColorChooserSpecifier_addIfMissing(false, addIfMissing);
        EXPECT_EQ(rows(), between("Pair Controller | [DualShock 4] | Ambient LED Color")) << addIfMissing;
        page->setHasColorChooserSpecifier_addIfMissing(false, addIfMissing);
        EXPECT_EQ(rows(), between("Pair Controller | [DualShock 4] | Ambient LED Color")) << addIfMissing;
    }
}

TEST_F(Rows, OfADualShock4ThatAreBothThereStayAsTheyAre) {
    show(1);
    page->setHasColorChooserSpecifier_addIfMissing(false, false);
    const std::string withoutChooser = rows();

    page->setHasDS4Specifiers(true);

    EXPECT_EQ(rows(), withoutChooser);
}

TEST_F(Rows, OfADualShock4OfWhichOneIsMissingAllComeBehindThePairRowOnce) {
    show(1);
    const std::string whole = rows();
    for (const char* missing : {"JVNDS4GroupID", "JVNAmbientColorID"}) {
        page->removeSpecifierID_animated(missing);
        page->setHasDS4Specifiers(true);
        EXPECT_EQ(rows(), whole) << missing;
    }
}

TEST_F(Rows, TheConnectRowComesOnceAndGoes) {
    show(1, 0);
    const std::string without = rows();

    page->setHasConnectCell(true);
    const std::string with = rows();
    page->setHasConnectCell(true);
    EXPECT_EQ(rows(), with);
    EXPECT_EQ(page->indexOfSpecifier(page->connectSpecifier()), page->indexOfSpecifierID("connection_mode") + 1);

    page->setHasConnectCell(false);
    page->setHasConnectCell(false);
    EXPECT_EQ(rows(), without);
}

TEST_F(Rows, OnlyTheChooserComesAndGoesBeforeTheUsersEyes) {
    show(1, 1);
    const auto moves = [&](auto&& change) {
        change();
        const bool moving = app.scene().isAnimating();
        app.settle();
        return moving;
    };

    EXPECT_TRUE(moves([&] { page->setHasColorChooserSpecifier_addIfMissing(false, true); }));
    EXPECT_TRUE(moves([&] { page->setHasColorChooserSpecifier_addIfMissing(true, true); }));
    EXPECT_FALSE(moves([&] { page->setHasConnectCell(false); }));
    EXPECT_FALSE(moves([&] { page->setHasConnectCell(true); }));
    EXPECT_FALSE(moves([&] { page->setHasForceExtendedCell(true); }));
    EXPECT_FALSE(moves([&] { page->setHasForceExtendedCell(false); }));
    EXPECT_FALSE(moves([&] { page->setHasDS4Specifiers(false); }));
    EXPECT_FALSE(moves([&] { page->setHasDS4Specifiers(true); }));
}

TEST_F(Rows, ShowANewTitleOfThePairRowAtOnce) {
    show(1);
    page->fixPairLabel(6);
    EXPECT_TRUE(app.find("Configure Keymap"));
    page->fixPairLabel(0);
    EXPECT_TRUE(app.find("E-mail Pairing Instructions"));
    EXPECT_FALSE(app.find("Pair Controller"));
}

TEST_F(Rows, ForcingTheExtendedProfileWarnsAndStaysWritten) {
    show(6);

    ASSERT_TRUE(app.tapSwitch("Force Extended Gamepad"));

    EXPECT_EQ(
        app.alert(),
        "Important!\nYour controller is missing some buttons the extended gamepad requires. By forcing this profile "
        "you may have poor gaming experience. Please turn this off unless you know what this means.");
    EXPECT_EQ(app.preference("JVNForceExtendedGamepad"), yes);
    ASSERT_TRUE(app.dismissAlert());

    ASSERT_TRUE(app.tapSwitch("Force Extended Gamepad"));
    EXPECT_EQ(app.alert(), std::nullopt);
    EXPECT_EQ(app.preference("JVNForceExtendedGamepad"), id(NSNumber::numberWithBool(false)));
}

// A page whose resource has none of the rows that the page looks for.
class BareResource : public Rows {
protected:
    void showWith(const std::string& items) {
        const std::string folder = app.root() + "/bundle";
        testing_support::TestRoot::write(folder + "/Joyvane.plist",
                                         "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>items</key><array>" +
                                             items + "</array></dict></plist>");
        seat::setResourceFolder(folder);
        page = JoyvaneListController::alloc()->init();
        app.open(page);
    }
};

TEST_F(BareResource, WithoutAPairRowInsertsAtTheBeginning) {
    app.writePreferences(testing_support::dictionary({{"type", NSNumber::numberWithInteger(1)}}));
    showWith("<dict><key>cell</key><string>PSLinkListCell</string><key>label</key><string>T</string><key>id</key>"
             "<string>controller_type</string><key>key</key><string>type</string><key>defaults</key>"
             "<string>com.quorrel.joyvane</string><key>validValues</key><array><integer>1</integer></array>"
             "<key>validTitles</key><array><string>One</string></array></dict>");

    EXPECT_EQ(rows(), "[DualShock 4] | Ambient LED Color | Choose LED Color | T");
    EXPECT_FALSE(page->pairSpecifier());
}

TEST_F(BareResource, WithoutTypeAndModeRowsReadsBothAsZero) {
    app.writePreferences(testing_support::dictionary(
        {{"controller_type", NSNumber::numberWithInteger(1)}, {"connection_mode", NSNumber::numberWithInteger(1)}}));
    showWith("<dict><key>cell</key><string>PSButtonCell</string><key>label</key><string>P</string><key>id</key>"
             "<string>pair_label</string></dict>");

    EXPECT_EQ(page->currentControllerType(), 0);
    EXPECT_EQ(page->connectionType(), 0);
    EXPECT_EQ(rows(), "E-mail Pairing Instructions");
}

} // namespace
