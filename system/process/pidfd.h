#pragma once

// Process descriptors. The C library of Debian 12 declares their functions without saying that they are C's.

#include <csignal>
#include <fcntl.h>

extern "C" {
#include <sys/pidfd.h>
}
