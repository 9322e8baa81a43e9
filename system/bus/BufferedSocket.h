#pragma once

#include "system/files/Descriptor.h"

#include <string>
#include <utility>

namespace seat {

// One end of a stream that never waits: what came and was not taken yet, and what is still to be sent.
class BufferedSocket {
public:
    // The descriptor does not block.
    explicit BufferedSocket(Descriptor descriptor) : m_descriptor(std::move(descriptor)) {}

    std::string received;
    std::string toSend;

    // Takes what is there, some of it when it is much. False at the end of the stream, and on failure.
    bool receive();
    // Sends as much as the other side takes. False when it is gone.
    bool send();

    int descriptor() const { return m_descriptor.get(); }

private:
    Descriptor m_descriptor;
};

} // namespace seat
