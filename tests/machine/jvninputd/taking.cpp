#include "tests/machine/jvninputd/PlayingTest.h"

namespace machine {
namespace {

TEST(Taking, AKeyThatIsTypedAtThatMomentComesUpOnTheDesktop) {
    const InputService service(KEY_AT_THE_GRAB_MODULE);
    VirtualKeyboard keyboard;
    EventReader everybody(keyboard.node());
    InputClient governor(service.socket(), input::Role::govern);
    governor.play(defaultBindings());
    const EventReader game = EventReader::ofDevice(padName);
    ASSERT_TRUE(governor.waitFor(input::Readiness::playing)) << service.log();

    // The press that everybody saw, and the key typed anew, as the release went to the service alone.
    EXPECT_EQ(everybody.nextText(), "EV_KEY 16 1");
    EXPECT_EQ(everybody.nextText(), "EV_KEY 16 1");
    EXPECT_EQ(everybody.nextText(), "EV_KEY 16 0");
    EXPECT_EQ(everybody.keysDown(), 0);
    EXPECT_TRUE(everybody.grabbedByOthers()) << "taken at the next attempt";
}

} // namespace
} // namespace machine
