#include "system/messaging/message_sender.h"

#include "platform/log.h"
#include "system/bus/SessionBus.h"

namespace {

constexpr std::chrono::seconds timeout{5};

} // namespace

void seat::sendMessage(const std::string& center, const std::string& message,
                       const std::shared_ptr<NSDictionary>& dictionary, std::function<void(bool)> delivered) {
    std::function<void(const SessionBus::Reply&)> replied;
    if (delivered)
        replied = [center, message, delivered = std::move(delivered)](const SessionBus::Reply& reply) {
            if (!reply.error.empty())
                NSLog("message %s to %s: %s", message.c_str(), center.c_str(), reply.error.c_str());
            delivered(reply.error.empty());
        };
    std::vector<id> arguments;
    if (dictionary) arguments.emplace_back(dictionary);
    SessionBus::shared().call({center, messagingCenterPath, center, message}, dictionary ? "a{sv}" : "", arguments,
                              timeout, std::move(replied));
}
