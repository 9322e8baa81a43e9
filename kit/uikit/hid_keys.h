#pragma once

// Usages of the Keyboard/Keypad page that the interface kit acts on.
namespace seat::hid {

inline constexpr long enter = 40;
inline constexpr long escape = 41;
inline constexpr long tab = 43;
inline constexpr long space = 44;
inline constexpr long home = 74;
inline constexpr long pageUp = 75;
inline constexpr long end = 77;
inline constexpr long pageDown = 78;
inline constexpr long right = 79;
inline constexpr long left = 80;
inline constexpr long down = 81;
inline constexpr long up = 82;
inline constexpr long keypadEnter = 88;

} // namespace seat::hid
