// launched_tool report FILE: writes what it was started with, a line each.
// launched_tool wait: until a signal ends it.
// launched_tool exit CODE
// launched_tool say COUNT: so many lines to the standard output, then "last" to the standard error.
// launched_tool deaf FILE: ignores interrupts from when FILE is there.
// launched_tool tidy READY FILE: READY is there when it waits for an interrupt, FILE when it has come.
// launched_tool leave FILE: as family, but ends by itself, with an unfinished line written.
// launched_tool family FILE: FILE gets the number of a child that waits as this does.

#include <csignal>
#include <cstdio>
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

void writeWhole(const std::string& file, long number) {
    std::ofstream(file + ".part") << number << "\n";
    std::filesystem::rename(file + ".part", file);
}

[[noreturn]] void waitForever() {
    for (;;) ::pause();
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view task = argc > 1 ? argv[1] : "";
    if (task == "report" && argc > 2) report(argc, argv);
    if (task == "wait") waitForever();
    if (task == "say" && argc > 2) {
        for (int i = 0; i < std::atoi(argv[2]); ++i) std::printf("line %d\n", i);
        std::fflush(stdout);
        std::fprintf(stderr, "last");
    }
    if (task == "deaf" && argc > 2) {
        ::signal(SIGINT, SIG_IGN);
        writeWhole(argv[2], ::getpid());
        waitForever();
    }
    if (task == "tidy" && argc > 3) {
        ::sigset_t interrupt;
        ::sigemptyset(&interrupt);
        ::sigaddset(&interrupt, SIGINT);
        ::sigprocmask(SIG_BLOCK, &interrupt, nullptr);
        writeWhole(argv[2], ::getpid());
        int signal = 0;
        if (::sigwait(&interrupt, &signal) == 0) writeWhole(argv[3], ::getpid());
    }
    if ((task == "family" || task == "leave") && argc > 2) {
        const ::pid_t child = ::fork();
        if (child != 0) writeWhole(argv[2], child);
        if (child == 0 || task == "family") waitForever();
        std::printf("unfinished");
    }
    return task == "exit" && argc > 2 ? std::atoi(argv[2]) : 0;
}
