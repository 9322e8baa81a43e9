#include "services/jvninput/Connection.h"
#include "services/jvninput/keymap_file.h"
#include "services/jvninput/options.h"
#include "services/jvninput/state_text.h"
#include "tests/support/TemporaryFolder.h"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>

using namespace jvninput;

namespace {

std::optional<Options> parsed(const std::vector<std::string>& arguments) {
    std::string complaint;
    auto options = parseOptions(arguments, complaint);
    EXPECT_EQ(options.has_value(), complaint.empty()) << complaint;
    return options;
}

TEST(Options, WithoutACommandItShows) {
    ASSERT_TRUE(parsed({}));
    EXPECT_EQ(parsed({})->command, Command::show);
    EXPECT_EQ(parsed({"show"})->command, Command::show);
    EXPECT_EQ(parsed({"watch", "--socket", "/x"})->socket, "/x");
}

TEST(Options, TryTakesAFileAndHowToPlay) {
    const auto options = parsed({"try", "--by-hand", "a.plist", "--extended"});
    ASSERT_TRUE(options);
    EXPECT_EQ(options->keymapFile, "a.plist");
    EXPECT_EQ(options->mode, input::PlayMode::byHand);
    EXPECT_TRUE(options->forceExtended);
}

TEST(Options, WhatIsNotUnderstoodIsRefused) {
    for (const std::vector<std::string>& bad : std::vector<std::vector<std::string>>{
             {"try"}, {"try", "a", "b"}, {"sing"}, {"--loud"}, {"--socket"}, {"watch", "x"}})
        EXPECT_FALSE(parsed(bad));
}

TEST(StateText, InputsAreNamedInTheirOrder) {
    EXPECT_EQ(inputsText(0), "");
    EXPECT_EQ(inputsText(1U << 3 | 1U << 5 | 1U << 21), "up, A, Pause");
    EXPECT_EQ(inputsText(0xffffffff).substr(0, 11), "right, left");
}

TEST(StateText, TheSummarySaysWhatWouldPlay) {
    auto state = input::makeMessage<input::State>();
    state.readiness = input::Readiness::waitingForGame;
    state.profile = input::Profile::plain;
    auto keyboards = input::makeMessage<input::Keyboards>();
    keyboards.count = 1;
    std::strcpy(keyboards.names[0], "Some\x1b[2J Keyboard");

    EXPECT_EQ(summary(state, keyboards), "State: waiting for a game\nGamepad: plain\nA game listens: no\n"
                                         "Plays: while a game listens\nKeyboards: 1\n  Some [2J Keyboard");
}

TEST(StateText, ANameThatFillsItsPlaceIsCut) {
    auto keyboards = input::makeMessage<input::Keyboards>();
    keyboards.count = 20;
    std::memset(keyboards.names, 'x', sizeof keyboards.names);
    const std::string text = summary(input::makeMessage<input::State>(), keyboards);
    EXPECT_TRUE(text.ends_with("\n  ...")) << text;
}

TEST(StateText, WhatALaterVersionSaysIsNotMisread) {
    auto state = input::makeMessage<input::State>();
    state.readiness = static_cast<input::Readiness>(99);
    EXPECT_EQ(readinessText(state), "unknown to this version");
}

class KeymapFile : public ::testing::Test {
protected:
    std::optional<input::Settings> read(const std::string& dictionary) {
        std::ofstream(m_path) << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                              << dictionary << "</dict></plist>\n";
        return readKeymapFile(m_path, m_leftOut, m_complaint);
    }

