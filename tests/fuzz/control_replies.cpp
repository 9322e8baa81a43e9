// What a daemon answers on the control socket, whatever it is, and an end after it: each exchange ends, and a reply
// counts only if it is whole. The first byte of the input says which exchange it is.

#include "daemonlink/exchanges.h"
#include "kit/runtime/log.h"
#include "tests/fuzz/support.h"

#include <cstring>
#include <sys/socket.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    seat::setLogSink([](std::string_view) {});
    int ends[2];
    fuzz::expect(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "there is a socket");
    const std::uint8_t* const reply = data + 1;
    const std::size_t length = std::min<std::size_t>(size - 1, 4096);
    fuzz::expect(::send(ends[1], reply, length, MSG_NOSIGNAL) == static_cast<ssize_t>(length), "the reply fits");
    ::shutdown(ends[1], SHUT_WR);

    JVNControlFrame frame;
    std::uint32_t word = 0;
    const bool isWhole = length >= JVNControlFrame::baseSize;
    if (isWhole) std::memcpy(&word, reply, sizeof word);
    if (data[0] % 2 == 0) {
        const auto answer = daemonlink::queryConnection(ends[0], frame);
        fuzz::expect(isWhole || answer == daemonlink::QueryReply::NotConnected, "half a reply is none");
    } else {
        const bool isAccepted = daemonlink::connect(ends[0], frame, data[0] / 2);
        fuzz::expect(!isAccepted || (isWhole && word == static_cast<std::uint32_t>(JVNControlCommand::ConnectAccepted)),
                     "only a whole reply accepts");
        // What went out is whole frames: Connect, and where it was not accepted EndSession.
        std::uint8_t sent[64];
        const auto count = ::recv(ends[1], sent, sizeof sent, MSG_DONTWAIT);
        const std::size_t expected = JVNControlFrame::fullSize + (isAccepted ? 0 : JVNControlFrame::baseSize);
        fuzz::expect(count == static_cast<ssize_t>(expected), "whole frames go out");
    }
    ::close(ends[0]);
    ::close(ends[1]);
    return 0;
}
