#include "platform/settings_framework/PSSpecifier.h"

#include <algorithm>
#include <utility>

NS_CLASS_IMPLEMENTATION(PSSpecifier, NSObject)

std::shared_ptr<PSSpecifier> PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
    std::string name, const std::shared_ptr<NSObject>& target, SEL set, SEL get, Class, PSCellType cell, Class) {
    auto specifier = alloc();
    specifier->m_name = std::move(name);
    specifier->m_target = target;
    specifier->m_setter = set;
    specifier->m_getter = get;
    specifier->m_cellType = cell;
    return specifier;
}

std::string PSSpecifier::identifier() const {
    const id value = propertyForKey("id");
    return value.string() ? *value.string() : std::string();
}

id PSSpecifier::propertyForKey(std::string_view key) const {
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_properties.begin(), m_properties.end(),
                                    [&](const auto& property) { return property.first == key; });
    return found == m_properties.end() ? id() : found->second;
}

void PSSpecifier::setProperty_forKey(id value, std::string_view key) {
    if (!value) return removePropertyForKey(key);
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_properties.begin(), m_properties.end(),
                                    [&](const auto& property) { return property.first == key; });
    // The former value leaves with `value`, and dies after the lock has gone: it may be an object of many parts.
    if (found == m_properties.end())
        m_properties.emplace_back(key, std::move(value));
    else
        std::swap(found->second, value);
}

void PSSpecifier::removePropertyForKey(std::string_view key) {
    id former;
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_properties.begin(), m_properties.end(),
                                    [&](const auto& property) { return property.first == key; });
    if (found == m_properties.end()) return;
    former = std::move(found->second);
    m_properties.erase(found);
}
