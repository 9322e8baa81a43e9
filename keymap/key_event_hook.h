#pragma once

#include "platform/runtime/Class.h"

// Lets the active keymap editor hear every key event of the application, after the application has handled it.

// Module initialiser: runs once when the bundle is loaded, before any editor exists. Without "handleKeyUIEvent:" on the
// application's class no hook is installed.
void installKeyEventHook();

// The same on a named class, for as long as the process lives; a second time does nothing.
void installKeyEventHookOnClass(Class applicationClass);
