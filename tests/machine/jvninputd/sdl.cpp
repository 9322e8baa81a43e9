#include "tests/machine/jvninputd/PlayingTest.h"
#include "tests/machine/jvninputd/known_keys.h"

#include <SDL.h>
#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <span>
#include <utility>

namespace machine {
namespace {

// A game that knows pads by the wide-spread library alone: no mapping file, no settings.
class SdlGame {
public:
    SdlGame() {
        ::setenv("SDL_VIDEODRIVER", "dummy", 1);
        SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
        if (SDL_Init(SDL_INIT_GAMECONTROLLER) != 0) ADD_FAILURE() << SDL_GetError();
    }
    ~SdlGame() {
        m_pad.reset();
        SDL_Quit();
    }
    SdlGame(const SdlGame&) = delete;
    SdlGame& operator=(const SdlGame&) = delete;

    // Waits for the pad and opens it; false when the library does not take it for a controller.
    bool open() {
        return waitUntil([this] {
            SDL_PumpEvents();
            for (int i = 0; i < SDL_NumJoysticks() && !m_pad; ++i)
                if (SDL_IsGameController(i) && std::string(SDL_JoystickNameForIndex(i)) == padName)
                    m_pad.reset(SDL_GameControllerOpen(i));
            return m_pad != nullptr;
        });
    }

    // The control that moved next: "dpup", "leftx -", "lefttrigger +", and "rest" behind it when it came to rest.
    std::string next() {
        std::string text = "nothing";
        waitUntil([this, &text] {
            SDL_Event event;
            while (SDL_PollEvent(&event)) {
                if (event.type == SDL_CONTROLLERBUTTONDOWN || event.type == SDL_CONTROLLERBUTTONUP) {
                    text = SDL_GameControllerGetStringForButton(
                        static_cast<SDL_GameControllerButton>(event.cbutton.button));
                    if (event.type == SDL_CONTROLLERBUTTONUP) text += " rest";
                    return true;
                }
                if (event.type != SDL_CONTROLLERAXISMOTION) continue;
                // At its ends; the library rounds a trigger's or a stick's rest, and tells of it before the first move.
                const int value = event.caxis.value;
                const std::string place = value > 16384 ? " +" : value < -16384 ? " -" : " rest";
                if (std::exchange(m_places.try_emplace(event.caxis.axis, " rest").first->second, place) == place)
                    continue;
                text =
                    SDL_GameControllerGetStringForAxis(static_cast<SDL_GameControllerAxis>(event.caxis.axis)) + place;
                return true;
            }
            return false;
        });
        return text;
    }

private:
    struct Close {
        void operator()(SDL_GameController* pad) const { SDL_GameControllerClose(pad); }
    };
    std::unique_ptr<SDL_GameController, Close> m_pad;
    std::map<int, std::string> m_places; // of each axis
};

// By native code.
const std::map<int, std::string>& plainControls() {
    static const std::map<int, std::string> table{
        {1, "dpright"}, {2, "dpleft"}, {3, "dpup"},         {4, "dpdown"},         {5, "a"},     {6, "b"},
        {7, "x"},       {8, "y"},      {9, "leftshoulder"}, {10, "rightshoulder"}, {21, "start"}};
    return table;
}
const std::map<int, std::string>& extendedControls() {
    static const std::map<int, std::string> table{
        {11, "leftx +"},  {12, "leftx -"},  {13, "lefty -"},  {14, "lefty +"},       {15, "rightx +"},
        {16, "rightx -"}, {17, "righty -"}, {18, "righty +"}, {19, "lefttrigger +"}, {20, "righttrigger +"}};
    return table;
}

class Sdl : public PlayingTest {
protected:
    // All keys at once, and as many keymaps as there are inputs, so that each usage has each of them once.
    void tryEveryControlByEveryUsage(const std::map<int, std::string>& controls, input::Profile profile) {
        const std::vector<KnownKey> keys = everyKnownKey();
        const std::vector<std::pair<int, std::string>> list(controls.begin(), controls.end());
        const auto wanted = [&](const KnownKey& key, std::size_t shift) -> const auto& {
            return list[(static_cast<std::size_t>(key.usage) + shift) % list.size()];
        };
        std::optional<SdlGame> sdl;
        for (std::size_t shift = 0; shift < list.size(); ++shift) {
            governor.play(bindingsOf(keys, [&](const KnownKey& key) { return wanted(key, shift).first; }));
            settle(service.socket());
            if (!sdl) {
                ASSERT_FALSE(waitForEventNode(padName).empty());
                sdl.emplace();
                ASSERT_TRUE(sdl->open());
                ASSERT_TRUE(governor.waitFor(input::Readiness::playing)) << "the library is a game that listens";
                EXPECT_EQ(governor.state().profile, profile);
            }
            for (std::size_t first = 0; first < keys.size(); first += keysAtATime) {
                const auto some = std::span(keys).subspan(first, std::min(keysAtATime, keys.size() - first));
                for (const KnownKey& key : some) keyboard.tap(key.key);
                for (const KnownKey& key : some) {
                    const auto& [code, control] = wanted(key, shift);
                    ASSERT_EQ(sdl->next(), control) << "key " << key.key << ", code " << code;
                    ASSERT_EQ(sdl->next(), atRest(control)) << "key " << key.key << ", code " << code;
                }
            }
        }
    }

private:
    static std::string atRest(std::string control) { return control.substr(0, control.find(' ')) + " rest"; }
};

TEST_F(Sdl, WIsDPadUp) {
    governor.play(defaultBindings());
    ASSERT_FALSE(waitForEventNode(padName).empty());
    SdlGame sdl;
    ASSERT_TRUE(sdl.open());
    ASSERT_TRUE(governor.waitFor(input::Readiness::playing));
    keyboard.press(KEY_W);
    EXPECT_EQ(sdl.next(), "dpup");
    keyboard.release(KEY_W);
    EXPECT_EQ(sdl.next(), "dpup rest");
}

TEST_F(Sdl, ThePlainPadIsAControllerAndEveryUsageEveryControlOfIt) {
    tryEveryControlByEveryUsage(plainControls(), input::Profile::plain);
}

TEST_F(Sdl, TheExtendedPadIsAControllerAndEveryUsageEveryControlOfIt) {
    auto controls = plainControls();
    controls.insert(extendedControls().begin(), extendedControls().end());
    ASSERT_EQ(controls.size(), 21U);
    tryEveryControlByEveryUsage(controls, input::Profile::extended);
}

} // namespace
} // namespace machine
