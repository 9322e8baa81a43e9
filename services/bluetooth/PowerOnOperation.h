#pragma once

#include "services/bluetooth/ServiceOperation.h"

namespace bluetooth {

// Brings Bluetooth up, from whatever state it is in: the service is started, an adapter waited for, switched on.
class PowerOnOperation final : public ServiceOperation {
public:
    PowerOnOperation(SystemClient& client, Client::Completion completion);

    void objectsChanged() override { goOn(); }

private:
    enum class Step { Begun, ServiceStarted, SwitchedOn };

    void timedOut() override;
    void goOn();
    void startService();
    void switchOn();

    Step m_step = Step::Begun;
    bool m_isWaiting = false; // for an adapter
};

} // namespace bluetooth
