#pragma once

#include "services/bluetooth/SystemClient.h"

#include <chrono>
#include <optional>

namespace bluetooth {

// What all operations at the service share: one question at a time, a time limit, one end.
class ServiceOperation : public Client::Operation {
public:
    using Reply = services::Bus::Reply;

    ServiceOperation(SystemClient& client, Client::Completion completion,
                     std::optional<std::chrono::seconds> limit = std::nullopt);
    ~ServiceOperation() override;
    ServiceOperation(const ServiceOperation&) = delete;
    ServiceOperation& operator=(const ServiceOperation&) = delete;

    // Something is different at the service. May destroy the operation.
    virtual void objectsChanged() {}

protected:
    bool isUnderWay() const { return static_cast<bool>(m_completion); }
    // The end. Destroys the operation where the caller's completion does, so nothing of it is touched afterwards.
    void finish(Error error);
    // The same, once the caller has got its handle. Until then nothing is asked and nothing is heard.
    void finishSoon(Error error);
    // The answer comes as long as the operation is under way.
    void ask(services::Message message, std::function<void(const Reply&)> replied);
    // One wait at a time.
    void wait(std::chrono::microseconds time, services::EventLoop::Callback over);
    void stopWaiting() { m_wait.reset(); }
    SystemClient& client() const { return m_client; }
    services::Bus& bus() const { return m_client.bus(); }
    // What is asked of the service to undo what it is doing.
    virtual void callOff() {}
    // Its time is over; it ends after this.
    virtual void timedOut() { callOff(); }

    // What the service said, for the log. A text that names an object holds a whole address, and is left out.
    static std::string serviceReason(const Reply& reply);

private:
    SystemClient& m_client;
    Client::Completion m_completion;
    services::EventLoop::Source m_call;
    services::EventLoop::Source m_limit;
    services::EventLoop::Source m_wait;
    services::EventLoop::Source m_end;
};

} // namespace bluetooth
