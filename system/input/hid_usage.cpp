#include "system/input/hid_usage.h"

#include <array>
#include <cstdint>

namespace {

struct Key {
    std::uint8_t kernelKey;
    std::uint8_t usage;
};

// Where several usages share a kernel number the one that a full-size keyboard sends is taken: the key left of Return
// counts as backslash (49), not as its ISO twin (50).
constexpr Key keys[] = {
    // Letters
    {30, 4},
    {48, 5},
    {46, 6},
    {32, 7},
    {18, 8},
    {33, 9},
    {34, 10},
    {35, 11},
    {23, 12},
    {36, 13},
    {37, 14},
    {38, 15},
    {50, 16},
    {49, 17},
    {24, 18},
    {25, 19},
    {16, 20},
    {19, 21},
    {31, 22},
    {20, 23},
    {22, 24},
    {47, 25},
    {17, 26},
    {45, 27},
    {21, 28},
    {44, 29},
    // Digits 1 to 9, 0
    {2, 30},
    {3, 31},
    {4, 32},
    {5, 33},
    {6, 34},
    {7, 35},
    {8, 36},
    {9, 37},
    {10, 38},
    {11, 39},
    // Return, Escape, Backspace, Tab, Space
    {28, 40},
    {1, 41},
    {14, 42},
    {15, 43},
    {57, 44},
    // - = [ ] \ ; ' ` , . /
    {12, 45},
    {13, 46},
    {26, 47},
    {27, 48},
    {43, 49},
    {39, 51},
    {40, 52},
    {41, 53},
    {51, 54},
    {52, 55},
    {53, 56},
    // Caps Lock, F1 to F12
    {58, 57},
    {59, 58},
    {60, 59},
    {61, 60},
    {62, 61},
    {63, 62},
    {64, 63},
    {65, 64},
    {66, 65},
    {67, 66},
    {68, 67},
    {87, 68},
    {88, 69},
    // Print Screen, Scroll Lock, Pause, Insert, Home, Page Up, Delete, End, Page Down, Right, Left, Down, Up
    {99, 70},
    {70, 71},
    {119, 72},
    {110, 73},
    {102, 74},
    {104, 75},
    {111, 76},
    {107, 77},
    {109, 78},
    {106, 79},
    {105, 80},
    {108, 81},
    {103, 82},
    // Keypad: Num Lock / * - + Enter 1 to 9 0 .
    {69, 83},
    {98, 84},
    {55, 85},
    {74, 86},
    {78, 87},
    {96, 88},
    {79, 89},
    {80, 90},
    {81, 91},
    {75, 92},
    {76, 93},
    {77, 94},
    {71, 95},
    {72, 96},
    {73, 97},
    {82, 98},
    {83, 99},
    // The ISO key right of the left Shift, Application, Power, keypad =
    {86, 100},
    {127, 101},
    {116, 102},
    {117, 103},
    // F13 to F24
    {183, 104},
    {184, 105},
    {185, 106},
    {186, 107},
    {187, 108},
    {188, 109},
    {189, 110},
    {190, 111},
    {191, 112},
    {192, 113},
    {193, 114},
    {194, 115},
    // Execute, Help, Menu, Select, Stop, Again, Undo, Cut, Copy, Paste, Find
    {134, 116},
    {138, 117},
    {130, 118},
    {139, 118},
    {132, 119},
    {128, 120},
    {129, 121},
    {131, 122},
    {137, 123},
    {133, 124},
    {135, 125},
    {136, 126},
    // Mute, Volume Up, Volume Down, keypad comma
    {113, 127},
    {115, 128},
    {114, 129},
    {121, 133},
    // International 1 to 6 (Ro, Katakana/Hiragana, Yen, Henkan, Muhenkan, keypad comma of PC98)
    {89, 135},
    {93, 136},
    {124, 137},
    {92, 138},
    {94, 139},
    {95, 140},
    // Language 1 to 5 (Hangul, Hanja, Katakana, Hiragana, Zenkaku/Hankaku)
    {122, 144},
    {123, 145},
    {90, 146},
    {91, 147},
    {85, 148},
    // Cancel, keypad ( ) ±
    {223, 155},
    {179, 182},
    {180, 183},
    {118, 215},
    // Control, Shift, Alt, GUI: left, then right
    {29, 224},
    {42, 225},
    {56, 226},
    {125, 227},
    {97, 228},
    {54, 229},
    {100, 230},
    {126, 231},
};

constexpr auto usageByKernelKey = [] {
    std::array<std::uint8_t, 256> table{};
    for (const Key key : keys) table[key.kernelKey] = key.usage;
    return table;
}();

} // namespace

long seat::hidUsageForKernelKey(unsigned kernelKey) {
    return kernelKey < usageByKernelKey.size() ? usageByKernelKey[kernelKey] : 0;
}

long seat::hidUsageForScanCode(unsigned scanCode) { return scanCode < 8 ? 0 : hidUsageForKernelKey(scanCode - 8); }
