#pragma once

// The integer under the "controller_type" row. Values beyond these are kept as they are stored; they pair by
// discovery, for which there are no instructions of their own.
enum JVNControllerType : long {
    JVNControllerTypePS3 = 0,
    JVNControllerTypeDualShock4 = 1,
    JVNControllerTypeSyncButton = 2,
    JVNControllerTypeHoldXHome1 = 3,
    JVNControllerTypeHoldXHome2 = 4,
    JVNControllerTypeHoldXHome3 = 5,
    JVNControllerTypeKeyboard = 6,
};

// The integer under the "connection_mode" row. In mode 1 the user connects and disconnects the controller by hand.
enum JVNConnectionMode : long {
    JVNConnectionModeAutomatic = 0,
    JVNConnectionModeByHand = 1,
};
