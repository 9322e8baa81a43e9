#pragma once

#include "platform/runtime/Class.h"
#include "platform/runtime/NSObject.h"
#include "platform/runtime/method.h"
