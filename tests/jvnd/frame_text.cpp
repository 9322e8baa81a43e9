#include "services/jvnd/frame_text.h"

#include <gtest/gtest.h>

using namespace jvnd;

namespace {

JVNControlFrame frameOf(JVNControlCommand command, std::uint32_t type = 0,
                        std::initializer_list<std::uint8_t> payload = {}) {
    JVNControlFrame result;
    result.command = command;
    result.controllerType = type;
    std::copy(payload.begin(), payload.end(), result.payload);
    return result;
}

TEST(FrameText, AFrameIsItsBytesAndWhatTheySay) {
    EXPECT_EQ(frameText(frameOf(JVNControlCommand::QueryConnection)),
              "05 00 00 00 00 00 00 00 00 00 00 00 | QueryConnection");
    EXPECT_EQ(frameText(frameOf(JVNControlCommand::SetLEDColor, 1, {0, 0x4E, 0xFD})),
              "04 00 00 00 01 00 00 00 00 00 00 00 00 4e fd 00 | SetLEDColor, DualShock 4, 00 4e fd");
    EXPECT_EQ(frameText(frameOf(JVNControlCommand::Disconnect, 9)),
              "00 00 00 00 09 00 00 00 00 00 00 00 | Disconnect, type 9");
}

TEST(FrameText, OfAnAddressTheLastTwoBytesAreShown) {
    EXPECT_EQ(frameText(frameOf(JVNControlCommand::Connect, 1, {0, 0x1B, 0xDC, 0x0F, 0xA1, 0x27})),
              "01 00 00 00 01 00 00 00 00 00 00 00 .. .. .. .. a1 27 00 00 | Connect, DualShock 4, with an address");
    EXPECT_EQ(
        frameText(frameOf(JVNControlCommand::Connect)),
        "01 00 00 00 00 00 00 00 00 00 00 00 .. .. .. .. 00 00 00 00 | Connect, PS3 controller, without an address");
}

TEST(FrameText, AReplySaysWhatBecameOfTheCommand) {
    const auto connect = frameOf(JVNControlCommand::Connect);
    const auto query = frameOf(JVNControlCommand::QueryConnection);
    EXPECT_EQ(replyText(connect, frameOf(JVNControlCommand::ConnectAccepted, 1)),
              "08 00 00 00 01 00 00 00 00 00 00 00 | ConnectAccepted");
    EXPECT_EQ(replyText(connect, frameOf(JVNControlCommand::ConnectRefused, 4)),
              "09 00 00 00 04 00 00 00 00 00 00 00 | refused, reason 4");
    EXPECT_EQ(replyText(query, frameOf(JVNControlCommand::QueryConnection, 1)),
              "05 00 00 00 01 00 00 00 00 00 00 00 | state 1, connected");
    EXPECT_EQ(replyText(query, frameOf(JVNControlCommand::QueryConnection, 7)),
              "05 00 00 00 07 00 00 00 00 00 00 00 | state 7, not known");
}

} // namespace
