#pragma once

#include "services/bluetooth/Client.h"

#include <algorithm>
#include <deque>
#include <string>

namespace testing_support {

inline constexpr bluetooth::Address firstAddress{{0x00, 0xAA, 0x01, 0x01, 0x00, 0x01}};
inline constexpr bluetooth::Address secondAddress{{0x00, 0xAA, 0x01, 0x01, 0x00, 0x02}};

// A Bluetooth client whose operations end when the test says so, and with what it says.
class FakeBluetooth final : public bluetooth::Client {
public:
    // "power", "connect 1", "disconnect 1", with the last digit of the address; "gives up ..." for one that was
    // cancelled. In order, separated by commas.
    std::string calls;

    // Ends the oldest operation that has not ended.
    void end(bluetooth::Error error = bluetooth::Error::None) {
        if (m_pending.empty()) {
            calls += " nothing to end!";
            return;
        }
        auto* const operation = m_pending.front();
        m_pending.pop_front();
        const auto completion = operation->completion;
        operation->owner = nullptr;
        completion(error);
    }
    bool isBusy() const { return !m_pending.empty(); }

    // The device is as told from now on, and the listener hears of it.
    void set(const bluetooth::Address& address, bool isConnected, bool isGamepad = true) {
        std::erase_if(m_devices, [&address](const auto& each) { return each.address == address; });
        bluetooth::Device device;
        device.address = address;
        device.isConnected = isConnected;
        device.isGamepad = isGamepad;
        m_devices.push_back(device);
        if (m_listener.deviceChanged) m_listener.deviceChanged(device);
    }
    void remove(const bluetooth::Address& address) {
        std::erase_if(m_devices, [&address](const auto& each) { return each.address == address; });
        if (m_listener.deviceRemoved) m_listener.deviceRemoved(address);
    }

    void setListener(Listener listener) override { m_listener = std::move(listener); }
    bluetooth::AdapterState adapterState() const override { return bluetooth::AdapterState::On; }
    std::vector<bluetooth::Device> devices() const override { return m_devices; }
    std::optional<bluetooth::Device> device(const bluetooth::Address& address) const override {
        const auto found = std::ranges::find(m_devices, address, &bluetooth::Device::address);
        return found == m_devices.end() ? std::nullopt : std::optional(*found);
    }
    Handle powerOn(Completion completion) override { return begin("power", std::move(completion)); }
    Handle search(Completion completion) override { return begin("search", std::move(completion)); }
    Handle pair(const bluetooth::Address& address, Completion completion) override {
        return begin(named("pair", address), std::move(completion));
    }
    Handle trust(const bluetooth::Address& address, Completion completion) override {
        return begin(named("trust", address), std::move(completion));
    }
    Handle connect(const bluetooth::Address& address, Completion completion) override {
        return begin(named("connect", address), std::move(completion));
    }
    Handle disconnect(const bluetooth::Address& address, Completion completion) override {
        return begin(named("disconnect", address), std::move(completion));
    }
    Handle remove(const bluetooth::Address& address, Completion completion) override {
        return begin(named("remove", address), std::move(completion));
    }
    void whenQuiet(std::function<void()> done) override { done(); }

private:
    struct Pending final : Operation {
        ~Pending() override {
            if (!owner) return;
            owner->note("gives up " + name);
            std::erase(owner->m_pending, this);
        }
        FakeBluetooth* owner = nullptr; // none when it has ended
        std::string name;
        Completion completion;
    };

    static std::string named(const char* call, const bluetooth::Address& address) {
        return std::string(call) + " " + std::to_string(address.bytes[5]);
    }
    void note(const std::string& call) { calls += (calls.empty() ? "" : ", ") + call; }
    Handle begin(const std::string& name, Completion completion) {
        note(name);
        auto operation = std::make_unique<Pending>();
        operation->owner = this;
        operation->name = name;
        operation->completion = std::move(completion);
        m_pending.push_back(operation.get());
        return operation;
    }

    Listener m_listener;
    std::vector<bluetooth::Device> m_devices;
    std::deque<Pending*> m_pending;
};

} // namespace testing_support
