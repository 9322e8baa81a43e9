#include "kit/foundation/translation.h"

#include "platform/foundation/NSLocalizedString.h"

namespace seat {

namespace {

Translator currentTranslator = nullptr;

} // namespace

void setTranslator(Translator translator) { currentTranslator = translator; }

std::string translated(const char* text) { return currentTranslator && *text ? currentTranslator(text) : text; }

std::string filled(std::string_view text, std::initializer_list<std::string_view> values) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t place =
            text[i] == '%' && i + 1 < text.size() ? static_cast<std::size_t>(text[i + 1] - '1') : 9;
        if (place >= values.size()) {
            result += text[i];
            continue;
        }
        result += values.begin()[place];
        ++i;
    }
    return result;
}

} // namespace seat

std::string NSLocalizedString(const char* text) { return seat::translated(text); }

std::string NSLocalizedStringWithValues(const char* text, std::initializer_list<std::string_view> values) {
    return seat::filled(seat::translated(text), values);
}
