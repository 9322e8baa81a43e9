#pragma once

#include "services/jvninputd/moment.h"

#include <optional>

namespace jvninputd {

// Whether a game listens, told from the moments at which the pad's nodes are opened and closed. Programs that look
// through all devices open a node and close it at once; a game keeps it open. So an open counts when it has lasted for
// settlingTime. Which open a close belongs to cannot be seen, and need not be.
class ListenerCount {
public:
    static constexpr Duration settlingTime = std::chrono::milliseconds(200);

    void opened(Moment now);
    void closed();
    // Forgets every open: the nodes are gone.
    void reset();

    // To be called at the deadline, where there is one.
    void timePassed(Moment now);
    std::optional<Moment> deadline() const { return m_settlesAt; }

    bool listening() const { return m_settled > 0; }

private:
    unsigned m_open = 0;
    unsigned m_settled = 0;   // opens that have surely lasted
    unsigned m_leastOpen = 0; // since the settling began
    std::optional<Moment> m_settlesAt;
};

} // namespace jvninputd
