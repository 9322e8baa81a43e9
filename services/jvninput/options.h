#pragma once

#include "services/input_protocol/messages.h"

#include <optional>
#include <string>
#include <vector>

namespace jvninput {

enum class Command { show, watch, tryOut, help, version };

struct Options {
    Command command = Command::show;
    std::string keymapFile; // of tryOut
    input::PlayMode mode = input::PlayMode::whileListened;
    bool forceExtended = false;
    std::string socket = input::socketPath;
};

// Nothing, and what is wrong with them in `complaint`, for arguments that are not understood.
std::optional<Options> parseOptions(const std::vector<std::string>& arguments, std::string& complaint);

const char* usage();

} // namespace jvninput
