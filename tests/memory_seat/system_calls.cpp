#include "tests/support/SystemCalls.h"

// There is no library of the system's to stand in front of: this seat asks at each of its calls by itself.
void testing_support::useOwnCalls() {}
void testing_support::useOwnFlushes() {}
