#include "services/bluetooth/Error.h"

namespace bluetooth {

const char* errorText(Error error) {
    switch (error) {
    case Error::None:
        return "done";
    case Error::NoAdapter:
        return "Bluetooth is off, blocked or not there";
    case Error::UnknownDevice:
        return "the device is not known";
    case Error::Refused:
        return "refused";
    case Error::BondLost:
        return "the device has forgotten its pairing";
    case Error::Unreachable:
        return "the device cannot be reached";
    case Error::TimedOut:
        return "no answer in time";
    case Error::Busy:
        return "busy with another operation";
    case Error::Failed:
        return "failed";
    }
    return "failed";
}

} // namespace bluetooth
