// What another process does to the preferences of a root:
//   preferences_writer ROOT write DOMAIN PREFIX COUNT    writes PREFIX0 to PREFIX<COUNT-1>, one key at a time
//   preferences_writer ROOT die DOMAIN KEY N             writes KEY and is killed before its Nth call of the system
//   preferences_writer ROOT stay DOMAIN KEY              writes KEY, says "writing" before it is in place, and stays so
//   preferences_writer ROOT hold DOMAIN                  takes the lock, says "held", and keeps it until it is killed
//   preferences_writer ROOT set DOMAIN KEY VALUE
//   preferences_writer ROOT get DOMAIN KEY               prints the text that is stored

#include "system/files/Descriptor.h"
#include "system/files/root.h"
#include "system/preferences/FileLock.h"
#include "system/preferences/preferences_store.h"
#include "tests/support/SystemCalls.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

using namespace seat;
using testing_support::SystemCall;
using testing_support::SystemCalls;

int main(int count, char** values) {
    const std::vector<std::string> arguments(values + 1, values + count);
    if (arguments.size() < 3) return 2;
    setRoot(arguments[0]);
    const std::string& command = arguments[1];
    const std::string& domain = arguments[2];
    if (command == "write") {
        for (int i = 0; i < std::stoi(arguments.at(4)); ++i)
            setPreferenceValue(domain, arguments.at(3) + std::to_string(i), NSNumber::numberWithInteger(i));
        return awaitPendingPreferences(std::chrono::seconds(60)) ? 0 : 1;
    }
    const auto isStored = [&](const std::string& key, const std::string& value) {
        return setPreferenceValue(domain, key, value) == PreferenceWrite::Stored;
    };
    if (command == "die") {
        const int last = std::stoi(arguments.at(4));
        SystemCalls calls;
        int made = 0;
        for (const auto call : {SystemCall::Open, SystemCall::Read, SystemCall::Write, SystemCall::Lock,
                                SystemCall::ChangeMode, SystemCall::Flush, SystemCall::Rename, SystemCall::Unlink})
            calls.before(call, [&](int) {
                if (++made == last) raise(SIGKILL);
            });
        return isStored(arguments.at(3), "written") ? 0 : 1;
    }
    if (command == "stay") {
        SystemCalls calls;
        calls.before(SystemCall::Flush, [](int) {
            std::puts("writing");
            std::fflush(stdout);
            for (;;) pause();
        });
        return isStored(arguments.at(3), "written") ? 0 : 1;
    }
    if (command == "hold") {
        const Descriptor folder(
            open(hostPath("/var/mobile/Library/Preferences").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const FileLock lock(folder.get(), ".lock." + domain, std::chrono::seconds(5));
        std::puts(lock.isHeld() ? "held" : "not held");
        std::fflush(stdout);
        for (;;) pause();
    }
    if (command == "get") {
        const id value = preferenceValue(domain, arguments.at(3));
        std::puts(value.string() ? value.string()->c_str() : "none");
        return 0;
    }
    if (command == "set") return isStored(arguments.at(3), arguments.at(4)) ? 0 : 1;
    return 2;
}
