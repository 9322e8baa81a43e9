#include "tests/support/SystemCalls.h"
#include "tests/system/socket/SocketTest.h"

#include <cerrno>

namespace {

using testing_support::SystemCall;

class SocketFaults : public SocketTest {
protected:
    testing_support::SystemCalls calls;
};

TEST_F(SocketFaults, OfTheSystemArePassedOnWithTheirReasonAndLeaveTheSocketUsable) {
    const testing_support::ScriptedDaemon daemon(m_folder.path(), [](auto& peer) { peer.write(peer.read(12)); });

    calls.fail(SystemCall::Socket, EMFILE, 2);
    EXPECT_EQ(-1, makeSocket());
    EXPECT_EQ(EMFILE, errno);
    EXPECT_EQ(-1, makeSocket());
    const int descriptor = makeSocket();
    ASSERT_NE(-1, descriptor);

    calls.fail(SystemCall::Connect, ECONNREFUSED);
    EXPECT_EQ(-1, connect(descriptor));
    EXPECT_EQ(0, connect(descriptor));

    calls.fail(SystemCall::SetOption, EINVAL);
    EXPECT_EQ(-1, setTimeout(descriptor, 1, 0));
    EXPECT_EQ(0, setTimeout(descriptor, 1, 0));

    calls.fail(SystemCall::Send, EPIPE);
    EXPECT_EQ(-1, platform::send(descriptor, "twelve bytes", 12, 0));
    EXPECT_EQ(12, platform::send(descriptor, "twelve bytes", 12, 0));

    char reply[12];
    calls.fail(SystemCall::Receive, ECONNRESET);
    EXPECT_EQ(-1, platform::recv(descriptor, reply, sizeof reply, platform::MSG_WAITALL_FLAG));
    EXPECT_EQ(12, platform::recv(descriptor, reply, sizeof reply, platform::MSG_WAITALL_FLAG));

    platform::close(descriptor);
}

} // namespace
