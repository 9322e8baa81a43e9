#pragma once

#include "services/bluetooth/Client.h"
#include "services/bluetooth/ServiceObjects.h"
#include "services/common/Bus.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace bluetooth {

class ServiceOperation;

// The client of the system's Bluetooth service. Keeps a picture of the service's objects from its own signals, and asks
// for nothing by itself but the first picture after each start of either of them.
class SystemClient final : public Client {
public:
    explicit SystemClient(services::EventLoop& loop);
    ~SystemClient() override;
    SystemClient(const SystemClient&) = delete;
    SystemClient& operator=(const SystemClient&) = delete;

    void setListener(Listener listener) override { m_listener = std::move(listener); }
    AdapterState adapterState() const override;
    std::vector<Device> devices() const override;
    std::optional<Device> device(const Address& address) const override;

    Handle powerOn(Completion completion) override;
    Handle search(Completion completion) override;
    Handle pair(const Address& address, Completion completion) override;
    Handle trust(const Address& address, Completion completion) override;
    Handle connect(const Address& address, Completion completion) override;
    Handle disconnect(const Address& address, Completion completion) override;
    Handle remove(const Address& address, Completion completion) override;
    void whenQuiet(std::function<void()> done) override { m_bus.whenQuiet(std::move(done)); }

    // For the operations.
    services::EventLoop& loop() { return m_loop; }
    services::Bus& bus() { return m_bus; }
    const ServiceObjects& objects() const { return m_objects; }
    bool hasService() const { return !m_owner.empty(); }
    void add(ServiceOperation& operation) { m_operations.push_back(&operation); }
    void take(ServiceOperation& operation) { std::erase(m_operations, &operation); }
    // Devices count as heard from now on, or no longer.
    void searchBegan();
    void searchEnded();

private:
    void busIsUp();
    void busIsDown();
    void ownerIs(const std::string& owner);
    void askForObjects();
    void objectsArrived(const services::Bus::Reply& reply);
    // Compares what the objects say now with what was told last.
    void tell();
    static int ownerChanged(::sd_bus_message* message, void* self, ::sd_bus_error*);
    static int objectsSignal(::sd_bus_message* message, void* self, ::sd_bus_error*);
    static int propertiesSignal(::sd_bus_message* message, void* self, ::sd_bus_error*);

    services::EventLoop& m_loop;
    Listener m_listener;
    ServiceObjects m_objects;
    std::string m_owner;              // the service's unique name; empty: it is not there
    bool m_hasObjects = false;        // the first picture has come
    bool m_isSettled = false;         // what is not known by now counts as absent
    int m_searches = 0;               // our own that are under way
    std::set<std::string> m_appeared; // paths that came during them
    std::map<Address, Device> m_told;
    AdapterState m_toldState = AdapterState::Unknown;
    std::vector<ServiceOperation*> m_operations; // all that live; each takes itself out
    services::EventLoop::Source m_settle;
    services::EventLoop::Source m_tellSoon;
    services::Bus m_bus;
    services::EventLoop::Source m_ownerCall;
    services::EventLoop::Source m_objectsCall;
    std::vector<services::Slot> m_matches;
};

} // namespace bluetooth
