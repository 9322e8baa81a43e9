#pragma once

#include "kit/dispatch/run_loop_sources.h"
#include "system/files/Descriptor.h"

#include <list>
#include <string>

namespace seat {

// The messages that wait, as files below the root, for the mail program to read them. A mail program that is started
// for one may take its time, and may look twice: so a draft goes a minute after it was read, or, read before, with the
// process; one that nobody has read by then is removed at a later start. Main thread.
class MailDrafts {
public:
    static constexpr double secondsAfterReading = 60;
    static constexpr double secondsUnread = 600; // then a later start takes it for forgotten

    static MailDrafts& shared();

    // Writes a draft into a file of its own, for this user alone; its real path. Empty, and a logged reason, when that
    // cannot be done.
    std::string save(const std::string& draft);
    // At once: nobody will read it.
    void discard(const std::string& path);

    // What earlier processes have left; at the start.
    void removeForgotten();
    // Those that were read; at the end.
    void removeRead();

private:
    struct Draft {
        std::string path;
        Descriptor watch;
        SourceToken read = 0;
        SourceToken timer = 0;
        bool wasRead = false;
    };
    using Place = std::list<Draft>::iterator;

    MailDrafts() = default;
    void watch(Draft& draft);
    void noteReading(Draft& draft);
    void remove(Place draft);

    std::list<Draft> m_drafts;
};

} // namespace seat
