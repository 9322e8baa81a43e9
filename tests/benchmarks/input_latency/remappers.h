#pragma once

#include "tests/machine/support/Program.h"
#include "tests/machine/support/VirtualKeyboard.h"

#include <cstdint>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

// What jvninputd is measured beside.

// The least that anybody could do: a process that reads keys and writes a pad (BTN_A for each key).
class BareLoop {
public:
    BareLoop(const std::string& node, const char* padName);
    ~BareLoop();
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;

private:
    pid_t m_process;
};

// A packaged program that makes another device out of one.
struct PeerProgram {
    const char* name;   // its command
    const char* words;  // of the shell, with $NODE for the device whose keys it takes
    const char* made;   // the name of the device that it makes
    std::uint16_t code; // what it makes of the key K
};
std::vector<PeerProgram> peerPrograms();

class Peer {
public:
    // Nothing, said on the standard error, when it is not installed or makes no device.
    static std::unique_ptr<Peer> start(const PeerProgram& program);

    machine::VirtualKeyboard& keys() { return m_keys; }
    const std::string& pad() const { return m_pad; }

private:
    explicit Peer(const PeerProgram& program);

    machine::VirtualKeyboard m_keys;
    std::unique_ptr<machine::Program> m_process;
    std::string m_pad;
};
