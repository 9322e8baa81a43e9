#pragma once

#include "simulator/control_frames.h"

#include <optional>
#include <string>

namespace simulator {

// How the daemon treats whoever connects. By default as a good daemon does.
struct DaemonManner {
    enum class Door {
        Open,
        Refusing, // nobody listens at the socket's file
        Deaf,     // its queue of connections is full and nobody takes any
    };
    enum class CloseAt { Never, Accept, FirstByte, Frame, Answer };

    Door door = Door::Open;
    CloseAt closeAt = CloseAt::Never;
    bool reads = true;
    bool answers = true;
    int delay = 0;                    // milliseconds before an answer
    int trickle = 0;                  // milliseconds before each byte of an answer; 0: all at once
    std::optional<std::size_t> bytes; // only so many of an answer, then the end unless `holds`
    bool holds = false;
    bool garbage = false;
    std::size_t extra = 0;              // bytes that follow an answer
    std::optional<Bytes> reply;         // in place of every answer
    std::optional<std::uint32_t> code;  // the answer to Connect
    std::optional<std::uint32_t> state; // the answer to QueryConnection
};

// Changes the manner by one line; empty when it was understood, else what is wrong with it. Lines add up:
//   behave              as a good daemon again
//   refuse | deaf | open
//   close accept|byte|frame|answer   hangs up there; `close never` undoes it
//   unread | silent     takes connections and never reads; reads and never answers
//   delay MS | trickle MS
//   bytes N | hold      N bytes of each answer, then hangs up; with `hold` it does not
//   garbage | extra N   12 bytes that mean nothing; N bytes more than 12
//   reply HEX...        these bytes as every answer
//   code N | state N    the answer's code to Connect, its state to QueryConnection
// An empty line and one that begins with # change nothing.
std::string changeManner(DaemonManner& manner, const std::string& line);

} // namespace simulator
