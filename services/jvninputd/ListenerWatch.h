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
    ListenerWatch(services::EventLoop& loop, std::function<void(bool listening)> changed);

    // The pad is there; what is given tells the names of its nodes, of which more may come later.
    void follow(std::function<std::vector<std::string>()> nodes);

private:
    void readEvents();
    void handle(int watch, std::uint32_t mask, const std::string& name);
    void followNodes();
    void say();
    void timerFired();

    services::EventLoop& m_loop;
    std::function<void(bool)> m_changed;
    seat::Descriptor m_descriptor;
    int m_folder = -1;   // hears all nodes, until the pad's own are followed
    int m_newNodes = -1; // hears of nodes that are added later
    std::function<std::vector<std::string>()> m_nodes;
    std::map<std::string, int> m_followed; // by name, the watch
    ListenerCount m_count;
    bool m_said = false;
    services::EventLoop::Source m_readable;
    services::EventLoop::Source m_timer;
};

} // namespace jvninputd
