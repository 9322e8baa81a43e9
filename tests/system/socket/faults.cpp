#include "system/socket/socket_faults.h"

#include "tests/system/socket/SocketTest.h"

#include <cerrno>

namespace {

using seat::SocketCall;

class SocketFaults : public SocketTest {
protected:
    ~SocketFaults() override { seat::clearSocketFaults(); }
};

TEST_F(SocketFaults, EachCallFailsAsOftenAsAskedAndThenWorksAgain) {
    const testing_support::ScriptedDaemon daemon(m_folder.path(), [](auto& peer) { peer.write(peer.read(12)); });

    seat::failSocketCalls(SocketCall::Socket, 2, EMFILE);
    EXPECT_EQ(-1, makeSocket());
    EXPECT_EQ(EMFILE, errno);
    EXPECT_EQ(-1, makeSocket());
    const int descriptor = makeSocket();
    ASSERT_NE(-1, descriptor);

    seat::failSocketCalls(SocketCall::Connect, 1, ECONNREFUSED);
    EXPECT_EQ(-1, connect(descriptor));
    EXPECT_EQ(0, connect(descriptor));

    seat::failSocketCalls(SocketCall::SetOption, 1, EINVAL);
    EXPECT_EQ(-1, setTimeout(descriptor, 1, 0));
    EXPECT_EQ(0, setTimeout(descriptor, 1, 0));

    seat::failSocketCalls(SocketCall::Send, 1, EPIPE);
    EXPECT_EQ(-1, platform::send(descriptor, "twelve bytes", 12, 0));
    EXPECT_EQ(12, platform::send(descriptor, "twelve bytes", 12, 0));

    char reply[12];
    seat::failSocketCalls(SocketCall::Receive, 1, ECONNRESET);
    EXPECT_EQ(-1, platform::recv(descriptor, reply, sizeof reply, platform::MSG_WAITALL_FLAG));
    EXPECT_EQ(12, platform::recv(descriptor, reply, sizeof reply, platform::MSG_WAITALL_FLAG));

    platform::close(descriptor);
}

} // namespace
