#include "services/jvninputd/ListenerCount.h"

#include <algorithm>

namespace jvninputd {

void ListenerCount::opened(Moment now) {
    // What is open already has been so since the settling began, the new one has not: it waits for the next round.
    if (!m_settlesAt) {
        m_settlesAt = now + settlingTime;
        m_leastOpen = m_open + 1;
    }
    ++m_open;
}

void ListenerCount::closed() {
    if (m_open == 0) return; // opened before anybody counted
    --m_open;
    m_leastOpen = std::min(m_leastOpen, m_open);
    m_settled = std::min(m_settled, m_open);
    if (m_open == m_settled) m_settlesAt.reset();
}

void ListenerCount::reset() { *this = {}; }

void ListenerCount::timePassed(Moment now) {
    if (!m_settlesAt || now < *m_settlesAt) return;
    m_settled = std::max(m_settled, m_leastOpen);
    m_settlesAt.reset();
    if (m_open > m_settled) {
        m_settlesAt = now + settlingTime;
        m_leastOpen = m_open;
    }
}

} // namespace jvninputd
