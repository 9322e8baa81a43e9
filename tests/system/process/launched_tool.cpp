// launched_tool report FILE: writes what it was started with, a line each.
// launched_tool wait: until a signal ends it.
// launched_tool exit CODE

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

extern char** environ;

namespace {

void report(int argc, char** argv) {
    const std::string file = argv[2];
    {
        std::string descriptors;
        for (int i = 0; i < 1024; ++i)
            if (::fcntl(i, F_GETFD) != -1) descriptors += " " + std::to_string(i);
        std::ofstream out(file + ".part");
        out << "descriptors" << descriptors << "\n";
        ::sigset_t blocked;
        ::sigprocmask(SIG_BLOCK, nullptr, &blocked);
        for (int i = 1; i < NSIG; ++i) {
            struct ::sigaction action {};
            if (::sigaction(i, nullptr, &action) == 0 && action.sa_handler != SIG_DFL)
                out << "not default " << i << "\n";
            if (::sigismember(&blocked, i) == 1) out << "blocked " << i << "\n";
        }
        out << "folder " << std::filesystem::current_path().string() << "\n";
        for (int i = 0; i < argc; ++i) out << "argument " << argv[i] << "\n";
        for (char** entry = environ; *entry; ++entry) out << "environment " << *entry << "\n";
    }
    std::filesystem::rename(file + ".part", file);
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view task = argc > 1 ? argv[1] : "";
    if (task == "report" && argc > 2) report(argc, argv);
    if (task == "wait")
        for (;;) ::pause();
    return task == "exit" && argc > 2 ? std::atoi(argv[2]) : 0;
}
