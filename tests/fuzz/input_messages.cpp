#include "services/common/log.h"
#include "services/jvninputd/Server.h"
#include "tests/support/HeldClock.h"

#include <algorithm>
#include <cstdlib>
#include <sys/socket.h>

// A connection's messages: each is as long as its first byte says, in steps of five bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const testing_support::HeldClock clock;
    static services::EventLoop loop(clock);
    services::setLogSink([](std::string_view) {});
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends) != 0) std::abort();
    const seat::Descriptor peer(ends[0]);

    bool gone = false;
    const auto checked = [](jvninputd::Client& client) {
        if (client.settings() && !jvninputd::isValid(*client.settings())) std::abort();
        if (client.light() && !jvninputd::isValid(*client.light())) std::abort();
        if (client.light() && client.role() != input::Role::govern) std::abort();
    };
    jvninputd::Client client(loop, seat::Descriptor(ends[1]), 1000,
                             {[](jvninputd::Client&, input::Role) { return std::nullopt; },
                              [](jvninputd::Client& joined) { joined.show(input::makeMessage<input::State>()); },
                              checked, checked, [&gone](jvninputd::Client&) { gone = true; }});
    while (size > 0) {
        const std::size_t length = std::min<std::size_t>(data[0] * 5U, size - 1);
        ::send(peer.get(), data + 1, length, MSG_NOSIGNAL);
        data += length + 1;
        size -= length + 1;
        for (int i = 0; i < 2; ++i) {
            bool ran = false;
            const auto marker = loop.soon([&ran] { ran = true; });
            loop.runUntil([&ran] { return ran; });
        }
    }
    if (gone != client.ended()) std::abort();
    return 0;
}
