#include "tests/kit/alerts/AlertTest.h"

NS_CLASS_IMPLEMENTATION(AlertListener, NSObject)
