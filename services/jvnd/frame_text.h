#pragma once

#include "daemonlink/JVNControlFrame.h"

#include <string>

namespace jvnd {

// "01 00 00 00 ... | Connect, DualShock 4, with an address": a frame that was asked, with the bytes of its size. Of an
// address the last two bytes are shown.
std::string frameText(const JVNControlFrame& frame);

// The same for the reply to it.
std::string replyText(const JVNControlFrame& asked, const JVNControlFrame& reply);

} // namespace jvnd
