// The daemon's side of the control socket: two callers whose bytes come in pieces of any size, while Bluetooth does
// what it likes. The first byte of the input says how the rest is cut.

#include "services/jvnd/Commands.h"
#include "services/jvnd/FrameReader.h"
#include "tests/jvnd/FakeBluetooth.h"
#include "tests/jvnd/FakeDevices.h"
#include "tests/support/HeldClock.h"

#include <algorithm>
#include <cstdlib>
#include <span>

namespace {

using Bytes = std::span<const std::uint8_t>;

struct FuzzedCaller final : jvnd::Caller {
    void reply(const JVNControlFrame& frame) override {
        using Command = JVNControlCommand;
        if (isGone || (frame.command != Command::ConnectAccepted && frame.command != Command::ConnectRefused &&
                       frame.command != Command::QueryConnection))
            std::abort();
        ++replies;
    }
    std::uint64_t number() const override { return 1; }

    jvnd::FrameReader reader;
    std::size_t frames = 0;
    std::size_t replies = 0;
    bool isGone = false;
};

// False when the connection is to be closed.
bool take(jvnd::Commands& commands, FuzzedCaller& caller, Bytes bytes) {
    JVNControlFrame frame;
    auto result = caller.reader.next(bytes, frame);
    for (; result == jvnd::FrameReader::Result::Frame; result = caller.reader.next(bytes, frame)) {
        ++caller.frames;
        if (commands.handle(caller, frame) == jvnd::CommandHandler::Then::Close) return false;
    }
    return result == jvnd::FrameReader::Result::NeedsMore;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    testing_support::HeldClock clock;
    services::EventLoop loop(clock);
    testing_support::FakeBluetooth bluetooth;
    testing_support::FakeDevices devices;
    jvnd::Connector connector(loop, bluetooth, devices);
    jvnd::Settings settings;
    settings.controllerType = JVNControllerTypeDualShock4;
    settings.address = testing_support::firstAddress;
    jvnd::Commands commands(connector, {.settings = [&]() -> const jvnd::Settings& { return settings; },
                                        .setColor = [](jvnd::Color) {},
                                        .restart = [] {},
                                        .trace = {}});
    FuzzedCaller callers[2];

    Bytes bytes(data, size);
    std::uint32_t chance = size > 0 ? data[0] : 0;
    for (std::size_t i = 0; !bytes.empty(); ++i) {
        chance = chance * 1664525 + 1013904223;
        auto& caller = callers[i % 2];
        const auto piece = bytes.first(std::min<std::size_t>(bytes.size(), 1 + (chance >> 16) % 24));
        bytes = bytes.subspan(piece.size());
        if (!caller.isGone && !take(commands, caller, piece)) {
            caller.isGone = true;
            commands.callerGone(caller);
            if (commands.isWaiting(caller)) std::abort();
        }
        if (bluetooth.isBusy() && (chance >> 8) % 3 == 0)
            bluetooth.end(static_cast<bluetooth::Error>((chance >> 10) % 9));
        if ((chance >> 12) % 5 == 0) bluetooth.set(testing_support::firstAddress, (chance >> 14) % 2 == 0);
        if ((chance >> 20) % 7 == 0) devices.setControllers({{testing_support::firstAddress}});
        if ((chance >> 24) % 11 == 0) clock.advance(loop, std::chrono::seconds(18));
    }
    for (auto& caller : callers) {
        if (caller.replies > caller.frames) std::abort();
        commands.callerGone(caller);
    }
    if (connector.isConnecting()) std::abort();
    return 0;
}
