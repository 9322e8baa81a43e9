#include "kit/seat.h"
#include "platform/settings_framework/PSTableCell.h"
#include "tests/kit/settings_framework/pages.h"

namespace {

// Shows what it was given, and when.
class RecordingCell : public PSTableCell {
    NS_CLASS(RecordingCell)
public:
    std::shared_ptr<RecordingCell>
    initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                            const std::shared_ptr<PSSpecifier>& specifier) {
        if (!PSTableCell::initWithStyle_reuseIdentifier_specifier(style, reuseIdentifier, specifier)) return nullptr;
        const id value = specifier->propertyForKey("value");
        log = "made(" + (value.string() ? *value.string() : std::string("nil")) + ")";
        return self(this);
    }
    void setValue(const id& value) override {
        log += " value(" + (value.string() ? *value.string() : std::string("nil")) + ")";
    }
    std::string log;
};

NS_CLASS_IMPLEMENTATION(
    RecordingCell, PSTableCell,
    method<&RecordingCell::initWithStyle_reuseIdentifier_specifier>("initWithStyle:reuseIdentifier:specifier:"))

const std::string recording = "<key>cellClass</key><string>RecordingCell</string>";

class PageCells : public PageTest {
protected:
    std::shared_ptr<RecordingCell> recorder(const std::string& identifier) const {
        return std::dynamic_pointer_cast<RecordingCell>(cell(identifier));
    }
};

TEST_F(PageCells, CellHearsItsValueWhenItIsMadeAndOnReload) {
    writeResource(item("PSButtonCell", "a", "A", bound("color", "<string>004EFD</string>") + recording));
    show();
    EXPECT_EQ(recorder("a")->log, "made(004EFD) value(004EFD)");

    seat::setPreferenceValue("com.quorrel.test", "color", "ff0000");
    page->reloadSpecifierID("a");

    EXPECT_EQ(recorder("a")->log, "made(004EFD) value(004EFD) value(ff0000)");
}

TEST_F(PageCells, StoredValueComesBeforeTheDefault) {
    seat::setPreferenceValue("com.quorrel.test", "color", "ff0000");
    writeResource(item("PSButtonCell", "a", "A", bound("color", "<string>004EFD</string>") + recording));
    show();

    EXPECT_EQ(recorder("a")->log, "made(ff0000) value(ff0000)");
}

TEST_F(PageCells, RowWithoutValueGivesNil) {
    writeResource(item("PSButtonCell", "a", "A", recording));
    show();

    EXPECT_EQ(recorder("a")->log, "made(nil) value(nil)");
}

TEST_F(PageCells, CellIsKeptWithItsRowAndComesBackWithIt) {
    writeResource(item("PSButtonCell", "a", "A") + item("PSButtonCell", "b", "B", recording));
    show();
    const auto b = page->specifierForID("b");
    const auto kept = cell("b");
    kept->setUserInteractionEnabled(false);
    kept->textLabel()->setEnabled(false);

    page->reloadSpecifiers();
    EXPECT_NE(page->specifierForID("b"), b);
    page->removeSpecifierID_animated("b");
    page->insertSpecifier_afterSpecifierID_animated(b, "a");
    scene.prepareFrame();

    EXPECT_EQ(cell("b"), kept);
    EXPECT_TRUE(kept->window());
    EXPECT_FALSE(kept->isUserInteractionEnabled());
    EXPECT_FALSE(kept->textLabel()->isEnabled());
}

TEST_F(PageCells, TitleIsReadAnewOnReloadAndOnInsertion) {
    writeResource(item("PSButtonCell", "a", "A") + item("PSButtonCell", "b", "B"));
    show();
    page->specifierForID("a")->setName("New A");
    EXPECT_EQ(cell("a")->textLabel()->text(), "A");
    page->reloadSpecifier(page->specifierForID("a"));
    EXPECT_EQ(cell("a")->textLabel()->text(), "New A");

    const auto b = page->specifierForID("b");
    page->removeSpecifierID_animated("b");
    b->setName("New B");
    page->insertSpecifier_afterSpecifierID_animated(b, "a");

    EXPECT_EQ(cell("b")->textLabel()->text(), "New B");
}

TEST_F(PageCells, ReloadOfNilOrOfARowWithoutCellDoesNothing) {
    writeResource(item("PSButtonCell", "a", "A"));
    show();

    page->reloadSpecifier(nullptr);
    page->reloadSpecifierID("none");
    page->reloadSpecifier(PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
        "x", page, SEL(), SEL(), nullptr, PSCellType::Button, nullptr));
}

TEST_F(PageCells, ClassThatIsUnknownOrNoCellFallsBackToTheKind) {
    writeResource(item("PSSwitchCell", "a", "A", "<key>cellClass</key><string>NoSuchClass</string>") +
                  item("PSSwitchCell", "b", "B", "<key>cellClass</key><string>UIView</string>"));
    show();

    EXPECT_TRUE(std::dynamic_pointer_cast<UISwitch>(cell("a")->accessoryView()));
    EXPECT_TRUE(std::dynamic_pointer_cast<UISwitch>(cell("b")->accessoryView()));
}

TEST_F(PageCells, ClassItselfMayStandInTheRow) {
    writeResource(item("PSButtonCell", "a", "A"));
    show();
    const auto x = PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
        "X", page, SEL(), SEL(), nullptr, PSCellType::Button, nullptr);
    x->setProperty_forKey("x", "id");
    x->setProperty_forKey(RecordingCell::classObject(), "cellClass");

    page->insertSpecifier_afterSpecifierID_animated(x, "a");
    scene.prepareFrame();

    EXPECT_TRUE(recorder("x"));
}

TEST_F(PageCells, RowsOfAThousandLeaveCellsOnlyWhereTheyWereSeen) {
    std::string items;
    for (int i = 0; i < 1000; ++i) items += item("PSButtonCell", "r" + std::to_string(i), std::to_string(i));
    writeResource(items);
    show();

    EXPECT_TRUE(cell("r0"));
    EXPECT_FALSE(cell("r500"));
}

} // namespace
