#include "system/notify/signal_name.h"

#include <gtest/gtest.h>

namespace {

using seat::BusSignal;
using seat::signalForNotification;

TEST(SignalName, TheLastPartIsTheSignalAndTheRestItsInterface) {
    EXPECT_EQ((BusSignal{"/com/quorrel/jvnprefs", "com.quorrel.jvnprefs", "changed"}),
              signalForNotification("com.quorrel.jvnprefs.changed"));
    EXPECT_EQ((BusSignal{"/com/quorrel", "com.quorrel", "jvnfailure"}),
              signalForNotification("com.quorrel.jvnfailure"));
}

TEST(SignalName, NamesThatTheBusDoesNotTakeAreNone) {
    for (const std::string name :
         {"", ".", "one", "one.two", "a..b", "a.b.", ".a.b", "a.2b.c", "a.b.c d", "a.b.c\n", "ä.b.c"})
        EXPECT_FALSE(signalForNotification(name)) << name;
    EXPECT_FALSE(signalForNotification("a.b." + std::string(260, 'x')));
    EXPECT_FALSE(signalForNotification(std::string("a.b.c\0", 6)));
}

} // namespace
