#include "services/bluetooth/ServiceOperation.h"

#include <utility>

namespace bluetooth {

ServiceOperation::ServiceOperation(SystemClient& client, Client::Completion completion,
                                   std::optional<std::chrono::seconds> limit)
    : m_client(client), m_completion(std::move(completion)) {
    if (!m_completion) m_completion = [](Error) {};
    if (limit)
        m_limit = client.loop().after(*limit, [this] {
            timedOut();
            finish(Error::TimedOut);
        });
    client.add(*this);
}

ServiceOperation::~ServiceOperation() { m_client.take(*this); }

void ServiceOperation::finish(Error error) {
    if (!m_completion) return;
    const auto completion = std::exchange(m_completion, nullptr);
    m_call.reset();
    m_limit.reset();
    m_wait.reset();
    m_end.reset();
    completion(error);
}

void ServiceOperation::finishSoon(Error error) {
    m_end = m_client.loop().soon([this, error] { finish(error); });
}

void ServiceOperation::ask(services::Message message, std::function<void(const Reply&)> replied) {
    m_call = m_client.bus().call(std::move(message), std::move(replied));
}

void ServiceOperation::wait(std::chrono::microseconds time, services::EventLoop::Callback over) {
    m_wait = m_client.loop().after(time, std::move(over));
}

std::string ServiceOperation::serviceReason(const Reply& reply) {
    const bool isSafe = !reply.text.empty() && reply.text.find("dev_") == std::string::npos;
    return isSafe ? reply.error + ": " + reply.text : reply.error;
}

} // namespace bluetooth
