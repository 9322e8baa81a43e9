#pragma once

class UINavigationController;

namespace seat {

// Brings what the settings pages of a stack show in line with what is stored by now, the choices over them too. Nothing
// is touched where that is what they show.
void showStoredValues(UINavigationController& navigation);

} // namespace seat
