#include "services/jvnd/Commands.h"

#include "tests/jvnd/FakeBluetooth.h"
#include "tests/jvnd/FakeDevices.h"
#include "tests/support/HeldClock.h"

#include <gtest/gtest.h>

using namespace jvnd;
using namespace std::chrono_literals;
using bluetooth::Error;
using testing_support::firstAddress;
using testing_support::secondAddress;
using Then = CommandHandler::Then;

namespace {

struct FakeCaller final : Caller {
    void reply(const JVNControlFrame& frame) override {
        replies += (replies.empty() ? "" : ", ") + std::to_string(static_cast<unsigned>(frame.command)) + "/" +
                   std::to_string(frame.controllerType);
    }
    std::uint64_t number() const override { return 1; }
    std::string replies; // "8/1, 9/4": the command and the second word of each
};

class CommandsTest : public ::testing::Test {
protected:
    CommandsTest() {
        settings.controllerType = JVNControllerTypeDualShock4;
        settings.address = firstAddress;
        devices.setControllers(std::nullopt); // the link is enough
    }
    static JVNControlFrame frame(JVNControlCommand command, std::uint32_t type = 1) {
        JVNControlFrame result;
        result.command = command;
        result.controllerType = type;
        return result;
    }
    Then connect(FakeCaller& from, const bluetooth::Address& address = firstAddress, std::uint32_t type = 1) {
        auto connect = frame(JVNControlCommand::Connect, type);
        std::ranges::copy(address.bytes, connect.payload);
        return commands.handle(from, connect);
    }
    Then query(FakeCaller& from) { return commands.handle(from, frame(JVNControlCommand::QueryConnection, 0)); }
    // What is under way ends well.
    void becomeConnected(const bluetooth::Address& address = firstAddress) {
        bluetooth.end();
        bluetooth.set(address, /*isConnected=*/true);
        bluetooth.end();
    }

