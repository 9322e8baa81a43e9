#include "app/Options.h"
#include "app/application.h"
#include "app/translation.h"
#include "kit/dispatch/shutdown.h"
#include "system/process/children.h"
#include "system/process/standard_descriptors.h"

#include <cstdio>
#include <malloc.h>
#include <span>

int main(int argumentCount, char** arguments) {
    seat::openMissingStandardDescriptors();
    // The threads wait far more than they allocate; a heap for each would cost more memory than it saves time.
    mallopt(M_ARENA_MAX, 1);
    std::span<const char* const> words(arguments, static_cast<std::size_t>(argumentCount));
    if (!words.empty()) words = words.subspan(1);
    const auto [options, problem] = app::parseOptions(words);
    // The tour finds its rows by their English names.
    if (options.tour.empty()) app::speakTheUsersLanguage();
    if (!problem.empty()) {
        std::fprintf(stderr, "joyvane-settings: %s; --help lists what there is\n", problem.c_str());
        return app::ExitUsage;
    }
    if (options.showHelp || options.showVersion) {
        const std::string text = options.showHelp ? app::helpText() : "joyvane-settings " JOYVANE_VERSION "\n";
        return std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0 ? app::ExitSuccess : app::ExitFailure;
    }
    const int code = app::runApplication(options);
    seat::endTools();
    return seat::finishProcess(code);
}
