#pragma once

#include "platform/foundation/NSDictionary.h"

#include <memory>

// An archive that a view is made from: a dictionary of named values. UIView reads "frame" (an array of four numbers),
// "alpha", "hidden" and "backgroundColor" (an array of red, green, blue, alpha); what is absent, or has another shape,
// stays as it is in a view made without an archive. A nil coder is an archive without values.
class NSCoder final : public NSObject {
    NS_CLASS(NSCoder)

    // nil: an archive without values. The dictionary is shared, not copied.
    static std::shared_ptr<NSCoder> coderWithDictionary(std::shared_ptr<NSDictionary> values);

    // False, and nil, for a key that is absent.
    bool containsValueForKey(std::string_view key) const { return m_values && m_values->objectForKey(key); }
    id decodeObjectForKey(std::string_view key) const { return m_values ? m_values->objectForKey(key) : id(); }

private:
    std::shared_ptr<NSDictionary> m_values;
};
