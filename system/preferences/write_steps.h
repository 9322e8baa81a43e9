#pragma once

// Lets a test stand between the steps of a write: to end the process there, or to let the step fail.

#include <functional>

namespace seat {

enum class PreferencesWriteStep {
    Locked,
    ReadAfresh,
    MovedAside, // only when the file was damaged
    TemporaryCreated,
    TemporaryHalfWritten,
    TemporaryWritten,
    TemporaryFlushed,
    Renamed,
    FolderFlushed,
};

// Called after each step with the step just done; a result other than 0 makes the write fail there with that error
// number. An empty function removes it. Not for use while writes are under way.
void setPreferencesWriteProbe(std::function<int(PreferencesWriteStep)> probe);

} // namespace seat
