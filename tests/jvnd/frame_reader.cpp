#include "services/jvnd/FrameReader.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <vector>

using jvnd::FrameReader;

namespace {

using Bytes = std::vector<std::uint8_t>;

// A frame of this command whose other bytes all say something.
Bytes frame(JVNControlCommand command) {
    Bytes bytes(JVNControlFrameSize(command));
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0x40});
    const auto code = static_cast<std::uint32_t>(command);
    std::memcpy(bytes.data(), &code, sizeof code);
    return bytes;
}

const std::vector<Bytes> allFrames{
    frame(JVNControlCommand::Disconnect),      frame(JVNControlCommand::Connect),
    frame(JVNControlCommand::RestartDaemons),  frame(JVNControlCommand::SetLEDColor),
    frame(JVNControlCommand::QueryConnection), frame(JVNControlCommand::EndSession),
};

Bytes joined(const std::vector<Bytes>& frames) {
    Bytes all;
    for (const auto& each : frames) all.insert(all.end(), each.begin(), each.end());
    return all;
}

// "1 1078018372, 4 ...": the command and the type of each frame, "?" at the end for one that there is not.
std::string readInPieces(FrameReader& reader, const Bytes& bytes, std::size_t piece) {
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        auto rest = std::span(bytes).subspan(at, std::min(piece, bytes.size() - at));
        for (;;) {
            JVNControlFrame whole;
            const auto result = reader.next(rest, whole);
            if (result == FrameReader::Result::NeedsMore) break;
            if (result == FrameReader::Result::Invalid) return text + "?";
            text += std::to_string(static_cast<std::uint32_t>(whole.command)) + " ";
        }
    }
    return text;
}

TEST(FrameReader, FramesComeWholeHoweverTheirBytesAreSplitOrJoined) {
    const Bytes all = joined(allFrames);
    for (std::size_t piece = 1; piece <= all.size(); ++piece) {
        FrameReader reader;
        EXPECT_EQ(readInPieces(reader, all, piece), "0 1 3 4 5 6 ") << piece;
        EXPECT_FALSE(reader.isInFrame());
    }
}

TEST(FrameReader, AFrameThatIsCutIsNone) {
    for (const auto& whole : allFrames)
        for (std::size_t length = 1; length < whole.size(); ++length) {
            FrameReader reader;
            EXPECT_EQ(
                readInPieces(reader, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)), 3), "");
            EXPECT_TRUE(reader.isInFrame());
        }
}

TEST(FrameReader, ThePayloadIsWhatTheCommandCarriesAndNothingElse) {
    for (const auto& bytes : allFrames) {
        FrameReader reader;
        JVNControlFrame whole;
        auto rest = std::span<const std::uint8_t>(bytes);

        ASSERT_EQ(reader.next(rest, whole), FrameReader::Result::Frame);

        EXPECT_EQ(whole.controllerType, 0x47464544u);
        EXPECT_EQ(whole.flag, 0x48);
        EXPECT_EQ(whole.unused[0] | whole.unused[1] | whole.unused[2], 0) << "bytes 9 to 11 are not read";
        const auto carried = bytes.size() - JVNControlFrame::baseSize;
        for (std::size_t i = 0; i < sizeof whole.payload; ++i) EXPECT_EQ(whole.payload[i], i < carried ? 0x4C + i : 0);
    }
}

TEST(FrameReader, ACommandThatThereIsNotEndsTheReadingForGood) {
    for (const std::uint32_t code : {2u, 7u, 8u, 9u, 0x100u, 0x01000000u, 0xFFFFFFFFu}) {
        Bytes bytes = joined({allFrames[0], Bytes(20)});
        std::memcpy(&bytes[12], &code, sizeof code);
        FrameReader reader;
        EXPECT_EQ(readInPieces(reader, bytes, 5), "0 ?") << code;
        EXPECT_EQ(readInPieces(reader, allFrames[0], 12), "?");
    }
}

} // namespace
