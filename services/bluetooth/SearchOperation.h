#pragma once

#include "services/bluetooth/ServiceOperation.h"

#include <string>

namespace bluetooth {

// One search, at the adapter in use: it moves when that becomes another. The service ends it by itself when this
// program goes.
class SearchOperation final : public ServiceOperation {
public:
    SearchOperation(SystemClient& client, Client::Completion completion);
    ~SearchOperation() override;
    SearchOperation(const SearchOperation&) = delete;
    SearchOperation& operator=(const SearchOperation&) = delete;

    void objectsChanged() override;

private:
    services::Message adapterMethod(const char* member) const;
    void begin();
    void begun(const Reply& reply);
    void ended(Error error);
    void callOff() override;

    std::string m_adapter; // empty when none is on
    bool m_counts = false; // devices count as heard
};

} // namespace bluetooth
