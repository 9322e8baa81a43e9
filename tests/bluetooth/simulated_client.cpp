#include "services/bluetooth/SimulatedWorld.h"
#include "services/bluetooth/clients.h"
#include "services/common/log.h"
#include "tests/bluetooth/bluetooth_test.h"
#include "tests/support/HeldClock.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

using namespace std::chrono_literals;
using namespace bluetooth;

namespace {

constexpr const char* onePad = "controller 00:AA:01:01:00:01 type=1 pairing : Wireless Controller\nbluetooth on\n";

class SimulatedClientTest : public testing::Test {
protected:
    SimulatedClientTest() {
        services::setLogSink([this](std::string_view line) { log.emplace_back(line); });
    }
    ~SimulatedClientTest() override { services::setLogSink({}); }

    void write(const std::string& text) const {
        std::filesystem::create_directories(folder.file("world"));
        std::ofstream(file + ".mine") << text;
        std::filesystem::rename(file + ".mine", file);
    }
    std::string content() const {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::unique_ptr<Client> make(std::optional<int> type = std::nullopt) {
        return makeSimulatedClient(loop, file, type);
    }
    // What came of it; time passes until it has ended.
    Error endOf(const Client::Handle& handle) {
        EXPECT_TRUE(handle);
        for (int i = 0; i < 100 && ends.empty(); ++i) clock.advance(loop, 100ms);
        const Error end = ends.empty() ? Error::TimedOut : ends.back();
        ends.clear();
        return end;
    }
    Client::Completion note() {
        return [this](Error error) { ends.push_back(error); };
    }

    const Address pad = *Address::fromText("00:AA:01:01:00:01");
    std::vector<std::string> log;
    testing_support::TemporaryFolder folder;
    const std::string file = folder.file("world/simulated-controllers");
    testing_support::HeldClock clock;
    services::EventLoop loop{clock};
    std::vector<Error> ends;
};

TEST_F(SimulatedClientTest, AFreshWorldHasAControllerForEachTypeThatPairs) {
    const auto client = make();

    for (int type = 1; type <= 5; ++type)
        EXPECT_NE(content().find(" type=" + std::to_string(type) + " pairing : "), std::string::npos) << type;
    EXPECT_EQ(client->adapterState(), AdapterState::On);
    EXPECT_TRUE(client->devices().empty()) << "nothing was searched for";
}

TEST_F(SimulatedClientTest, ASearchFindsAfterAMomentWhatThePageAsksFor) {
    const auto client = make(2);
    std::vector<Device> found;
    client->setListener({.deviceChanged = [&](const Device& device) { found.push_back(device); }});
    const auto search = client->search(note());
    clock.advance(loop, 100ms);
    EXPECT_TRUE(found.empty());

    clock.advance(loop, 1s);

    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].name, "Pad with a SYNC button");
    EXPECT_TRUE(found[0].isGamepad && found[0].isHeard && !found[0].isPaired);
}

TEST_F(SimulatedClientTest, WhatOneProgramPairsAndConnectsTheOtherHearsOf) {
    const auto tool = make(1);
    const auto daemon = make();
    std::vector<Device> heard;
    daemon->setListener({.deviceChanged = [&](const Device& device) { heard.push_back(device); }});

    EXPECT_EQ(endOf(tool->pair(pad, note())), Error::None);
    EXPECT_EQ(endOf(tool->trust(pad, note())), Error::None);
    EXPECT_EQ(endOf(tool->connect(pad, note())), Error::None);

    EXPECT_TRUE(loop.runUntil([&] { return !heard.empty() && heard.back().isConnected; }));
    EXPECT_TRUE(heard.back().isPaired && heard.back().isTrusted);
    EXPECT_NE(content().find("00:AA:01:01:00:01 type=1 pairing paired trusted connected : "), std::string::npos);
}

TEST_F(SimulatedClientTest, WhatAPersonWritesIsHeard) {
    write("controller 00:AA:01:01:00:01 paired : Wireless Controller\nbluetooth on\n");
    const auto client = make();
    ASSERT_FALSE(client->device(pad)->isConnected);

    write("controller 00:AA:01:01:00:01 paired connected : Wireless Controller\nbluetooth on\n");
    EXPECT_TRUE(loop.runUntil([&] { return client->device(pad)->isConnected; }));
    write("bluetooth on\n");
    EXPECT_TRUE(loop.runUntil([&] { return !client->device(pad); }));
    write("bluetooth absent\n");
    EXPECT_TRUE(loop.runUntil([&] { return client->adapterState() == AdapterState::Absent; }));
}

