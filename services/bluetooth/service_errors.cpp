#include "services/bluetooth/service_errors.h"

namespace bluetooth {
namespace {

struct Row {
    std::string_view word;
    Error error;
};

// By the last part of the error's name. Of those that say little the text is looked at first.
constexpr Row names[] = {
    {"AlreadyConnected", Error::None},
    {"AlreadyExists", Error::None},
    {"NotReady", Error::NoAdapter},
    {"Blocked", Error::NoAdapter},
    {"NoSuchAdapter", Error::NoAdapter},
    {"ServiceUnknown", Error::NoAdapter},
    {"NameHasNoOwner", Error::NoAdapter},
    {"Disconnected", Error::NoAdapter},
    {"NoReply", Error::NoAdapter}, // the service has ended in the middle
    {"DoesNotExist", Error::UnknownDevice},
    {"UnknownObject", Error::UnknownDevice},
    {"UnknownMethod", Error::UnknownDevice}, // what the bus library says of an object that has gone
    {"AuthenticationRejected", Error::Refused},
    {"AuthenticationFailed", Error::Refused},
    {"AuthenticationCanceled", Error::Refused},
    {"Rejected", Error::Refused},
    {"Canceled", Error::Refused},
    {"NotAuthorized", Error::Refused},
    {"NotPermitted", Error::Refused},
    {"AccessDenied", Error::Refused},
    {"ConnectionAttemptFailed", Error::Unreachable},
    {"NotAvailable", Error::Unreachable},
    {"AuthenticationTimeout", Error::TimedOut},
    {"InProgress", Error::Busy},
    {"Busy", Error::Busy},
    {"NotConnected", Error::Unreachable},
};

// By a part of the text, where the name alone does not say it; the first that is found.
constexpr Row texts[] = {
    {"already-connected", Error::None},
    {"adapter-not-powered", Error::NoAdapter},
    {"key-missing", Error::BondLost},
    {"PIN or Key Missing", Error::BondLost},
    {"connection-busy", Error::Busy},
    {"concurrent-connection-limit", Error::Busy},
    {"refused", Error::Refused},
    {"profile-unavailable", Error::Refused},
    {"not-supported", Error::Refused},
    {"page-timeout", Error::Unreachable},
    {"connection-timeout", Error::Unreachable},
    {"abort", Error::Unreachable},
    {"canceled", Error::Unreachable},
    {"sdp-search", Error::Unreachable},
    {"Host is down", Error::Unreachable},
    {"No route to host", Error::Unreachable},
    {"Connection refused", Error::Refused},
    {"Connection timed out", Error::Unreachable},
    {"Software caused connection abort", Error::Unreachable},
    {"Connection reset", Error::Unreachable},
    {"Not Powered", Error::NoAdapter},
    {"Resource Not Ready", Error::NoAdapter},
    {"in progress", Error::Busy},
};

} // namespace

Error errorOfService(std::string_view name, std::string_view text) {
    const auto dot = name.rfind('.');
    const auto last = dot == std::string_view::npos ? name : name.substr(dot + 1);
    const bool isVague = last == "Failed" || last == "NotAvailable";
    for (const auto& [word, error] : texts)
        if (text.find(word) != std::string_view::npos && (isVague || error == Error::BondLost)) return error;
    for (const auto& [word, error] : names)
        if (last == word) return error;
    return Error::Failed;
}

} // namespace bluetooth
