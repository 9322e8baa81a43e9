#include "tests/sample/SampleListController.h"

#include "platform/foundation/NSNotificationCenter.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UINavigationController.h"
#include "tests/sample/SampleControlsController.h"

NS_CLASS_IMPLEMENTATION(SampleListController, PSListController, method<&SampleListController::init>("init"),
                        method<&SampleListController::journal>("journal"),
                        method<&SampleListController::showAlert>("showAlert"),
                        method<&SampleListController::showProgress>("showProgress"),
                        method<&SampleListController::showControls>("showControls"),
                        method<&SampleListController::toggleExtraRow>("toggleExtraRow"),
                        method<&SampleListController::setPreferenceValue_specifier>("setPreferenceValue:specifier:"),
                        method<&SampleListController::applicationDidEnterBackground>("applicationDidEnterBackground"))

namespace {

constexpr const char* extraRowID = "SampleExtraID";
constexpr const char* chosenButtonID = "chosen_button";

} // namespace

std::shared_ptr<SampleListController> SampleListController::init() {
    if (!PSListController::init()) return nullptr;
    setTitle("Sample");
    m_progress = UIProgressHUD::alloc()->init();
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        shared_from_this(), "applicationDidEnterBackground", UIApplicationDidEnterBackgroundNotification, nullptr);
    return self(this);
}

const PSSpecifierList& SampleListController::specifiers() {
    if (!_specifiers) _specifiers = loadSpecifiersFromPlistName_target("Sample", shared_from_this());
    return *_specifiers;
}

void SampleListController::applicationDidEnterBackground() {
    note("background");
    ++m_timesInBackground;
    const auto row = specifierForID("background_row");
    if (!row) return;
    row->setName("Times in the background: " + std::to_string(m_timesInBackground));
    reloadSpecifier(row);
}

void SampleListController::note(const std::string& event) { m_journal += (m_journal.empty() ? "" : " ") + event; }

void SampleListController::showAlert() {
    UIAlertView::alloc()
        ->initWithTitle_message_delegate_cancelButtonTitle_otherButtonTitles(
            "Which one?", "Both buttons close this alert, and the row below says which one it was.", self(this), "Left",
            {"Right"})
        ->show();
}

void SampleListController::alertView_didDismissWithButtonIndex(UIAlertView& alert, long buttonIndex) {
    note("dismissed:" + std::to_string(buttonIndex));
    const auto row = specifierForID(chosenButtonID);
    if (!row) return;
    row->setName("Last choice: " + alert.buttonTitles().at(static_cast<std::size_t>(buttonIndex)));
    reloadSpecifier(row);
}

// The panel stands for as long as somebody wants to look at it.
void SampleListController::showProgress() {
    m_progress->setText("Working…\nToggle a row to end it.");
    m_progress->showInView(view());
}

void SampleListController::showControls() {
    if (const auto navigation = navigationController())
        navigation->pushViewController_animated(SampleControlsController::alloc()->init(), /*animated=*/true);
}

void SampleListController::toggleExtraRow() {
    m_progress->hide();
    if (specifierForID(extraRowID)) return removeSpecifierID_animated(extraRowID, /*animated=*/true);
    const auto row = PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
        "A row that comes and goes", shared_from_this(), nullptr, nullptr, nullptr, PSCellType::StaticText, nullptr);
    row->setProperty_forKey(extraRowID, "id");
    insertSpecifier_afterSpecifierID_animated(row, "toggle_row", /*animated=*/true);
}

void SampleListController::setPreferenceValue_specifier(const id& value,
                                                        const std::shared_ptr<PSSpecifier>& specifier) {
    PSListController::setPreferenceValue_specifier(value, specifier);
    if (specifier) note("set:" + specifier->identifier());
}

void SampleListController::viewDidLoad() {
    PSListController::viewDidLoad();
    note("didLoad");
}

void SampleListController::viewWillAppear(bool animated) {
    PSListController::viewWillAppear(animated);
    note("willAppear");
}

void SampleListController::viewDidAppear(bool animated) {
    PSListController::viewDidAppear(animated);
    note("didAppear");
}

void SampleListController::viewWillDisappear(bool animated) {
    PSListController::viewWillDisappear(animated);
    note("willDisappear");
}

void SampleListController::viewDidDisappear(bool animated) {
    PSListController::viewDidDisappear(animated);
    note("didDisappear");
}
