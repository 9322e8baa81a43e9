// The receive time-out as the system has it.

#include "daemonlink/ControlConnection.h"
#include "daemonlink/exchanges.h"
#include "tests/support/ScriptedDaemon.h"
#include "tests/support/TestRoot.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/time.h>

namespace {

TEST(ReplyTimeout, IsAsManyWholeSecondsAsAreAsked) {
    const testing_support::TestRoot root;
    const testing_support::ScriptedDaemon daemon(root.path());
    const auto connection = ControlConnection::open();
    ASSERT_TRUE(connection);
    for (const long seconds : {daemonlink::queryReplySeconds, daemonlink::connectReplySeconds}) {
        EXPECT_TRUE(daemonlink::setReplyTimeout(connection.descriptor(), seconds));
        ::timeval set{};
        ::socklen_t size = sizeof set;
        ASSERT_EQ(::getsockopt(connection.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &set, &size), 0);
        EXPECT_EQ(set.tv_sec, seconds);
        EXPECT_EQ(set.tv_usec, 0);
    }
}

} // namespace
