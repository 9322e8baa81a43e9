#include "host/socket/socket_faults.h"

#include "tests/socket/socket_test.h"

#include <cerrno>

namespace {

using host::SocketCall;

class SocketFaults : public SocketTest {
protected:
    ~SocketFaults() override { host::clearSocketFaults(); }
};

TEST_F(SocketFaults, EachCallFailsAsOftenAsAskedAndThenWorksAgain) {
    const testing_support::ScriptedDaemon daemon(m_folder.path(), [](auto& peer) { peer.write(peer.read(12)); });

    host::failSocketCalls(SocketCall::Socket, 2, EMFILE);
    EXPECT_EQ(-1, makeSocket());
    EXPECT_EQ(EMFILE, errno);
    EXPECT_EQ(-1, makeSocket());
    const int descriptor = makeSocket();
    ASSERT_NE(-1, descriptor);

    host::failSocketCalls(SocketCall::Connect, 1, ECONNREFUSED);
    EXPECT_EQ(-1, connect(descriptor));
    EXPECT_EQ(0, connect(descriptor));

    host::failSocketCalls(SocketCall::SetOption, 1, EINVAL);
    EXPECT_EQ(-1, setTimeout(descriptor, 1, 0));
    EXPECT_EQ(0, setTimeout(descriptor, 1, 0));

    host::failSocketCalls(SocketCall::Send, 1, EPIPE);
    EXPECT_EQ(-1, platform::send(descriptor, "twelve bytes", 12, 0));
    EXPECT_EQ(12, platform::send(descriptor, "twelve bytes", 12, 0));

    char reply[12];
    host::failSocketCalls(SocketCall::Receive, 1, ECONNRESET);
    EXPECT_EQ(-1, platform::recv(descriptor, reply, sizeof reply, platform::MSG_WAITALL_FLAG));
    EXPECT_EQ(12, platform::recv(descriptor, reply, sizeof reply, platform::MSG_WAITALL_FLAG));

    platform::close(descriptor);
}

} // namespace
