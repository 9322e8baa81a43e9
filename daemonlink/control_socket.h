#pragma once

#include <cstddef>

// The control socket for the add-on's other components. Both give a connected descriptor that the caller closes, or -1
// with nothing left open; neither waits.
extern "C" {

// Exactly `length` bytes of the path go into the address; callers count the terminating zero. More than 104 aborts. The
// missing letter is the name's, and stays: others link to it.
[[gnu::visibility("default")]] int JVNConnecToUNIXSocket(const char* path, std::size_t length);

[[gnu::visibility("default")]] int JVNConnectToControlSocket();
}
