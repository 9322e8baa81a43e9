#pragma once

#include "services/bluetooth/SimulatedWorld.h"

#include <map>

namespace bluetooth {

// Bluetooth as the file of simulated controllers has it. What takes a real controller a moment takes one here.
class SimulatedClient final : public Client {
public:
    SimulatedClient(services::EventLoop& loop, const std::string& world, std::optional<int> wantedType);

    void setListener(Listener listener) override { m_listener = std::move(listener); }
    AdapterState adapterState() const override { return m_world.state().adapter; }
    std::vector<Device> devices() const override;
    std::optional<Device> device(const Address& address) const override;

    Handle powerOn(Completion completion) override;
    Handle search(Completion completion) override;
    Handle pair(const Address& address, Completion completion) override;
    Handle trust(const Address& address, Completion completion) override;
    Handle connect(const Address& address, Completion completion) override;
    Handle disconnect(const Address& address, Completion completion) override;
    Handle remove(const Address& address, Completion completion) override;
    void whenQuiet(std::function<void()> done) override;

private:
    class Search;
    class Change;
    // What comes of an operation when its moment has come; it may change the controller.
    using Outcome = std::function<Error(SimulatedController&)>;

    Handle change(const Address& address, std::chrono::milliseconds time, Error whenUnknown, Outcome outcome,
                  Completion completion);
    bool isInTheAir(const SimulatedController& controller) const;
    bool isKnown(const SimulatedController& controller) const;
    Device deviceOf(const SimulatedController& controller) const;
    void tell();

    services::EventLoop& m_loop;
    std::optional<int> m_wantedType;
    Listener m_listener;
    std::vector<Search*> m_searches;
    std::map<Address, Device> m_told;
    AdapterState m_toldState = AdapterState::Unknown;
    services::EventLoop::Source m_tellSoon;
    services::EventLoop::Source m_quiet;
    SimulatedWorld m_world;
};

} // namespace bluetooth
