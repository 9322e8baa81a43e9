#pragma once

#include "platform/settings_framework/PSSpecifier.h"

#include <optional>
#include <string>

namespace seat {

struct SpecifierResource {
    std::string title; // of the page; empty when it names none
    PSSpecifierList specifiers;
};

// The rows that a resource file describes: a dictionary with "items", each a dictionary with "cell" (the name of a cell
// kind), "label", "action" and the row's properties. A row with a "key" is bound to the target's
// `setPreferenceValue:specifier:` and `readPreferenceValue:`. An item with "JVNOnlyFor", a dictionary of rows' ids and
// arrays of integers, is there only while each of these rows' settings, which are in the resource too, has one of the
// values as the resource is read; with "JVNNotFor", only while none has. A setting without a value counts with its
// "default". An item that is not as it should be costs its row, a file that cannot be read all of them: then nothing
// comes back. Either is reported (bundle.h), in one line for the file.
std::optional<SpecifierResource> readSpecifierResource(const std::string& realPath,
                                                       const std::shared_ptr<NSObject>& target);

} // namespace seat
