#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/id.h"

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

// What a row looks like and does: a heading, a row that opens a list of choices, a switch, a row that calls its button
// action, a text.
enum class PSCellType { Group, LinkList, Switch, Button, StaticText };

// One row (or group) of a settings page: a title, named properties ("id", "key", "default", "defaults",
// "PostNotification", "cellClass", "cellObject", "value", "footerText", "validValues", "validTitles", ...) and the
// selectors of its target. Main thread, but for its properties: they may be read from any thread at any time, since a
// worker reads a preference through its row.
class PSSpecifier final : public NSObject {
    NS_CLASS(PSSpecifier)
public:
    static constexpr bool diesOnMainThread = true;

    // The target is weak. `set` takes the value and the row, `get` the row. A link list brings its own screen, so that
    // `detail` and `edit` stay unused.
    static std::shared_ptr<PSSpecifier>
    preferenceSpecifierNamed_target_set_get_detail_cell_edit(std::string name, const std::shared_ptr<NSObject>& target,
                                                             SEL set, SEL get, Class detail, PSCellType cell,
                                                             Class edit);

    // What the row is titled; the table shows another one after `reloadSpecifier`.
    const std::string& name() const { return m_name; }
    void setName(std::string name) { m_name = std::move(name); }
    // The property "id"; empty when there is none.
    std::string identifier() const;
    // nil when absent; setting nil removes it.
    id propertyForKey(std::string_view key) const;
    void setProperty_forKey(id value, std::string_view key);
    void removePropertyForKey(std::string_view key);

    // nil when the target is gone, null selectors where there are none.
    std::shared_ptr<NSObject> target() const { return m_target.lock(); }
    SEL setter() const { return m_setter; }
    SEL getter() const { return m_getter; }
    PSCellType cellType() const { return m_cellType; }
    SEL buttonAction() const { return m_buttonAction; }
    // Called on the target when the row is tapped; takes the row.
    void setButtonAction(SEL action) { m_buttonAction = action; }

private:
    std::string m_name;
    std::weak_ptr<NSObject> m_target;
    SEL m_setter;
    SEL m_getter;
    SEL m_buttonAction;
    PSCellType m_cellType = PSCellType::Button;
    mutable std::mutex m_mutex; // guards the properties
    std::vector<std::pair<std::string, id>> m_properties;
};

// In the order of the page.
using PSSpecifierList = std::vector<std::shared_ptr<PSSpecifier>>;
