#include "system/process/children.h"

#include "kit/dispatch/run_loop_sources.h"
#include "system/process/pidfd.h"

#include <cerrno>
#include <map>
#include <mutex>
#include <sys/wait.h>

namespace {

using namespace seat;

struct Child {
    Descriptor process;
    Descriptor loading;
    SourceToken ended = 0;
    SourceToken loaded = 0;
};

// Never destroyed: children outlive statics.
struct Children {
    std::mutex mutex; // of the map: signals come from any thread, changes from the main one
    std::map<int, Child> all;

    static Children& shared() {
        static auto* const children = new Children;
        return *children;
    }
};

std::function<void(const std::string&)>& childListener() {
    static auto* const listener = new std::function<void(const std::string&)>;
    return *listener;
}

void tell(int identifier, const std::string& what) {
    // It may take itself away.
    if (const auto listener = childListener()) listener("process " + std::to_string(identifier) + " " + what);
}

std::string ending(const ::siginfo_t& information) {
    const std::string number = std::to_string(information.si_status);
    return information.si_code == CLD_EXITED ? "ended with " + number : "was ended by signal " + number;
}

void finishLoading(int identifier, const std::function<void(int)>& couldNotLoad) {
    auto& children = Children::shared();
    const auto found = children.all.find(identifier);
    if (found == children.all.end() || !found->second.loading) return;
    removeSource(std::exchange(found->second.loaded, 0));
    const int error = loadingResult(found->second.loading);
    found->second.loading.reset();
    if (error != 0 && couldNotLoad) couldNotLoad(error);
}

void reapChild(int identifier) {
    auto& children = Children::shared();
    const auto found = children.all.find(identifier);
    if (found == children.all.end()) return;
    removeSource(found->second.ended);
    removeSource(found->second.loaded);
    ::siginfo_t information{};
    {
        // Under the lock, so that nobody signals the identifier once it may be a stranger's.
        const std::lock_guard lock(children.mutex);
        ::waitid(P_PIDFD, static_cast<::id_t>(found->second.process.get()), &information, WEXITED | WNOHANG);
        children.all.erase(found);
    }
    tell(identifier, ending(information));
}

} // namespace

void seat::adoptChild(SpawnedChild child, std::function<void(int)> couldNotLoad) {
    auto& children = Children::shared();
    const int identifier = child.identifier;
    tell(identifier, "was started: " + child.command);
    Child* kept = nullptr;
    {
        const std::lock_guard lock(children.mutex);
        kept = &children.all[identifier];
        *kept = {std::move(child.process), std::move(child.loading)};
    }
    if (kept->loading)
        kept->loaded = addReadableSource(kept->loading.get(),
                                         [identifier, couldNotLoad] { finishLoading(identifier, couldNotLoad); });
    kept->ended = addReadableSource(kept->process.get(), [identifier, couldNotLoad] {
        finishLoading(identifier, couldNotLoad); // a program that could not be loaded ends at once
        reapChild(identifier);
    });
}

void seat::setChildListener(std::function<void(const std::string&)> listener) { childListener() = std::move(listener); }

int seat::signalChild(int identifier, int signal) {
    auto& children = Children::shared();
    const std::lock_guard lock(children.mutex);
    const auto found = children.all.find(identifier);
    if (found == children.all.end()) {
        errno = ESRCH;
        return -1;
    }
    return ::pidfd_send_signal(found->second.process.get(), signal, nullptr, 0);
}
