#include "tests/kit/controllers/screens.h"

NS_CLASS_IMPLEMENTATION(LoggedScreen, UIViewController)
