#pragma once

#include <memory>
#include <string>

class UIColor;

// A colour as people call it, "pale blue", "dark red"; empty for one without components. Any thread.
std::string JVNWordsForUIColor(const std::shared_ptr<UIColor>& color);
