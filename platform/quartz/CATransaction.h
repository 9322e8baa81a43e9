#pragma once

// Groups layer changes of the calling thread; transactions nest. While one with disabled actions is open, layer changes
// take effect without animation, also inside an animation block. Outside an animation block nothing animates anyway. A
// commit without a begin, and actions disabled outside a transaction, do nothing. Nothing is put off until the commit:
// values change at once.
class CATransaction {
public:
    static void begin();
    static void commit();
    static void setDisableActions(bool disable);
    static bool disableActions();
};
