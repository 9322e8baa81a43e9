#include "services/jvninputd/ListenerWatch.h"

#include "services/common/log.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/epoll.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace jvninputd {

namespace {

constexpr const char* nodeFolder = "/dev/input";

} // namespace

ListenerWatch::ListenerWatch(services::EventLoop& loop, std::function<void()> changed)
    : m_loop(loop), m_changed(std::move(changed)), m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (m_descriptor) m_folder = ::inotify_add_watch(m_descriptor.get(), nodeFolder, IN_OPEN | IN_CLOSE | IN_CREATE);
    if (m_folder < 0)
        services::log("watching %s: %s", nodeFolder, std::strerror(errno));
    else
        m_readable = m_loop.watch(m_descriptor.get(), EPOLLIN, [this](std::uint32_t) { readEvents(); });
}

void ListenerWatch::follow(std::function<std::vector<std::string>()> nodes) {
    m_nodes = std::move(nodes);
    followNodes();
}

void ListenerWatch::followNodes() {
    for (const std::string& name : m_nodes()) {
        if (m_followed.contains(name)) continue;
        const std::string path = std::string(nodeFolder) + '/' + name;
        const int watch = ::inotify_add_watch(m_descriptor.get(), path.c_str(), IN_OPEN | IN_CLOSE);
        const int marker = ::inotify_add_watch(m_descriptor.get(), "/dev", IN_DELETE_SELF);
        ::inotify_rm_watch(m_descriptor.get(), marker);
        if (watch < 0) services::log("watching %s: %s", path.c_str(), std::strerror(errno));
        m_followed[name] = {watch, marker, false};
    }
}

void ListenerWatch::readEvents() {
    alignas(::inotify_event) std::array<char, 4096> buffer;
    for (;;) {
        const ssize_t size = ::read(m_descriptor.get(), buffer.data(), buffer.size());
        if (size <= 0) break;
        for (ssize_t at = 0; at < size;) {
            const auto* event = reinterpret_cast<const ::inotify_event*>(buffer.data() + at);
            handle(event->wd, event->mask, event->len > 0 ? event->name : "");
            at += static_cast<ssize_t>(sizeof *event + event->len);
        }
    }
    say();
}

void ListenerWatch::handle(int watch, std::uint32_t mask, const std::string& name) {
    if (mask & IN_Q_OVERFLOW) {
        // Opens and closes were lost. Nobody is taken to listen who may not: who has the pad open opens it again.
        services::log("watching who opens the pad: too many opens at once");
        return m_count.reset();
    }
    // The joystick interface may be loaded after the pad was made.
    if (watch == m_folder && mask & IN_CREATE && name.starts_with("js")) return followNodes();
    for (auto& [nodeName, node] : m_followed) {
        if (watch == node.marker) node.byItself = true;
        if (node.byItself ? watch != node.watch : watch != m_folder || name != nodeName) continue;
        if (mask & IN_OPEN) m_count.opened(m_loop.now());
        if (mask & IN_CLOSE) m_count.closed();
    }
}

void ListenerWatch::say() {
    m_timer.reset();
    if (const auto deadline = m_count.deadline())
        m_timer = m_loop.after(std::max(*deadline - m_loop.now(), Duration(0)), [this] { timerFired(); });
    if (m_said == m_count.listening()) return;
    m_said = m_count.listening();
    const auto changed = m_changed; // it may end this watch
    changed();
}

void ListenerWatch::timerFired() {
    m_count.timePassed(m_loop.now());
    say();
}

} // namespace jvninputd
