#include "system/messaging/message_sender.h"

#include "platform/messaging_center.h"
#include "tests/support/BusSession.h"
#include "tests/support/LoggedLines.h"
#include "tests/system/messaging/receiver.h"

#include <gtest/gtest.h>
#include <optional>

namespace {

std::shared_ptr<NSDictionary> state(int value) {
    const auto dictionary = NSDictionary::dictionary();
    dictionary->setObject_forKey(NSNumber::numberWithInt(value), "JVNDiscoveryState");
    return dictionary;
}

class MessageSender : public ::testing::Test, protected testing_support::BusSession {
protected:
    testing_support::LoggedLines m_log;
};

TEST_F(MessageSender, MessagesReachTheCenterInTheOrderOfSending) {
    const auto receiver = MessageReceiver::alloc();
    const auto center = CPDistributedMessagingCenter::centerNamed(name);
    center->registerForMessageName_target_selector("JVNDiscoveryUpdate", receiver, "handle:userInfo:");
    center->runServerOnCurrentThread();
    bool delivered = false;

    seat::sendMessage(name, "JVNDiscoveryUpdate", state(4));
    seat::sendMessage(name, "JVNDiscoveryUpdate", nullptr);
    seat::sendMessage(name, "JVNDiscoveryUpdate", state(2), [&](bool taken) { delivered = taken; });

    ASSERT_TRUE(runUntil([&] { return delivered; }));
    EXPECT_EQ((std::vector<std::string>{"JVNDiscoveryUpdate 4", "JVNDiscoveryUpdate nothing", "JVNDiscoveryUpdate 2"}),
              receiver->received);
}

TEST_F(MessageSender, WithoutACenterTheMessageIsNotDeliveredAndTheReasonLogged) {
    std::optional<bool> delivered;
    seat::sendMessage(name, "JVNDiscoveryUpdate", state(4), [&](bool taken) { delivered = taken; });

    ASSERT_TRUE(runUntil([&] { return delivered.has_value(); }));
    EXPECT_FALSE(*delivered);
    EXPECT_EQ(1u, m_log.count("message JVNDiscoveryUpdate to com.quorrel.jvn.bootstrap: "));
}

TEST_F(MessageSender, WithoutABusTheMessageIsNotDelivered) {
    bus.kill();
    std::optional<bool> delivered;
    seat::sendMessage(name, "JVNDiscoveryUpdate", state(4), [&](bool taken) { delivered = taken; });

    ASSERT_TRUE(runUntil([&] { return delivered.has_value(); }));
    EXPECT_FALSE(*delivered);
}

} // namespace
