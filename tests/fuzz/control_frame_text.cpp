// What comes in on the control socket, cut into frames, and each as the trace has it: one plain line without an
// address.

#include "services/jvnd/FrameReader.h"
#include "services/jvnd/frame_text.h"
#include "tests/fuzz/support.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    jvnd::FrameReader reader;
    std::span<const std::uint8_t> bytes(data, size);
    JVNControlFrame frame;
    JVNControlFrame former;
    while (reader.next(bytes, frame) == jvnd::FrameReader::Result::Frame) {
        fuzz::expect(JVNControlFrameSize(frame.command) > 0, "a frame has a size");
        for (const auto& text : {jvnd::frameText(frame), jvnd::replyText(former, frame)})
            fuzz::expect(!text.empty() && std::ranges::all_of(text, [](char c) { return c >= ' ' && c < 0x7f; }),
                         "a frame is one plain line");
        if (frame.command == JVNControlCommand::Connect)
            fuzz::expect(jvnd::frameText(frame).find(" .. .. .. ..") != std::string::npos, "no whole address is shown");
        former = frame;
    }
    return 0;
}
