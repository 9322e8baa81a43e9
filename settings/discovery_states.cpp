#include "settings/discovery_states.h"

#include "daemonlink/JVNControllerType.h"

namespace {

const char* buttonName(long controllerType) {
    switch (controllerType) {
    case JVNControllerTypeDualShock4:
        return "PS";
    case JVNControllerTypeSyncButton:
        return "SYNC";
    case JVNControllerTypeHoldXHome1:
    case JVNControllerTypeHoldXHome2:
    case JVNControllerTypeHoldXHome3:
        return "X + HOME";
    default:
        return "(null)"; // the platform's text for a missing object
    }
}

} // namespace

const char* searchingText(long controllerType) {
    switch (controllerType) {
    case JVNControllerTypeDualShock4:
        return "Searching...\nPress both the Share and PS buttons until your PS4 controller blinks.";
    case JVNControllerTypeSyncButton: // two dots, as it has always been
        return "Searching..\nPress the red SYNC button on the back of your controller.";
    case JVNControllerTypeHoldXHome1:
    case JVNControllerTypeHoldXHome2:
    case JVNControllerTypeHoldXHome3:
        return "Searching...\nHold the X and the HOME buttons until the SEARCH light blinks.";
    default:
        return nullptr;
    }
}

std::string pairedMessage(long controllerType) {
    return std::string("Success!\nController paired, you can go into a game now and press ") +
           buttonName(controllerType) + " when prompted to do so (turn it off now if it keeps blinking).";
}
