#include "tests/support/descriptors.h"
#include "tests/system/socket/SocketTest.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using testing_support::ScriptedDaemon;

class SocketConnect : public SocketTest {
protected:
    // A listener that nobody serves; -1 in `backlog`: bound, and nobody listens.
    int listenAt(const std::string& realPath, int backlog) {
        std::filesystem::create_directories(std::filesystem::path(realPath).parent_path());
        const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        ::sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strcpy(address.sun_path, realPath.c_str());
        EXPECT_EQ(0, ::bind(listener, reinterpret_cast<const ::sockaddr*>(&address), sizeof address));
        if (backlog >= 0) {
            EXPECT_EQ(0, ::listen(listener, backlog));
        }
        return listener;
    }
    std::string socketFile() const { return m_folder.file("Library/Caches/jvncontrol.sock"); }
    // What a connecting that fails leaves behind.
    void expectFailureAtOnce(int expectedError) {
        const auto before = testing_support::openDescriptors();
        const int descriptor = makeSocket();
        const auto start = Clock::now();
        errno = 0;
        EXPECT_EQ(-1, connect(descriptor));
        EXPECT_EQ(expectedError, errno);
        EXPECT_LT(millisecondsSince(start), 100);
        EXPECT_EQ(0, platform::close(descriptor));
        EXPECT_EQ(before, testing_support::openDescriptors());
        EXPECT_EQ(1u, m_log.count("connect /Library/Caches/jvncontrol.sock: "));
    }
};

TEST_F(SocketConnect, WorksUnderARootOfAnyLength) {
    for (const std::size_t length : {0u, 60u, 90u, 200u, 1000u, 3000u}) {
        std::string root = m_folder.path();
        while (root.size() < length) root += "/" + std::string(std::min<std::size_t>(200, length - root.size()), 'x');
        seat::setRoot(root);
        ScriptedDaemon daemon(root, [](auto& peer) { peer.write(peer.read(12)); });

        const int descriptor = connected();

        ASSERT_NE(-1, descriptor) << length;
        EXPECT_EQ(12, platform::send(descriptor, "twelve bytes", 12, 0));
        char reply[12];
        EXPECT_EQ(12, platform::recv(descriptor, reply, sizeof reply, platform::MSG_WAITALL_FLAG));
        EXPECT_EQ(0, std::memcmp("twelve bytes", reply, 12));
        platform::close(descriptor);
    }
}

TEST_F(SocketConnect, ANameThatFillsTheRecordNeedsNoZero) {
    const std::string path = "/" + std::string(103, 'n');
    seat::setRoot(m_folder.path());
    const auto former = std::filesystem::current_path();
    std::filesystem::current_path(m_folder.path());
    const int listener = listenAt("./" + std::string(103, 'n'), 4);
    std::filesystem::current_path(former);

    const int descriptor = makeSocket();
    EXPECT_EQ(0, connect(descriptor, record(path)));

    platform::close(descriptor);
    ::close(listener);
}

TEST_F(SocketConnect, ThePathEndsAtItsFirstZero) {
    const int listener = listenAt(m_folder.file("short"), 4);
    auto address = record("/short");
    std::memcpy(address.sun_path + 7, "rest", 4);

    const int descriptor = makeSocket();
    EXPECT_EQ(0, connect(descriptor, address));

    platform::close(descriptor);
    ::close(listener);
}

TEST_F(SocketConnect, WithNoFileItFailsAtOnce) { expectFailureAtOnce(ENOENT); }

TEST_F(SocketConnect, WithNoFileUnderALongRootItFailsAtOnce) {
    seat::setRoot(m_folder.path() + "/" + std::string(200, 'x'));
    expectFailureAtOnce(ENOENT);
}

TEST_F(SocketConnect, WithAStaleFileItFailsAtOnce) {
    ::close(listenAt(socketFile(), 1));
    expectFailureAtOnce(ECONNREFUSED);
}

