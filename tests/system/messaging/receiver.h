#pragma once

#include "platform/foundation/NSDictionary.h"
#include "platform/runtime/NSObject.h"

#include <functional>
#include <string>
#include <vector>

inline constexpr auto name = "com.quorrel.jvn.bootstrap"; // what the page is called on the bus

// A target that keeps what it is sent: "<message> <state>", or "<message> nothing" without a dictionary.
class MessageReceiver final : public NSObject {
    NS_CLASS(MessageReceiver)
public:
    void handle(const std::string& message, const std::shared_ptr<NSDictionary>& dictionary) {
        received.push_back(
            message + " " +
            (dictionary ? std::to_string(dictionary->objectForKey("JVNDiscoveryState").integerValue()) : "nothing"));
        if (whenCalled) whenCalled();
    }

    std::vector<std::string> received;
    std::function<void()> whenCalled;
};
