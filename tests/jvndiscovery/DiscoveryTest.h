#pragma once

#include "services/jvndiscovery/Discovery.h"
#include "tests/bluetooth/bluetooth_test.h"

#include <optional>

using jvndiscovery::Discovery;
using jvndiscovery::Outcome;
using jvndiscovery::State;
using jvndiscovery::Stored;

// The way from nothing to a paired controller, at the mock service.
class DiscoveryTest : public BluetoothTest {
protected:
    void begin() {
        client = bluetooth::makeSystemClient(loop);
        discovery.emplace(
            loop, *client,
            Discovery::Surroundings{[this](State state) { told += static_cast<char>('0' + static_cast<int>(state)); },
                                    [this](const Address& address) {
                                        stored.push_back(address);
                                        return storing;
                                    },
                                    [this](Outcome outcome) { outcomes.push_back(outcome); }});
    }
    bool searches() {
        return loop.runUntil([&] { return service.isSearching(); });
    }
    // Until it has ended.
    std::optional<Outcome> outcome() {
        loop.runUntil([&] { return !outcomes.empty(); });
        return outcomes.empty() ? std::nullopt : std::optional(outcomes.back());
    }
    // What the service keeps of a tool that has ended.
    void expectNothingLeft() {
        EXPECT_FALSE(service.isSearching());
        EXPECT_FALSE(service.hasAgent());
        EXPECT_FALSE(service.isPairing());
    }
    long count(const std::string& call) const { return std::count(service.calls.begin(), service.calls.end(), call); }

    std::string told; // the states, one digit each
    std::vector<Address> stored;
    Stored storing = Stored::Yes;
    std::vector<Outcome> outcomes;
    std::optional<Discovery> discovery;
};
