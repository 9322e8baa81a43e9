#pragma once

// Tells the system that the daemon could not be reached. The page itself shows nothing. Any thread.
void announceDaemonFailure();
