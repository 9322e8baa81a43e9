#pragma once

namespace bluetooth {

// How an operation ended. What the service's own errors mean is decided in one place (service_errors.h).
enum class Error {
    None,
    NoAdapter,     // no service, no adapter, blocked, not to be switched on, or gone in the middle
    UnknownDevice, // the service has no such device, or has it no more
    Refused,       // the device, or we for it (a PIN was wanted), said no
    BondLost,      // the device has forgotten the keys that we still have: remove it, pair anew
    Unreachable,   // it is off, out of reach, or let go of the link
    TimedOut,      // no answer within the operation's time
    Busy,          // the service or the device is in the middle of something of that kind
    Failed,        // anything else; the reason is in the log
};

// In words, for logs.
const char* errorText(Error error);

} // namespace bluetooth
