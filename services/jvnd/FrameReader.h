#pragma once

#include "daemonlink/JVNControlFrame.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace jvnd {

// Cuts what comes in on a control connection into frames, however it was split or joined on its way. Holds one frame at
// the most.
class FrameReader {
public:
    enum class Result {
        NeedsMore, // all bytes are taken, the frame is not whole yet
        Frame,
        Invalid, // a command that nobody may ask; nothing more can be read
    };

    // Takes bytes off the front of `bytes` until a frame is whole. The bytes of a frame that carry nothing are zero in
    // `frame`, whatever came in them.
    Result next(std::span<const std::uint8_t>& bytes, JVNControlFrame& frame);

    // True when a frame has begun and is not whole.
    bool isInFrame() const { return m_length > 0; }

private:
    std::array<std::uint8_t, JVNControlFrame::fullSize> m_bytes{};
    std::size_t m_length = 0;
};

} // namespace jvnd
