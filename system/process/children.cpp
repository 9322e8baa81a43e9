#include "system/process/children.h"

#include "kit/dispatch/run_loop_sources.h"
#include "platform/log.h"
#include "system/process/ChildOutput.h"
#include "system/process/pidfd.h"
#include "system/process/tool_guard.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <poll.h>
#include <sys/wait.h>
#include <vector>

namespace {

using namespace seat;

struct Child {
    ChildKind kind = ChildKind::Tool;
    std::string name; // the program's, without its folder
    Descriptor process;
    Descriptor loading;
    std::shared_ptr<Descriptor> guard; // a tool's
    std::optional<ChildOutput> output;
    SourceToken ended = 0;
    SourceToken loaded = 0;
    bool wasSignalled = false;
    std::function<void(const ChildEnd&)> whenEnded;
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

ChildEnd ending(const ::siginfo_t& information, bool wasSignalled) {
    const std::string number = std::to_string(information.si_status);
    if (information.si_code == CLD_EXITED) return {information.si_status, 0, wasSignalled, "ended with " + number};
    return {-1, information.si_status, wasSignalled, "was ended by signal " + number};
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

// Reaps a tool's guard, which may also end with the tool's group, or when somebody kills it.
void awaitGuard(const std::shared_ptr<Descriptor>& guard) {
    const auto source = std::make_shared<SourceToken>();
    *source = addReadableSource(guard->get(), [guard, source] {
        ::siginfo_t information{};
        ::waitid(P_PIDFD, static_cast<::id_t>(guard->get()), &information, WEXITED | WNOHANG);
        removeSource(*source);
    });
}

int signalLocked(int identifier, Child& child, int signal) {
    if (signal != 0) child.wasSignalled = true;
    // Its group has its number for as long as it has not been reaped.
    if (child.kind == ChildKind::Tool && ::kill(-identifier, signal) == 0) return 0;
    return ::pidfd_send_signal(child.process.get(), signal, nullptr, 0);
}

void reapChild(int identifier) {
    auto& children = Children::shared();
    const auto found = children.all.find(identifier);
    if (found == children.all.end()) return;
    removeSource(found->second.ended);
    removeSource(found->second.loaded);
    ::siginfo_t information{};
    const std::string name = found->second.name;
    const bool isTool = found->second.kind == ChildKind::Tool;
    const bool wasSignalled = found->second.wasSignalled;
    const auto whenEnded = std::move(found->second.whenEnded);
    const auto guard = std::move(found->second.guard);
    if (found->second.output) found->second.output->finish();
    {
        // Under the lock, so that nobody signals the identifier once it may be somebody else's.
        const std::lock_guard lock(children.mutex);
        ::waitid(P_PIDFD, static_cast<::id_t>(found->second.process.get()), &information, WEXITED | WNOHANG);
        children.all.erase(found);
    }
    if (guard) endToolGuard(*guard);
    const ChildEnd end = ending(information, wasSignalled);
    if (isTool && end.exitCode != 0) NSLog("%s (process %d): it %s", name.c_str(), identifier, end.description.c_str());
    tell(identifier, end.description);
    if (whenEnded) whenEnded(end);
}

} // namespace

void seat::adoptChild(SpawnedChild child, std::function<void(int)> couldNotLoad,
                      std::function<void(const ChildEnd&)> ended) {
    auto& children = Children::shared();
    const int identifier = child.identifier;
    tell(identifier, "was started: " + child.command);
    Child* kept = nullptr;
    {
        const std::lock_guard lock(children.mutex);
        kept = &children.all[identifier];
        kept->kind = child.kind;
        kept->name = child.command.substr(0, child.command.find(' '));
        kept->name.erase(0, kept->name.rfind('/') + 1);
        kept->process = std::move(child.process);
        kept->loading = std::move(child.loading);
        kept->whenEnded = std::move(ended);
    }
    if (child.guard) {
        kept->guard = std::make_shared<Descriptor>(std::move(child.guard));
        awaitGuard(kept->guard);
    }
    if (child.output) kept->output.emplace(std::move(child.output), kept->name);
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
    return signalLocked(identifier, found->second, signal);
}

void seat::endTools(std::chrono::milliseconds grace) {
    auto& children = Children::shared();
    const auto end = std::chrono::steady_clock::now() + grace;
    std::vector<int> running;
    for (const auto& [identifier, child] : children.all)
        if (child.kind == ChildKind::Tool) running.push_back(identifier);
    for (const int identifier : running) signalChild(identifier, SIGINT);
    for (const int identifier : running) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        ::pollfd ended{children.all.at(identifier).process.get(), POLLIN, 0};
        if (::poll(&ended, 1, std::max(0, static_cast<int>(left.count()))) <= 0) {
            NSLog("%s (process %d): it does not end when interrupted, and is killed",
                  children.all.at(identifier).name.c_str(), identifier);
            signalChild(identifier, SIGKILL);
            ::poll(&ended, 1, static_cast<int>(grace.count()));
        }
        reapChild(identifier);
    }
}
