// Lines of the log, when whoever reads standard error has stopped.

#include "system/log/LineOutput.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sstream>
#include <string>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

namespace {

using seat::Descriptor;

// A terminal that changes nothing of what is written to it: who shows it, and who writes.
int openTerminal(int* made) {
    ::termios plain{};
    ::cfmakeraw(&plain);
    return ::openpty(&made[0], &made[1], nullptr, &plain, nullptr);
}

// Something else is standard error meanwhile.
class LineOutputTest : public testing::Test {
protected:
    ~LineOutputTest() override { putBack(); }

    void useAsStandardError(const Descriptor& end) { ::dup2(end.get(), STDERR_FILENO); }
    void putBack() { ::dup2(m_before.get(), STDERR_FILENO); }
    static std::array<Descriptor, 2> ends(int (*make)(int*)) {
        int made[2] = {-1, -1};
        EXPECT_EQ(0, make(made));
        ::fcntl(made[0], F_SETFL, O_NONBLOCK);
        return {Descriptor(made[0]), Descriptor(made[1])};
    }
    static std::array<Descriptor, 2> pipe() {
        return ends([](int* made) { return ::pipe2(made, O_CLOEXEC); });
    }
    // Until there is no room for another line. How many that were.
    int fill() {
        int lines = 0;
        for (bool was = true; was; ++lines) was = write("a line that nobody reads, " + std::to_string(lines));
        return lines;
    }
    bool write(const std::string& line) {
        const auto before = bytes();
        m_output.write("test", line);
        return bytes() > before;
    }
    // Written and not read yet.
    int bytes() const {
        int count = 0;
        ::ioctl(m_reader->get(), FIONREAD, &count);
        return count;
    }
    std::string read() const {
        std::string text;
        char part[4096];
        for (ssize_t got = 0; (got = ::read(m_reader->get(), part, sizeof part)) > 0;)
            text.append(part, static_cast<std::size_t>(got));
        return text;
    }
    // All of it in whole lines, in their order, and the last ones say what is missing.
    void expectWholeLines(int written) {
        const std::string text = read();
        std::size_t at = 0;
        for (int i = 0; i < written; ++i) {
            const std::string line = "test: a line that nobody reads, " + std::to_string(i) + "\n";
            ASSERT_EQ(line, text.substr(at, line.size()));
            at += line.size();
        }
        EXPECT_EQ(text.size(), at);
    }

    const Descriptor m_before{::dup(STDERR_FILENO)};
    const Descriptor* m_reader = nullptr;
    seat::LineOutput m_output;
};

TEST_F(LineOutputTest, IsALineWithTheNameBeforeIt) {
    const auto [reader, writer] = pipe();
    m_reader = &reader;
    useAsStandardError(writer);

    m_output.write("test", "connecting: refused");
    m_output.write("test", "again");

    EXPECT_EQ("test: connecting: refused\ntest: again\n", read());
}

TEST_F(LineOutputTest, NobodyWaitsForAPipeThatIsNotReadAndWhatIsMissingIsCounted) {
    const auto [reader, writer] = pipe();
    m_reader = &reader;
    useAsStandardError(writer);
    const int lines = fill();
    m_output.write("test", "left out, too");

    expectWholeLines(lines - 1);
    m_output.write("test", "there is room again");
    m_output.write("test", "and still");

    EXPECT_EQ(
        "test: lines left out before this one, as nobody read them: 2\ntest: there is room again\ntest: and still\n",
        read());
}

TEST_F(LineOutputTest, NobodyWaitsForASocketThatIsNotRead) {
    const auto [reader, writer] = ends([](int* made) { return ::socketpair(AF_UNIX, SOCK_STREAM, 0, made); });
    m_reader = &reader;
    useAsStandardError(writer);
    const int lines = fill();

    expectWholeLines(lines - 1);
    m_output.write("test", "there is room again");

    EXPECT_EQ("test: lines left out before this one, as nobody read them: 1\ntest: there is room again\n", read());
}

TEST_F(LineOutputTest, NobodyWaitsForATerminalThatIsStopped) {
    const auto [reader, writer] = ends(openTerminal);
    m_reader = &reader;
    useAsStandardError(writer);
    ::tcflow(writer.get(), TCOOFF);
    for (int i = 0; i < 10; ++i) m_output.write("test", "not seen");
    EXPECT_EQ("", read());

    ::tcflow(writer.get(), TCOON);
    m_output.write("test", "seen");

    EXPECT_EQ("test: lines left out before this one, as nobody read them: 10\ntest: seen\n", read());
}

TEST_F(LineOutputTest, ALineOfWhichATerminalTookAPartIsEndedBeforeTheNext) {
    const auto [reader, writer] = ends(openTerminal);
    m_reader = &reader;
    useAsStandardError(writer);
    const std::string line(900, 'x');
    for (int i = 0; i < 1000; ++i) m_output.write("test", line);

    std::string text = read();
    EXPECT_FALSE(text.ends_with('\n')) << "it took a part";
    // The kernel hands on in its own time what has been read.
    for (int i = 0; i < 10'000 && !text.ends_with("test: seen\n"); ++i) {
        m_output.write("test", "seen");
        text += read();
    }

    std::istringstream lines(text);
    for (std::string each; std::getline(lines, each);) {
        EXPECT_EQ(0u, each.find("test: ")) << each;
        EXPECT_EQ(0u, each.rfind("test: ")) << each;
    }
    EXPECT_TRUE(text.ends_with("test: seen\n"));
}

TEST_F(LineOutputTest, OthersWhoHaveTheDescriptorStillWait) {
    const auto [reader, writer] = pipe();
    m_reader = &reader;
    useAsStandardError(writer);
    fill();

    EXPECT_EQ(0, ::fcntl(STDERR_FILENO, F_GETFL) & O_NONBLOCK);
}

TEST_F(LineOutputTest, AFileGetsItsLinesWhereTheDescriptorStands) {
    char path[] = "/tmp/jv-line-output-XXXXXX";
    const Descriptor file(::mkostemp(path, O_CLOEXEC));
    ::unlink(path);
    ASSERT_EQ(6, ::write(file.get(), "begun\n", 6));
    useAsStandardError(file);

    m_output.write("test", "one");
    m_output.write("test", "two");

    char text[64] = {};
    ::pread(file.get(), text, sizeof text - 1, 0);
    EXPECT_STREQ("begun\ntest: one\ntest: two\n", text);
}

TEST_F(LineOutputTest, WithoutADescriptorToSpareItIsWrittenAllTheSame) {
    const auto [reader, writer] = pipe();
    m_reader = &reader;
    useAsStandardError(writer);
    ::rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const ::rlimit none{.rlim_cur = 3, .rlim_max = before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    const int lines = fill();
    ::setrlimit(RLIMIT_NOFILE, &before);

    EXPECT_GT(lines, 1);
    expectWholeLines(lines - 1);
}

} // namespace
