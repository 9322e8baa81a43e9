#include "tests/machine/jvninputd/PlayingTest.h"
#include "tests/machine/jvninputd/known_keys.h"

#include <algorithm>
#include <array>
#include <set>
#include <span>
#include <sys/ioctl.h>

namespace machine {
namespace {

struct Shown {
    int code;
    std::vector<std::string> down, up;
};

const std::vector<Shown>& everyInput() {
    static const std::vector<Shown> table{
        {1, {"EV_ABS 16 1"}, {"EV_ABS 16 0"}},
        {2, {"EV_ABS 16 -1"}, {"EV_ABS 16 0"}},
        {3, {"EV_ABS 17 -1"}, {"EV_ABS 17 0"}},
        {4, {"EV_ABS 17 1"}, {"EV_ABS 17 0"}},
        {5, {"EV_KEY 304 1"}, {"EV_KEY 304 0"}},
        {6, {"EV_KEY 305 1"}, {"EV_KEY 305 0"}},
        {7, {"EV_KEY 307 1"}, {"EV_KEY 307 0"}},
        {8, {"EV_KEY 308 1"}, {"EV_KEY 308 0"}},
        {9, {"EV_KEY 310 1"}, {"EV_KEY 310 0"}},
        {10, {"EV_KEY 311 1"}, {"EV_KEY 311 0"}},
        {11, {"EV_ABS 0 32767"}, {"EV_ABS 0 0"}},
        {12, {"EV_ABS 0 -32768"}, {"EV_ABS 0 0"}},
        {13, {"EV_ABS 1 -32768"}, {"EV_ABS 1 0"}},
        {14, {"EV_ABS 1 32767"}, {"EV_ABS 1 0"}},
        {15, {"EV_ABS 3 32767"}, {"EV_ABS 3 0"}},
        {16, {"EV_ABS 3 -32768"}, {"EV_ABS 3 0"}},
        {17, {"EV_ABS 4 -32768"}, {"EV_ABS 4 0"}},
        {18, {"EV_ABS 4 32767"}, {"EV_ABS 4 0"}},
        {19, {"EV_KEY 312 1", "EV_ABS 2 255"}, {"EV_KEY 312 0", "EV_ABS 2 0"}},
        {20, {"EV_KEY 313 1", "EV_ABS 5 255"}, {"EV_KEY 313 0", "EV_ABS 5 0"}},
        {21, {"EV_KEY 315 1"}, {"EV_KEY 315 0"}},
    };
    return table;
}

bool hasAxis(const EventReader& reader, unsigned code) {
    std::array<unsigned char, ABS_CNT / 8> bits{};
    ::ioctl(reader.descriptor(), EVIOCGBIT(EV_ABS, bits.size()), bits.data());
    return bits[code / 8] >> code % 8 & 1;
}

using Playing = PlayingTest;

TEST_F(Playing, WIsDPadUp) {
    startGame();
    keyboard.press(KEY_W);
    EXPECT_EQ(game->nextText(), "EV_ABS 17 -1");
    keyboard.release(KEY_W);
    EXPECT_EQ(game->nextText(), "EV_ABS 17 0");
    EXPECT_TRUE(nothingOnTheDesktop());
}

// All usages at once, and 21 keymaps, so that each usage has each code once.
TEST_F(Playing, EveryCodeByEveryUsageIsItsEvent) {
    const std::vector<KnownKey> keys = everyKnownKey();
    ASSERT_GT(keys.size(), 120U);
    startGame({{4, 11}});
    std::set<std::pair<int, int>> tried;
    for (int shift = 0; shift < 21; ++shift) {
        const auto codeOf = [shift](const KnownKey& key) { return (key.usage + shift) % 21 + 1; };
        governor.play(bindingsOf(keys, codeOf));
        settle(service.socket());
        for (std::size_t first = 0; first < keys.size(); first += keysAtATime) {
            const auto some = std::span(keys).subspan(first, std::min(keysAtATime, keys.size() - first));
            for (const KnownKey& key : some) keyboard.tap(key.key);
            for (const KnownKey& key : some) {
                const Shown& shown = everyInput()[codeOf(key) - 1];
                for (const std::string& text : shown.down)
                    ASSERT_EQ(game->nextText(), text) << key.key << " " << shown.code;
                for (const std::string& text : shown.up)
                    ASSERT_EQ(game->nextText(), text) << key.key << " " << shown.code;
                tried.emplace(key.usage, shown.code);
            }
        }
    }
    std::set<int> usages;
    for (const KnownKey& key : keys) usages.insert(key.usage);
    EXPECT_EQ(tried.size(), usages.size() * 21);
}

TEST_F(Playing, ThePlainProfileHasWhatItNeedsAndTheExtendedOneAllOfIt) {
    startGame();
    EXPECT_EQ(governor.state().profile, input::Profile::plain);
    EXPECT_TRUE(hasAxis(*game, ABS_X));
    EXPECT_FALSE(hasAxis(*game, ABS_RX));

    game.reset();
    governor.play(defaultBindings(), input::PlayMode::whileListened, true);
    ASSERT_TRUE(governor.waitFor([](const auto& state) { return state.profile == input::Profile::extended; }));
    game.emplace(EventReader::ofDevice(padName));
    EXPECT_TRUE(hasAxis(*game, ABS_RX));
    ASSERT_TRUE(governor.waitFor(input::Readiness::playing));
    keyboard.tap(KEY_W);
    EXPECT_EQ(game->nextText(), "EV_ABS 17 -1");
}

TEST_F(Playing, OfOppositeDirectionsTheLastWinsAndTheOtherComesBack) {
    startGame();
    keyboard.press(KEY_A);
    EXPECT_EQ(game->nextText(), "EV_ABS 16 -1");
    keyboard.press(KEY_D);
    EXPECT_EQ(game->nextText(), "EV_ABS 16 1");
    keyboard.release(KEY_D);
    EXPECT_EQ(game->nextText(), "EV_ABS 16 -1");
    keyboard.release(KEY_A);
    EXPECT_EQ(game->nextText(), "EV_ABS 16 0");
}

TEST_F(Playing, AKeymapChangedWhileKeysAreDownLeavesNothingDown) {
    startGame();
    keyboard.press(KEY_W);
    keyboard.press(KEY_Q);
    EXPECT_EQ(game->nextText(), "EV_ABS 17 -1");
    EXPECT_EQ(desktop->nextText(), "EV_KEY 16 1");
    governor.play({{26, 5}, {20, 6}});
    settle(service.socket());

    keyboard.release(KEY_W);
    keyboard.release(KEY_Q);
    EXPECT_EQ(game->nextText(), "EV_ABS 17 0");
    EXPECT_EQ(desktop->nextText(), "EV_KEY 16 0");
    keyboard.tap(KEY_W);
    EXPECT_EQ(game->nextText(), "EV_KEY 304 1");
}

TEST_F(Playing, KeysThatAreNotMappedReachTheDesktopAndMappedOnesDoNot) {
    startGame();
    keyboard.tap(KEY_W);
    keyboard.tap(KEY_VOLUMEUP);

    EXPECT_EQ(desktop->nextText(), "EV_KEY 115 1");
    EXPECT_EQ(desktop->nextText(), "EV_KEY 115 0");
    EventReader watched(keyboard.node());
    EXPECT_TRUE(watched.grabbedByOthers());
    EXPECT_EQ(service.log(), "") << "no word about keys";
}

TEST_F(Playing, RepeatsEndWithTheKey) {
    startGame();
    keyboard.press(KEY_TAB);
    EXPECT_TRUE(desktop->waitFor(EV_KEY, KEY_TAB, 2));
    keyboard.release(KEY_TAB);
    EXPECT_TRUE(desktop->waitFor(EV_KEY, KEY_TAB, 0));
    EXPECT_TRUE(nothingOnTheDesktop());
}

TEST_F(Playing, OurOwnDevicesDoNotPlay) {
    startGame();
    EXPECT_EQ(governor.state().keyboards, 1);
    EXPECT_EQ(udevProperty(waitForEventNode(standInName), "ID_INPUT_KEYBOARD"), "1");
    EXPECT_EQ(udevProperty(waitForEventNode(padName), "ID_INPUT_JOYSTICK"), "1");
}

} // namespace
} // namespace machine
