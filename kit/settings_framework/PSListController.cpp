#include "platform/settings_framework/PSListController.h"

#include "kit/controllers/ControllerInternals.h"
#include "kit/quartz/geometry.h"
#include "kit/seat.h"
#include "kit/settings_framework/SpecifierResource.h"
#include "kit/settings_framework/bundle.h"
#include "kit/settings_framework/cell_factory.h"
#include "kit/settings_framework/list_state.h"
#include "kit/uikit/UIWindow.h"
#include "kit/uikit/appearance.h"
#include "platform/dispatch.h"
#include "platform/log.h"
#include "platform/notify.h"
#include "platform/runtime/method.h"

NS_CLASS_IMPLEMENTATION(PSListController, UIViewController,
                        method<&PSListController::readPreferenceValue>("readPreferenceValue:"),
                        method<&PSListController::setPreferenceValue_specifier>("setPreferenceValue:specifier:"))

PSListController::PSListController() : m_list(std::make_unique<State>()) {}
PSListController::~PSListController() = default;

std::shared_ptr<PSListController> PSListController::init() { return UIViewController::init() ? self(this) : nullptr; }

const PSSpecifierList& PSListController::specifiers() {
    if (!_specifiers) _specifiers.emplace();
    return *_specifiers;
}

PSSpecifierList PSListController::loadSpecifiersFromPlistName_target(const std::string& name,
                                                                     const std::shared_ptr<NSObject>& target) {
    if (name.empty() || name.find('/') != std::string::npos || seat::resourceFolder().empty()) {
        NSLog("reading the rows of \"%s\": %s", name.c_str(),
              seat::resourceFolder().empty() ? "no bundle is loaded" : "that is no resource's name");
        return {};
    }
    auto resource = seat::readSpecifierResource(seat::resourceFolder() + "/" + name + ".plist", target);
    if (!resource) return {};
    if (title().empty()) setTitle(resource->title);
    return std::move(resource->specifiers);
}

// From the top of the content: the bar may be put over the table between a reload and the layout that follows.
static double scrolledBy(const UITableView& table) { return table.contentOffset().y + table.contentInset().top; }

void PSListController::reloadSpecifiers() {
    if (_specifiers) m_list->rememberRows(*_specifiers);
    _specifiers.reset();
    for (const auto& row : specifiers()) m_list->takeFormerCell(row);
    if (!m_list->table) return;
    if (!m_list->scrolledBeforeReload) m_list->scrolledBeforeReload = scrolledBy(*m_list->table);
    m_list->reloadLater(*view());
}

void PSListController::reloadSpecifier(const std::shared_ptr<PSSpecifier>& specifier) {
    if (!specifier) return;
    if (specifier->cellType() != PSCellType::Group) return seat::refreshCell(specifier);
    if (m_list->table && containsSpecifier(specifier)) m_list->reloadLater(*view());
}

void PSListController::reloadSpecifierID(const std::string& identifier) { reloadSpecifier(specifierForID(identifier)); }

id PSListController::readPreferenceValue(const std::shared_ptr<PSSpecifier>& specifier) {
    if (!specifier) return {};
    const id domain = specifier->propertyForKey("defaults");
    const id key = specifier->propertyForKey("key");
    return domain.string() && key.string() ? seat::preferenceValue(*domain.string(), *key.string()) : id();
}

void PSListController::setPreferenceValue_specifier(const id& value, const std::shared_ptr<PSSpecifier>& specifier) {
    if (!specifier) return;
    const id domain = specifier->propertyForKey("defaults");
    const id key = specifier->propertyForKey("key");
    if (!domain.string() || !key.string()) return;
    const id notification = specifier->propertyForKey("PostNotification");
    // Who listens reads the file, so nothing is announced before it is there. What was lost must not stay on the page.
    const auto ended = [name = notification.string() ? *notification.string() : std::string(),
                        page = std::weak_ptr(self(this))](seat::PreferenceWrite how) {
        if (how == seat::PreferenceWrite::Stored && !name.empty()) notify_post(name.c_str());
        if (how != seat::PreferenceWrite::Failed) return;
        dispatch_async(dispatch_get_main_queue(), [page] {
            if (const auto shown = page.lock()) shown->reloadSpecifiers();
        });
    };
    const auto how = seat::setPreferenceValue(*domain.string(), *key.string(), value, ended);
    if (how != seat::PreferenceWrite::Pending) ended(how);
}

std::shared_ptr<UITableView> PSListController::table() const {
    m_list->reloadNow();
    return m_list->table;
}

void PSListController::loadView() {
    // The table stands in a plain view, so that an overlay over the page does not scroll away with the rows.
    const auto container = UIView::alloc()->initWithFrame(ControllerInternals::initialFrame());
    container->setBackgroundColor(seat::appearance::pageColor());
    m_list->table = UITableView::alloc()->initWithFrame_style(container->bounds(), UITableViewStyleGrouped);
    m_list->table->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    container->addSubview(m_list->table);
    setView(container);
}

void PSListController::viewDidLoad() {
    UIViewController::viewDidLoad();
    if (!m_list->table) return;
    const auto me = self(this);
    m_list->table->setDataSource(me);
    m_list->table->setDelegate(me);
}

void PSListController::viewWillAppear(bool animated) {
    UIViewController::viewWillAppear(animated);
    const auto table = m_list->table;
    if (table) table->deselectRowAtIndexPath_animated(table->indexPathForSelectedRow(), animated);
}

void PSListController::viewDidLayoutSubviews() {
    UIViewController::viewDidLayoutSubviews();
    m_list->reloadNow();
    const auto scrolled = std::exchange(m_list->scrolledBeforeReload, std::nullopt);
    const auto& table = m_list->table;
    if (!scrolled || *scrolled == scrolledBy(*table) || table->isDragging()) return;
    table->setContentOffset(CGPointMake(0, *scrolled - table->contentInset().top));
    // Brings it back into what there is to scroll.
    table->setContentSize(table->contentSize());
}