    testing_support::TemporaryFolder m_folder;
    std::string m_path = m_folder.file("keymap");
    std::size_t m_leftOut = 0;
    std::string m_complaint;
};

constexpr const char* w = "<key>26</key><integer>3</integer>";

TEST_F(KeymapFile, AKeymapAlone) {
    const auto settings = read(w);
    ASSERT_TRUE(settings) << m_complaint;
    ASSERT_EQ(settings->bindingCount, 1U);
    EXPECT_EQ(settings->bindings[0].usage, 26);
    EXPECT_EQ(settings->bindings[0].nativeCode, 3);
    EXPECT_EQ(settings->keyboardPlays, 1);
    EXPECT_EQ(m_leftOut, 0U);
}

TEST_F(KeymapFile, TheKeymapOfThePreferencesFile) {
    const auto settings = read(std::string("<key>JVNKeyboardKeymapKey</key><dict>") + w +
                               "</dict><key>controller_type</key><integer>6</integer>");
    ASSERT_TRUE(settings) << m_complaint;
    EXPECT_EQ(settings->bindingCount, 1U);
    EXPECT_EQ(m_leftOut, 0U);
}

TEST_F(KeymapFile, AStringCountsAsItsNumber) {
    const auto settings = read("<key>26</key><string>3</string>");
    ASSERT_TRUE(settings) << m_complaint;
    EXPECT_EQ(settings->bindings[0].nativeCode, 3);
}

TEST_F(KeymapFile, EntriesThatAreNoneAreLeftOutAndCounted) {
    const auto settings = read(std::string(w) + "<key>x</key><integer>1</integer><key>4</key><integer>22</integer>"
                                                "<key>5</key><integer>0</integer><key>300</key><integer>1</integer>");
    ASSERT_TRUE(settings) << m_complaint;
    EXPECT_EQ(settings->bindingCount, 1U);
    EXPECT_EQ(m_leftOut, 4U);
}

TEST_F(KeymapFile, WithoutAnyEntryThereIsNoKeymap) {
    EXPECT_FALSE(read(""));
    EXPECT_NE(m_complaint.find("no keymap"), std::string::npos);
}

TEST_F(KeymapFile, AFileThatIsMissingOrNoneIsSaid) {
    EXPECT_FALSE(readKeymapFile("/no/such/file", m_leftOut, m_complaint));
    EXPECT_FALSE(m_complaint.empty());
    std::ofstream(m_path) << "nonsense";
    EXPECT_FALSE(readKeymapFile(m_path, m_leftOut, m_complaint));
}

using namespace std::chrono_literals;

// What listens where jvninputd would.
class Answers : public ::testing::Test {
protected:
    void SetUp() override {
        ::sockaddr_un address{};
        address.sun_family = AF_UNIX;
        m_path.copy(address.sun_path, sizeof address.sun_path - 1);
        ASSERT_EQ(::bind(m_listener.get(), reinterpret_cast<const ::sockaddr*>(&address), sizeof address), 0);
        ASSERT_EQ(::listen(m_listener.get(), 1), 0);
    }

    testing_support::TemporaryFolder m_folder;
    std::string m_path = m_folder.file("socket");
    seat::Descriptor m_listener{::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)};
    Connection m_connection;
    std::string m_complaint;
};

TEST_F(Answers, AServiceThatStandsStillIsNotWaitedForForEver) {
    ASSERT_TRUE(m_connection.open(m_path, input::Role::observe, m_complaint, 1ms));
    EXPECT_FALSE(m_connection.receive(m_complaint));
    EXPECT_EQ(m_complaint, "jvninputd does not answer");
}

TEST_F(Answers, OnceItHasAnsweredItMaySayNothingForAnyTime) {
    ASSERT_TRUE(m_connection.open(m_path, input::Role::observe, m_complaint, 200ms));
    seat::Descriptor service(::accept(m_listener.get(), nullptr, nullptr));
    const auto state = input::makeMessage<input::State>();
    const auto keyboards = input::makeMessage<input::Keyboards>();
    ::send(service.get(), &state, sizeof state, MSG_NOSIGNAL);
    ::send(service.get(), &keyboards, sizeof keyboards, MSG_NOSIGNAL);
    ASSERT_TRUE(m_connection.receive(m_complaint));
    ASSERT_TRUE(m_connection.receive(m_complaint));

    std::thread later([&service] {
        std::this_thread::sleep_for(400ms);
        service.reset();
    });
    EXPECT_FALSE(m_connection.receive(m_complaint));
    EXPECT_EQ(m_complaint, "jvninputd has ended the connection");
    later.join();
}

} // namespace
