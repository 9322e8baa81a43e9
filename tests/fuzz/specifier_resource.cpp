// The rows of a page from a file of any bytes: rows as they should be, or one line that says why not.

#include "kit/runtime/log.h"
#include "kit/settings_framework/SpecifierResource.h"
#include "tests/fuzz/support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static int lines = 0;
    seat::setLogSink([](std::string_view) { ++lines; });
    const std::string path = fuzz::folder() + "/Page.plist";
    fuzz::write(path, data, size);

    lines = 0;
    const auto resource = seat::readSpecifierResource(path, nullptr);
    fuzz::expect(lines <= 1 && (resource || lines == 1), "one line says what is wrong with the file");
    if (!resource) return 0;
    for (const auto& row : resource->specifiers) {
        fuzz::expect(row != nullptr, "a row that is not as it should be is left out");
        for (const char* const property : {"id", "key", "defaults", "PostNotification", "cellClass", "footerText"}) {
            const id value = row->propertyForKey(property);
            fuzz::expect(!value || value.string(), "what the framework reads is of the kind it reads");
        }
    }
    return 0;
}
