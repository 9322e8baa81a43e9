#pragma once

#include "services/common/EventLoop.h"
#include "services/jvninputd/ListenerCount.h"

#include "system/files/Descriptor.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace jvninputd {

// Hears whether a game listens to the pad: who opens and closes its nodes. One pad, one watch, since a game may still
// hold the nodes of the pad before, under the same names.
class ListenerWatch {
public:
    // Starts before there is a pad, so that nobody who opens it is missed.
    ListenerWatch(services::EventLoop& loop, std::function<void()> changed);

    bool listening() const { return m_said; }

    // The pad is there; what is given tells the names of its nodes, of which more may come later.
    void follow(std::function<std::vector<std::string>()> nodes);

private:
    void readEvents();
    void handle(int watch, std::uint32_t mask, const std::string& name);
    void followNodes();
    void say();
    void timerFired();

    services::EventLoop& m_loop;
    std::function<void()> m_changed;
    seat::Descriptor m_descriptor;
    // The folder's watch hears all nodes by name, the pad's nodes have their own. A node counts by the folder's until
    // its own stands, which the end of a third watch, set for nothing else, marks in the order of events. The folder's
    // stays: the kernel takes two events in a row that are alike for one, and so there never are two of the same watch
    // in a row.
    struct Node {
        int watch;
        int marker;
        bool byItself;
    };
    int m_folder = -1;
    std::function<std::vector<std::string>()> m_nodes;
    std::map<std::string, Node> m_followed; // by name
    ListenerCount m_count;
    bool m_said = false;
    services::EventLoop::Source m_readable;
    services::EventLoop::Source m_timer;
};

} // namespace jvninputd
