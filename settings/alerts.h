#pragma once

#include <string>

// A message with the single button "Dismiss" and nobody who waits for it.
void showAlert(std::string title, std::string message);
