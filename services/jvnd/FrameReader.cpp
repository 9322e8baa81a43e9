#include "services/jvnd/FrameReader.h"

#include <algorithm>
#include <cstring>

namespace jvnd {

namespace {

constexpr std::size_t commandSize = sizeof(JVNControlCommand);

JVNControlCommand commandOf(std::span<const std::uint8_t, commandSize> bytes) {
    std::uint32_t code = 0;
    std::memcpy(&code, bytes.data(), sizeof code);
    return static_cast<JVNControlCommand>(code);
}

} // namespace

FrameReader::Result FrameReader::next(std::span<const std::uint8_t>& bytes, JVNControlFrame& frame) {
    for (;;) {
        const bool hasCommand = m_length >= commandSize;
        const auto command = commandOf(std::span(m_bytes).first<commandSize>());
        const auto size = hasCommand ? JVNControlFrameSize(command) : commandSize;
        if (size == 0) return Result::Invalid;
        if (hasCommand && m_length == size) {
            frame = {};
            frame.command = command;
            std::memcpy(&frame.controllerType, &m_bytes[offsetof(JVNControlFrame, controllerType)],
                        sizeof frame.controllerType);
            frame.flag = m_bytes[offsetof(JVNControlFrame, flag)];
            std::memcpy(frame.payload, &m_bytes[JVNControlFrame::baseSize], size - JVNControlFrame::baseSize);
            m_length = 0;
            return Result::Frame;
        }
        if (bytes.empty()) return Result::NeedsMore;
        const auto count = std::min(size - m_length, bytes.size());
        std::copy_n(bytes.begin(), count, m_bytes.begin() + static_cast<std::ptrdiff_t>(m_length));
        m_length += count;
        bytes = bytes.subspan(count);
    }
}

} // namespace jvnd
