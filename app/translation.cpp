#include "app/translation.h"

#include "kit/foundation/translation.h"
#include "kit/uikit/appearance.h"
#include "system/process/child_environment.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <libintl.h>
#include <string>
#include <system_error>

namespace {

constexpr const char* domain = "joyvane";

std::string fromCatalogue(const char* text) { return ::dgettext(domain, text); }

// The language as the environment names it; empty: none.
std::string language() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* const value = std::getenv(name); value && *value) return value;
    return {};
}

} // namespace

void app::speakTheUsersLanguage() {
    const char* const wanted = std::getenv("LANGUAGE");
    const std::string own = language();
    if (own.empty() || own == "C" || own == "POSIX") return;
    if (own.starts_with("en") && !(wanted && *wanted)) return;
    // A language whose locale the system does not have can be spoken all the same.
    if (!std::setlocale(LC_MESSAGES, "") && std::setlocale(LC_MESSAGES, "C.UTF-8") && !(wanted && *wanted))
        seat::setVariableForUsAlone("LANGUAGE", own.substr(0, own.find_first_of(".@")));
    std::error_code error;
    const auto above = std::filesystem::read_symlink("/proc/self/exe", error).parent_path().parent_path();
    ::bindtextdomain(domain, (above / "share/locale").c_str());
    ::bind_textdomain_codeset(domain, "UTF-8");
    seat::setTranslator(fromCatalogue);
    // Translated as "default:RTL" where text is written from right to left.
    if (seat::translated("default:LTR") == "default:RTL") seat::appearance::setRightToLeft(true);
}
