// What another program sends to the page's message server, as it comes off the bus. The bus's library looks at the
// frame; what is in it becomes values within bounds, or a reason.

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSDictionary.h"
#include "system/bus/bus_values.h"
#include "tests/fuzz/support.h"

#include <dbus/dbus.h>

namespace {

struct Size {
    std::size_t values = 0;
    int depth = 0;
};

void measure(const id& value, int depth, Size& size) {
    ++size.values;
    size.depth = std::max(size.depth, depth);
    if (const auto* const array = value.objectPointer<NSArray>())
        for (const id& element : *array) measure(element, depth + 1, size);
    if (const auto* const dictionary = value.objectPointer<NSDictionary>())
        dictionary->enumerate([&](const std::string&, const id& inner) {
            measure(inner, depth + 1, size);
            return true;
        });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    DBusMessage* const message =
        ::dbus_message_demarshal(reinterpret_cast<const char*>(data), static_cast<int>(size), nullptr);
    if (!message) return 0;
    std::string problem;
    const auto arguments = seat::readArguments(*message, problem);
    fuzz::expect(arguments.has_value() == problem.empty(), "values, or a reason");
    if (arguments) {
        Size all;
        for (const id& argument : *arguments) measure(argument, 0, all);
        fuzz::expect(all.values <= seat::busValueCount && all.depth <= seat::busValueDepth, "values have bounds");
        if (!arguments->empty())
            if (const auto report = arguments->front().object<NSDictionary>())
                (void)report->objectForKey("JVNDiscoveryState").integerValue();
    }
    ::dbus_message_unref(message);
    return 0;
}
