#pragma once

#include "platform/foundation/NSDictionary.h"

#include <memory>

// A fresh keymap for a file that holds none: W A S D for the D-pad, I J K L for the face buttons, 2 and 8 for the
// shoulders, Escape for Pause.
std::shared_ptr<NSMutableDictionary> defaultKeymap();
