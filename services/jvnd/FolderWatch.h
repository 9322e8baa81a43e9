#pragma once

#include "services/common/EventLoop.h"
#include "system/files/Descriptor.h"

#include <functional>
#include <string>

namespace jvnd {

// Hears of one file of a folder: put there, replaced, written, taken away. Asleep otherwise.
class FolderWatch {
public:
    // A real path. The loop outlives this object; `changed` may destroy it.
    FolderWatch(services::EventLoop& loop, const std::string& path, std::function<void()> changed);
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    // False when there is no such folder (any more); nothing is heard then.
    bool isWatching() const { return m_source != nullptr; }

private:
    void read();

    std::string m_name;
    std::function<void()> m_changed;
    seat::Descriptor m_inotify;
    services::EventLoop::Source m_source;
};

} // namespace jvnd
