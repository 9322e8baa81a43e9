#include "tests/machine/jvninputd/PlayingTest.h"

#include <SDL.h>
#include <cstdlib>
#include <map>
#include <memory>
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

// By native code, with the HID usage of the key that drives it here.
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
    // Keys A to U for the codes 1 to 21.
    static constexpr std::uint16_t keys[] = {KEY_A, KEY_B, KEY_C, KEY_D, KEY_E, KEY_F, KEY_G,
                                             KEY_H, KEY_I, KEY_J, KEY_K, KEY_L, KEY_M, KEY_N,
                                             KEY_O, KEY_P, KEY_Q, KEY_R, KEY_S, KEY_T, KEY_U};
    static int usageOf(int code) { return 3 + code; }
    static std::string atRest(std::string control) { return control.substr(0, control.find(' ')) + " rest"; }
    void tryAll(SdlGame& sdl, const std::map<int, std::string>& controls) {
        for (const auto& [code, control] : controls) {
            keyboard.press(keys[code - 1]);
            EXPECT_EQ(sdl.next(), control) << code;
            keyboard.release(keys[code - 1]);
            EXPECT_EQ(sdl.next(), atRest(control)) << code;
        }
    }
};

TEST_F(Sdl, ThePlainPadIsAControllerAndEveryInputItsControl) {
    Bindings bindings;
    for (const auto& [code, control] : plainControls()) bindings.emplace_back(usageOf(code), code);
    governor.play(bindings);
    ASSERT_FALSE(waitForEventNode(padName).empty());
    SdlGame sdl;
    ASSERT_TRUE(sdl.open());
    ASSERT_TRUE(governor.waitFor(input::Readiness::playing)) << "the library is a game that listens";
    EXPECT_EQ(governor.state().profile, input::Profile::plain);
    tryAll(sdl, plainControls());
}

TEST_F(Sdl, TheExtendedPadIsAControllerAndEveryInputItsControl) {
    Bindings bindings;
    for (int code = 1; code <= 21; ++code) bindings.emplace_back(usageOf(code), code);
    governor.play(bindings);
    ASSERT_FALSE(waitForEventNode(padName).empty());
    SdlGame sdl;
    ASSERT_TRUE(sdl.open());
    ASSERT_TRUE(governor.waitFor(input::Readiness::playing));
    EXPECT_EQ(governor.state().profile, input::Profile::extended);
    tryAll(sdl, plainControls());
    tryAll(sdl, extendedControls());
}

} // namespace
} // namespace machine
