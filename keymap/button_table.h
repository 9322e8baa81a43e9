#pragma once

#include <array>

// One controller input that a key can drive: the code that the keymap and the daemon use for it, and its row's title.
struct KeymapButton {
    int nativeCode;
    const char* title;
};

// The rows in their order. "Pause" has the last code but stands with the shoulder buttons, so from there on a row's
// code is no longer its number plus one.
inline constexpr std::array<KeymapButton, 21> keymapButtons{{
    {1, "D-pad right"},
    {2, "D-pad left"},
    {3, "D-pad up"},
    {4, "D-pad down"},
    {5, "face button A"},
    {6, "face button B"},
    {7, "face button X"},
    {8, "face button Y"},
    {9, "Left Shoulder (L1)"},
    {10, "Right Shoulder (R1)"},
    {21, "Pause"},
    {11, "Left Analog Stick right"},
    {12, "Left Analog Stick left"},
    {13, "Left Analog Stick up"},
    {14, "Left Analog Stick down"},
    {15, "Right Analog Stick right"},
    {16, "Right Analog Stick left"},
    {17, "Right Analog Stick up"},
    {18, "Right Analog Stick down"},
    {19, "Left Trigger (L2)"},
    {20, "Right Trigger (R2)"},
}};
