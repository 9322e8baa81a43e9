#pragma once

#include <functional>
#include <string>

namespace seat {

// What a user has to hear of, since nothing on the page shows it.
struct PreferencesNotice {
    enum class What {
        NotStored,  // what was to be stored is lost
        MovedAside, // the file was damaged, and a new one was begun
        Stored,     // something is again, after what was not
    };
    What what = What::NotStored;
    std::string domain;
    std::string detail; // the reason, or the damaged file's new name and the reason; empty for Stored
};

// Called on the main thread, from its queue. An empty function removes it. Main thread.
void setPreferencesNoticeHandler(std::function<void(const PreferencesNotice& notice)> handler);

// Any thread; without memory for it nobody is told.
void tellOfPreferences(PreferencesNotice::What what, const std::string& domain, const char* detail) noexcept;

} // namespace seat
