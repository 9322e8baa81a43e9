#include "settings/daemon_failure.h"

#include "platform/notify.h"

void announceDaemonFailure() { notify_post("com.quorrel.jvnfailure"); }
