#include "system/preferences/preferences_notices.h"

#include "platform/dispatch.h"

#include <new>
#include <utility>

namespace {

// Never destroyed: the main queue may run blocks to the end of the process.
std::function<void(const seat::PreferencesNotice&)>& handler() {
    static auto& function = *new std::function<void(const seat::PreferencesNotice&)>;
    return function;
}

} // namespace

void seat::setPreferencesNoticeHandler(std::function<void(const PreferencesNotice& notice)> function) {
    handler() = std::move(function);
}

void seat::tellOfPreferences(PreferencesNotice::What what, const std::string& domain, const char* detail) noexcept {
    try {
        dispatch_async(dispatch_get_main_queue(), [notice = PreferencesNotice{what, domain, detail}] {
            // A copy: it may be replaced by what it does.
            if (const auto call = handler()) call(notice);
        });
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): the log has it
    }
}
