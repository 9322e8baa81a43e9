#pragma once

// For readers of the preferences file: true while a writer has its temporary file (named like the file, with a suffix)
// beside it and has not yet moved it into place. A folder that cannot be listed reads as settled. Any thread.
extern "C" [[gnu::visibility("default")]] bool JVNPreferencesFileStillInAtomicWrite();
