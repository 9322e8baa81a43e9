#include "simulator/control_frames.h"

#include <gtest/gtest.h>

namespace {

using namespace simulator;

TEST(ControlFrames, ACommandTellsTheSizeOfItsFrame) {
    EXPECT_EQ(12u, frameSize(0));
    EXPECT_EQ(20u, frameSize(1));
    EXPECT_EQ(std::nullopt, frameSize(2));
    EXPECT_EQ(20u, frameSize(3));
    EXPECT_EQ(16u, frameSize(4));
    EXPECT_EQ(12u, frameSize(5));
    EXPECT_EQ(12u, frameSize(6));
    EXPECT_EQ(std::nullopt, frameSize(7));
}

TEST(ControlFrames, AFrameIsToldInWordsWithoutItsAddress) {
    Bytes connect{1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 0, 0};
    EXPECT_EQ("Connect, DualShock 4, with an address", describeFrame(connect));
    std::fill(connect.begin() + 12, connect.end(), std::uint8_t(0));
    connect[4] = 0;
    EXPECT_EQ("Connect, PS3 controller, without an address", describeFrame(connect));
    EXPECT_EQ("SetLEDColor, DualShock 4, 00 4e fd",
              describeFrame(Bytes{4, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0x4e, 0xfd, 0}));
    EXPECT_EQ("EndSession", describeFrame(makeReply(6, 0)));
    EXPECT_EQ("Disconnect, type 99", describeFrame(makeReply(0, 99)));
}

TEST(ControlFrames, WordsAreLittleEndianAndBytesHexadecimal) {
    const Bytes reply = makeReply(8, 0x01020304);
    EXPECT_EQ("08 00 00 00 04 03 02 01 00 00 00 00", hex(reply));
    EXPECT_EQ(0x01020304u, word(reply, 4));
    EXPECT_EQ(8u, word(Bytes{8}, 0));
}

} // namespace
