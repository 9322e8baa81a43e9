#include "tests/alerts/alert_test.h"

NS_CLASS_IMPLEMENTATION(AlertListener, NSObject)