    testing_support::HeldClock clock;
    services::EventLoop loop{clock};
    testing_support::FakeBluetooth bluetooth;
    testing_support::FakeDevices devices;
    Connector connector{loop, bluetooth, devices};
    Settings settings;
    std::string done; // colours and restarts
    Commands commands{connector,
                      {.settings = [this]() -> const Settings& { return settings; },
                       .setColor = [this](Color c) { done += "colour " + std::to_string(c.green); },
                       .restart = [this] { done += "restart"; },
                       .trace = {}}};
    FakeCaller caller;
    FakeCaller other;
};

TEST_F(CommandsTest, AConnectIsAnsweredWhenTheControllerIsThere) {
    EXPECT_EQ(connect(caller), Then::GoOn);
    EXPECT_TRUE(commands.isWaiting(caller));
    EXPECT_EQ(caller.replies, "");

    becomeConnected();

    EXPECT_EQ(caller.replies, "8/1");
    EXPECT_FALSE(commands.isWaiting(caller));
}

TEST_F(CommandsTest, AConnectThatFailsIsAnsweredWithTheReason) {
    connect(caller);
    bluetooth.end();
    bluetooth.end(Error::Unreachable);
    EXPECT_EQ(caller.replies, "9/4");
}

TEST_F(CommandsTest, AConnectIsAnsweredBeforeThePageGivesUp) {
    connect(caller);
    clock.advance(loop, 18s);
    EXPECT_EQ(caller.replies, "9/5");
}

TEST_F(CommandsTest, WhatCannotBeConnectedIsAnUnknownDevice) {
    EXPECT_EQ(connect(caller, firstAddress, 6), Then::GoOn);
    connect(caller, firstAddress, 7);
    connect(caller, firstAddress, 0xFFFFFFFF);
    connect(caller, bluetooth::Address{}, 1);
    EXPECT_EQ(caller.replies, "9/2, 9/2, 9/2, 9/2");
    EXPECT_EQ(bluetooth.calls, "");
}

TEST_F(CommandsTest, ForAPS3ControllerTheAddressIsNotLookedAt) {
    connect(caller, secondAddress, 0);
    bluetooth.end();
    EXPECT_EQ(bluetooth.calls, "power");
    bluetooth.set(firstAddress, /*isConnected=*/true);
    EXPECT_EQ(caller.replies, "8/0");
}

TEST_F(CommandsTest, TwoWhoWantTheSameControllerAreBothAnswered) {
    connect(caller);
    connect(other);
    connect(other);
    becomeConnected();
    EXPECT_EQ(caller.replies, "8/1");
    EXPECT_EQ(other.replies, "8/1, 8/1");
    EXPECT_EQ(bluetooth.calls, "power, connect 1");
}

TEST_F(CommandsTest, WhoWantsAnotherControllerMeanwhileIsToldThatItIsBusy) {
    connect(caller);
    connect(other, secondAddress);
    EXPECT_EQ(other.replies, "9/7");
    EXPECT_TRUE(commands.isWaiting(caller));
    EXPECT_FALSE(commands.isWaiting(other));
}

TEST_F(CommandsTest, TheAttemptIsGivenUpWhenTheLastWhoWaitsHasGone) {
    connect(caller);
    connect(other);
    commands.callerGone(caller);
    EXPECT_EQ(bluetooth.calls, "power");

    commands.callerGone(other);

    EXPECT_EQ(bluetooth.calls, "power, gives up power");
    EXPECT_EQ(caller.replies + other.replies, "");
}

TEST_F(CommandsTest, AnEndOfTheSessionClosesTheConnectionAndNothingElse) {
    EXPECT_EQ(commands.handle(caller, frame(JVNControlCommand::EndSession)), Then::Close);
    EXPECT_EQ(caller.replies + done + bluetooth.calls, "");
}

TEST_F(CommandsTest, ACallerWithMoreConnectsThanAreMeantIsClosed) {
    for (int i = 0; i < 8; ++i) EXPECT_EQ(connect(caller), Then::GoOn);
    EXPECT_EQ(connect(caller), Then::Close);
}

TEST_F(CommandsTest, ADisconnectEndsTheStoredControllersLinkWithoutAReply) {
    EXPECT_EQ(commands.handle(caller, frame(JVNControlCommand::Disconnect)), Then::GoOn);
    EXPECT_EQ(bluetooth.calls, "disconnect 1");
    EXPECT_EQ(caller.replies, "");
}

TEST_F(CommandsTest, ADisconnectEndsAConnectThatWaitsAsRefused) {
    connect(caller);
    commands.handle(other, frame(JVNControlCommand::Disconnect));
    EXPECT_EQ(caller.replies, "9/3");
}

TEST_F(CommandsTest, ADisconnectWithoutAStoredAddressDoesNothing) {
    settings.address.reset();
    bluetooth.set(firstAddress, /*isConnected=*/true);
    commands.handle(caller, frame(JVNControlCommand::Disconnect));
    EXPECT_EQ(bluetooth.calls, "");
}

TEST_F(CommandsTest, ForAPS3ControllerADisconnectEndsEveryLinkOfAPad) {
    settings.controllerType = JVNControllerTypePS3;
    bluetooth.set(secondAddress, /*isConnected=*/true);
    commands.handle(caller, frame(JVNControlCommand::Disconnect, 0));
    EXPECT_EQ(bluetooth.calls, "disconnect 2");
}

TEST_F(CommandsTest, AQueryIsAnsweredOnlyWhenTheStoredControllerIsConnected) {
    EXPECT_EQ(query(caller), Then::Close);
    bluetooth.set(secondAddress, /*isConnected=*/true);
    EXPECT_EQ(query(caller), Then::Close);
    EXPECT_EQ(caller.replies, "");

    bluetooth.set(firstAddress, /*isConnected=*/true);

    EXPECT_EQ(query(caller), Then::GoOn);
    EXPECT_EQ(caller.replies, "5/1");
}

TEST_F(CommandsTest, WhileAControllerIsBeingConnectedAQuerySaysNothingEitherWay) {
    connect(other);
    EXPECT_EQ(query(caller), Then::GoOn);
    EXPECT_EQ(caller.replies, "5/7");
}

TEST_F(CommandsTest, AQueryForAPS3ControllerMeansAnyThatHasCalled) {
    settings.controllerType = JVNControllerTypePS3;
    EXPECT_EQ(query(caller), Then::Close);
    bluetooth.set(secondAddress, /*isConnected=*/true);
    query(caller);
    EXPECT_EQ(caller.replies, "5/1");
}

TEST_F(CommandsTest, AKeyboardIsNeverConnected) {
    settings.controllerType = JVNControllerTypeKeyboard;
    bluetooth.set(firstAddress, /*isConnected=*/true);
    EXPECT_EQ(query(caller), Then::Close);
    EXPECT_EQ(caller.replies, "");
}

TEST_F(CommandsTest, AColorIsForTheDualShock4) {
    auto color = frame(JVNControlCommand::SetLEDColor);
    color.payload[1] = 78;
    EXPECT_EQ(commands.handle(caller, color), Then::GoOn);
    color.controllerType = 2;
    commands.handle(caller, color);
    EXPECT_EQ(done, "colour 78");
    EXPECT_EQ(caller.replies, "");
}

TEST_F(CommandsTest, ARestartClosesTheConnection) {
    EXPECT_EQ(commands.handle(caller, frame(JVNControlCommand::RestartDaemons)), Then::Close);
    EXPECT_EQ(done, "restart");
}

TEST_F(CommandsTest, EveryFrameAndEveryReplyIsTraced) {
    std::string traced;
    Commands tracing(connector, {.settings = [this]() -> const Settings& { return settings; },
                                 .setColor = {},
                                 .restart = {},
                                 .trace = [&](const Caller&, const JVNControlFrame&,
                                              const JVNControlFrame* reply) { traced += reply ? ">" : "<"; }});
    bluetooth.set(firstAddress, /*isConnected=*/true);
    tracing.handle(caller, frame(JVNControlCommand::QueryConnection));
    tracing.handle(caller, frame(JVNControlCommand::EndSession));
    EXPECT_EQ(traced, "<><");
}

} // namespace
