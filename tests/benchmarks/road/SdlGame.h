#pragma once

#include <SDL.h>
#include <chrono>
#include <string>

// One gamepad as a game has it, by the library that most games use. The library is one for the process: one at a time.
class SdlPad {
public:
    // Waits for a pad with that name; isOpen() says whether it came.
    explicit SdlPad(const std::string& name) {
        ::setenv("SDL_VIDEODRIVER", "dummy", 1);
        SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
        SDL_Init(SDL_INIT_GAMECONTROLLER);
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!m_pad && std::chrono::steady_clock::now() < end) {
            SDL_PumpEvents();
            for (int i = 0; i < SDL_NumJoysticks() && !m_pad; ++i)
                if (SDL_IsGameController(i) && name == SDL_JoystickNameForIndex(i)) m_pad = SDL_GameControllerOpen(i);
        }
    }
    ~SdlPad() {
        if (m_pad) SDL_GameControllerClose(m_pad);
        SDL_Quit();
    }
    SdlPad(const SdlPad&) = delete;
    SdlPad& operator=(const SdlPad&) = delete;

    bool isOpen() const { return m_pad != nullptr; }

    // Looks for events without a pause, as a game does in each of its frames; false when this one did not come in time.
    bool waitFor(SDL_EventType type, std::chrono::milliseconds timeout = std::chrono::milliseconds(500)) const {
        const auto end = std::chrono::steady_clock::now() + timeout;
        while (std::chrono::steady_clock::now() < end) {
            SDL_Event event;
            while (SDL_PollEvent(&event))
                if (event.type == static_cast<unsigned>(type)) return true;
        }
        return false;
    }

private:
    SDL_GameController* m_pad = nullptr;
};