TEST_F(SocketConnect, WithAPlainFileInItsPlaceItFailsAtOnce) {
    std::filesystem::create_directories(m_folder.file("Library/Caches"));
    ::close(::open(socketFile().c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    expectFailureAtOnce(ECONNREFUSED);
}

TEST_F(SocketConnect, WithAFullBacklogItFailsAtOnce) {
    const int listener = listenAt(socketFile(), 0);
    const int waiting = makeSocket();
    EXPECT_EQ(0, connect(waiting));

    expectFailureAtOnce(EAGAIN);

    platform::close(waiting);
    ::close(listener);
}

TEST_F(SocketConnect, APeerOfAnotherUserIsAbsent) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can be another user";
    const int listener = listenAt(socketFile(), -1);
    int listens[2];
    ASSERT_EQ(0, ::pipe(listens));
    const ::pid_t other = ::fork();
    if (other == 0) {
        // The user who listens is the one that a caller sees.
        if (::setuid(65534) != 0 || ::listen(listener, 4) != 0) ::_exit(1);
        [[maybe_unused]] const auto written = ::write(listens[1], "x", 1);
        for (;;) ::pause();
    }
    ::close(listener);
    ::close(listens[1]);
    char byte = 0;
    ASSERT_EQ(1, ::read(listens[0], &byte, 1));
    ::close(listens[0]);

    expectFailureAtOnce(EPERM);

    ::kill(other, SIGKILL);
    ::waitpid(other, nullptr, 0);
}

TEST_F(SocketConnect, OnlyTheWholeRecordOfTheRightFamilyIsTaken) {
    const ScriptedDaemon daemon(m_folder.path());
    const int descriptor = makeSocket();
    auto address = record();

    EXPECT_EQ(-1, platform::connect(descriptor, &address, 32));
    EXPECT_EQ(-1, platform::connect(descriptor, &address, 110));
    EXPECT_EQ(-1, platform::connect(descriptor, nullptr, sizeof address));
    EXPECT_EQ(-1, connect(descriptor, record("")));
    address.sun_family = 2;
    EXPECT_EQ(-1, connect(descriptor, address));
    EXPECT_EQ(0, connect(descriptor));

    platform::close(descriptor);
}

TEST_F(SocketConnect, TheLengthByteDoesNotCount) {
    const ScriptedDaemon daemon(m_folder.path());
    auto address = record();
    address.sun_len = 3;
    const int descriptor = makeSocket();

    EXPECT_EQ(0, connect(descriptor, address));

    platform::close(descriptor);
}

TEST_F(SocketConnect, OtherSocketsThanStreamsAreNotMade) {
    EXPECT_EQ(-1, platform::socket(2, platform::SOCK_STREAM_TYPE, 0));
    EXPECT_EQ(-1, platform::socket(platform::AF_UNIX_FAMILY, 2, 0));
    EXPECT_EQ(-1, platform::socket(platform::AF_UNIX_FAMILY, platform::SOCK_STREAM_TYPE, 1));
}

TEST_F(SocketConnect, TheDescriptorIsClosedInProgramsThatWeStartAndWaitsForReplies) {
    const ScriptedDaemon daemon(m_folder.path());
    const int descriptor = connected();
    ASSERT_NE(-1, descriptor);

    EXPECT_TRUE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC);
    EXPECT_FALSE(::fcntl(descriptor, F_GETFL) & O_NONBLOCK);

    platform::close(descriptor);
}

TEST_F(SocketConnect, AFailedOneMayBeTriedAgainOnTheSameDescriptor) {
    const int descriptor = makeSocket();
    EXPECT_EQ(-1, connect(descriptor));
    const ScriptedDaemon daemon(m_folder.path());

    EXPECT_EQ(0, connect(descriptor));

    platform::close(descriptor);
}

TEST_F(SocketConnect, AThousandExchangesLeaveNoDescriptorAndNoThread) {
    const ScriptedDaemon daemon(m_folder.path(), [](auto& peer) { peer.write(peer.read(12)); });
    const auto descriptors = testing_support::openDescriptors();
    const auto threads = testing_support::runningThreads();

    for (int i = 0; i < 1000; ++i) {
        const int descriptor = connected();
        ASSERT_NE(-1, descriptor);
        char reply[12];
        platform::send(descriptor, "twelve bytes", 12, 0);
        ASSERT_EQ(12, platform::recv(descriptor, reply, sizeof reply, platform::MSG_WAITALL_FLAG));
        ASSERT_EQ(0, platform::close(descriptor));
    }
    ASSERT_TRUE(daemon.waitForConnections(1000));

    EXPECT_EQ(descriptors, testing_support::openDescriptors());
    EXPECT_EQ(threads, testing_support::runningThreads());
}

TEST_F(SocketConnect, ClosingNothingFails) { EXPECT_EQ(-1, platform::close(-1)); }

} // namespace
