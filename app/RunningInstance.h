#pragma once

#include "kit/dispatch/run_loop_sources.h"
#include "system/files/Descriptor.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <sys/types.h>

namespace app {

// One program a root: whoever starts a second one has the first one's window brought to the front. They meet at a
// socket in the root, which is this user's. Main thread only.
class RunningInstance {
public:
    // The one that shows this root from now on, or nullptr when another does that already, with this bundle, and has
    // brought its window to the front. One that does not answer within a second is left alone: this one then shows the
    // root, too, and listens to nobody.
    static std::unique_ptr<RunningInstance> start(const std::string& root, const std::string& bundle);

    ~RunningInstance();
    RunningInstance(const RunningInstance&) = delete;
    RunningInstance& operator=(const RunningInstance&) = delete;

    // What to do when another is started; until it is set the others wait. The token tells the desktop whose wish it
    // is; it may be empty.
    void setRaiseHandler(std::function<void(const std::string& token)> raise);

private:
    RunningInstance(std::string root, std::string bundle);

    void listen(seat::Descriptor listener);
    void accept();
    void hear(int caller);

    std::string m_root;
    std::string m_bundle;
    std::function<void(const std::string& token)> m_raise;
    seat::Descriptor m_listener;
    ino_t m_inode = 0; // the socket's
    seat::SourceToken m_listening = 0;
    struct Caller {
        seat::Descriptor socket;
        seat::SourceToken source = 0;
    };
    std::map<int, Caller> m_callers;
};

} // namespace app
