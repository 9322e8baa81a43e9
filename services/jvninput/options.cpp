#include "services/jvninput/options.h"

namespace jvninput {

const char* usage() {
    return "usage: jvninput [OPTION]... [show | watch | try KEYMAP.plist]\n"
           "\n"
           "Shows what keyboards play as a gamepad. It never shows keys.\n"
           "\n"
           "  show            what would play: keyboards, pad, whether a game listens (without a command, too)\n"
           "  watch           follow the pad's state until interrupted\n"
           "  try FILE        play with the keymap of this property list until interrupted, and follow the pad:\n"
           "                  the preferences file, or a file with the keymap alone\n"
           "\n"
           "  --by-hand       (try) play from one chord to the next, not while a game listens\n"
           "  --extended      (try) a pad with sticks and triggers, whatever the keymap has\n"
           "  --socket PATH   where jvninputd listens\n"
           "  --help          this text\n"
           "  --version       the version\n";
}

std::optional<Options> parseOptions(const std::vector<std::string>& arguments, std::string& complaint) {
    Options options;
    std::vector<std::string> words;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            options.command = Command::help;
            return options;
        }
        if (argument == "--version") {
            options.command = Command::version;
            return options;
        }
        if (argument == "--by-hand") {
            options.mode = input::PlayMode::byHand;
        } else if (argument == "--extended") {
            options.forceExtended = true;
        } else if (argument == "--socket" && i + 1 < arguments.size()) {
            options.socket = arguments[++i];
        } else if (argument.starts_with("-")) {
            complaint = argument == "--socket" ? "--socket needs a path" : "there is no option " + argument;
            return std::nullopt;
        } else {
            words.push_back(argument);
        }
    }

    const std::string command = words.empty() ? "show" : words[0];
    const std::size_t wanted = command == "try" ? 2 : 1;
    if (command == "watch")
        options.command = Command::watch;
    else if (command == "try")
        options.command = Command::tryOut;
    else if (command != "show")
        complaint = "there is no command " + command;
    if (complaint.empty() && words.size() > wanted) complaint = "there is a word too many: " + words[wanted];
    if (complaint.empty() && !words.empty() && words.size() < wanted) complaint = "try needs a keymap file";
    if (!complaint.empty()) return std::nullopt;
    if (options.command == Command::tryOut) options.keymapFile = words[1];
    return options;
}

} // namespace jvninput
