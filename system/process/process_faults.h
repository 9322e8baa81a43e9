#pragma once

namespace seat {

// For tests: the next `times` children cannot be made, with this error number.
void failForks(int times, int errorNumber);

// Used when a child is made: the error number with which it is to fail, or 0.
int takeForkFault();

} // namespace seat