TEST_F(SimulatedClientTest, ControllersRefuseAsTheyAreToldTo) {
    const std::tuple<const char*, Error, Error> refusals[] = {
        {"pairing", Error::None, Error::None},           {"pairing refuses", Error::Refused, Error::Refused},
        {"pairing pin", Error::Refused, Error::Refused}, {"pairing off", Error::Unreachable, Error::Unreachable},
        {"paired forgot", Error::None, Error::None}, // paired anew
    };
    for (const auto& [words, pairing, connecting] : refusals) {
        write("controller 00:AA:01:01:00:01 " + std::string(words) + " : X\nbluetooth on\n");
        const auto client = make();
        EXPECT_EQ(endOf(client->pair(pad, note())), pairing) << words;
        EXPECT_EQ(endOf(client->connect(pad, note())), connecting) << words;
    }
}

TEST_F(SimulatedClientTest, AControllerThatHasForgottenSaysSo) {
    write("controller 00:AA:01:01:00:01 paired forgot : X\nbluetooth on\n");
    const auto client = make();

    EXPECT_EQ(endOf(client->connect(pad, note())), Error::BondLost);
    EXPECT_EQ(endOf(client->remove(pad, note())), Error::None);

    EXPECT_FALSE(client->device(pad));
}

TEST_F(SimulatedClientTest, BluetoothIsSwitchedOnUnlessItIsBlocked) {
    for (const auto& [word, end] : {std::pair("on", Error::None), std::pair("off", Error::None),
                                    std::pair("blocked", Error::NoAdapter), std::pair("absent", Error::NoAdapter)}) {
        write("bluetooth " + std::string(word) + "\n");
        const auto client = make();
        EXPECT_EQ(endOf(client->powerOn(note())), end) << word;
    }
}

TEST_F(SimulatedClientTest, ASearchEndsWithTheAdapter) {
    write(onePad);
    const auto client = make();
    const auto search = client->search(note());
    clock.advance(loop, 1s);

    write("bluetooth off\n");

    EXPECT_TRUE(loop.runUntil([&] { return !ends.empty(); }));
    EXPECT_EQ(ends[0], Error::NoAdapter);
}

TEST_F(SimulatedClientTest, NothingHappensThatWasGivenUp) {
    write(onePad);
    const auto client = make();
    auto pairing = client->pair(pad, note());
    clock.advance(loop, 50ms);

    pairing.reset();
    clock.advance(loop, 1s);

    EXPECT_EQ(content(), onePad);
    EXPECT_TRUE(ends.empty());
}

TEST_F(SimulatedClientTest, CommentsMistakesAndWordsOfOthersStay) {
    const std::string text = "# my controllers\n\ncontroller nonsense\nbluetoth on\n"
                             "controller 00:AA:01:01:00:01 pairing light=004efd : A pad: with a colon\n";
    write(text + "bluetooth on\n");
    const auto client = make();

    EXPECT_EQ(endOf(client->pair(pad, note())), Error::None);

    EXPECT_EQ(content(), "# my controllers\n\ncontroller nonsense\nbluetoth on\n"
                         "controller 00:AA:01:01:00:01 pairing paired light=004efd : A pad: with a colon\n"
                         "bluetooth on\n");
    EXPECT_EQ(log.size(), 2U) << "one line for each mistake";
}

TEST_F(SimulatedClientTest, AFolderThatNobodyMayWriteToIsSaid) {
    write(onePad);
    const auto client = make();
    std::filesystem::create_directory(file + ".new");

    EXPECT_EQ(endOf(client->pair(pad, note())), Error::Failed);

    EXPECT_EQ(log.size(), 1U);
    EXPECT_EQ(content(), onePad);
}

TEST(SimulatedState, WhatItWritesItReads) {
    std::vector<std::string> problems;
    for (const std::string text : {"", "bluetooth off\n", "controller 00:AA:01:01:00:01 : \n", "controller",
                                   "controller 00:AA:01:01:00:01 type=x type=99999999999 type=", "\xff\xfe\n:::\n"}) {
        const std::string once = SimulatedState::fromText(text, problems).text();
        EXPECT_EQ(SimulatedState::fromText(once, problems).text(), once) << text;
    }
}

} // namespace
