#pragma once

#include "platform/quartz/CGContext.h"

namespace seat {

// Makes the context the calling thread's current one while this lives; they nest.
class CurrentContext {
public:
    explicit CurrentContext(CGContextRef context);
    ~CurrentContext();
    CurrentContext(const CurrentContext&) = delete;
    CurrentContext& operator=(const CurrentContext&) = delete;
};

} // namespace seat
