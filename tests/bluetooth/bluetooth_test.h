#pragma once

#include "services/bluetooth/clients.h"
#include "services/common/log.h"
#include "tests/support/HeldClock.h"
#include "tests/support/MockBluetoothService.h"
#include "tests/support/PrivateBus.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace std::chrono_literals;
using bluetooth::AdapterState;
using bluetooth::Address;
using bluetooth::Client;
using bluetooth::Device;
using bluetooth::Error;

namespace bluetooth {
inline std::ostream& operator<<(std::ostream& stream, Error error) { return stream << errorText(error); }
} // namespace bluetooth

// A system bus of the test's own, the mock service on it, and the clock held: what takes time takes none.
class BluetoothTest : public testing::Test {
protected:
    BluetoothTest() {
        services::setLogSink([this](std::string_view line) { log.emplace_back(line); });
    }
    ~BluetoothTest() override { services::setLogSink({}); }

    void makeClient() {
        client = bluetooth::makeSystemClient(loop);
        client->setListener({[this](AdapterState state) { states.push_back(state); },
                             [this](const Device& device) { changes.push_back(device); },
                             [this](const Address& address) { gone.push_back(address); }});
    }
    bool settle(AdapterState state) {
        return loop.runUntil([&] { return client->adapterState() == state; });
    }
    Client::Completion note() {
        return [this](Error error) { ends.push_back(error); };
    }
    // How it ends.
    Error endOf(const Client::Handle& handle) {
        EXPECT_TRUE(handle);
        const auto before = ends.size();
        EXPECT_TRUE(loop.runUntil([&] { return ends.size() > before; })) << "it does not end";
        return ends.empty() ? Error::Failed : ends.back();
    }
    bool called(const std::string& call) const {
        return std::find(service.calls.begin(), service.calls.end(), call) != service.calls.end();
    }
    bool waitForCall(const std::string& call) {
        return loop.runUntil([&] { return called(call); });
    }
    // Lets time pass until it holds, each tenth of a second with what happens in it.
    bool passTime(const std::function<bool()>& done) {
        for (int i = 0; i < 600 && !loop.runUntil(done, 5ms); ++i) clock.advance(loop, 100ms);
        return done();
    }
    // Until all that is on its way has arrived.
    void quiet() {
        bool done = false;
        client->whenQuiet([&done] { done = true; });
        EXPECT_TRUE(loop.runUntil([&done] { return done; }));
    }

    const std::string pad = "00:AA:01:01:00:01";
    const Address padAddress = *Address::fromText(pad);
    std::vector<std::string> log;
    testing_support::PrivateBus bus{testing_support::PrivateBus::Start::Now, "DBUS_SYSTEM_BUS_ADDRESS"};
    testing_support::HeldClock clock;
    services::EventLoop loop{clock};
    testing_support::MockBluetoothService service{loop};
    std::vector<AdapterState> states;
    std::vector<Device> changes;
    std::vector<Address> gone;
    std::vector<Error> ends;
    std::unique_ptr<Client> client;
};

// A client of the mock service that knows one adapter, and asks something of it.
class BluetoothOperationTest : public BluetoothTest {
protected:
    enum class Power { Off, On };
    void begin(Power power = Power::On) {
        service.addAdapter("hci0", power == Power::On);
        makeClient();
        ASSERT_TRUE(settle(power == Power::On ? AdapterState::On : AdapterState::Off));
    }
    void beginWith(testing_support::MockDevice device) {
        device.address = pad;
        device.isKnown = true;
        service.addDevice(std::move(device));
        begin();
    }
};
