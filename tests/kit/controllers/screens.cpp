#include "tests/controllers/screens.h"

NS_CLASS_IMPLEMENTATION(LoggedScreen, UIViewController)
