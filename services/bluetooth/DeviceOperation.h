#pragma once

#include "services/bluetooth/Agent.h"
#include "services/bluetooth/ServiceOperation.h"

#include <memory>
#include <string>
#include <vector>

namespace bluetooth {

// An operation on one device: a few questions to the service, one after the other.
class DeviceOperation final : public ServiceOperation {
public:
    enum class Kind { Pair, Trust, Connect, Disconnect, Remove };

    DeviceOperation(SystemClient& client, Kind kind, const Address& address, Client::Completion completion);
    ~DeviceOperation() override;
    DeviceOperation(const DeviceOperation&) = delete;
    DeviceOperation& operator=(const DeviceOperation&) = delete;

    void objectsChanged() override;

private:
    // The question of this number; nil when there are no more.
    services::Message question(std::size_t number) const;
    services::Message deviceMethod(const char* member) const;
    services::Message setFlag(const char* property) const;
    services::Message agentMethod(const char* member) const;
    void askNext();
    void answered(const Reply& reply);
    void callOff() override;
    void timedOut() override;
    // One line for each failure; `reason` is what the service said of it.
    void logFailure(Error error, const std::string& reason = {}) const;
    void fail(Error error);

    Kind m_kind;
    std::string m_path;
    std::string m_adapter;
    std::string m_name; // for the log
    std::size_t m_asked = 0;
    bool m_isGone = false;          // its object
    std::unique_ptr<Agent> m_agent; // Pair only, for as long as the handle lives
};

} // namespace bluetooth
