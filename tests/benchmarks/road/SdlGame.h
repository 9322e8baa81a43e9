#pragma once

#include <SDL.h>
#include <algorithm>
#include <array>
#include <chrono>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <vector>

// A game that knows gamepads by the library that most games use.
//
// The library looks at its devices when it is asked. A game asks once in each of its frames, so that what it hears is
// half a frame old on average. One that asks without a pause takes the processor from those that it waits for: where
// there is one processor, each hop then waits for a tick of the scheduler. Neither is the time of whoever remaps keys.
// So this one sleeps until the kernel has something on a pad's node, and asks the library then.
class SdlGame {
public:
    enum class Waiting { Sleeps, Spins };
    explicit SdlGame(Waiting waiting = Waiting::Sleeps) : m_waiting(waiting) {
        ::setenv("SDL_VIDEODRIVER", "dummy", 1);
        SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
        SDL_Init(SDL_INIT_GAMECONTROLLER);
    }
    ~SdlGame() {
        for (const Pad& pad : m_pads) {
            SDL_GameControllerClose(pad.controller);
            ::close(pad.node);
        }
        SDL_Quit();
    }
    SdlGame(const SdlGame&) = delete;
    SdlGame& operator=(const SdlGame&) = delete;

    // Waits for the pad at that node and opens it. Its number in the library's events; -1 when it did not come, or is
    // none to the library.
    SDL_JoystickID open(const std::string& node) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        for (; std::chrono::steady_clock::now() < end; ::usleep(10'000)) {
            SDL_PumpEvents();
            for (int i = 0; i < SDL_NumJoysticks(); ++i) {
                const char* const path = SDL_JoystickPathForIndex(i);
                if (!path || node != path || !SDL_IsGameController(i)) continue;
                SDL_GameController* const controller = SDL_GameControllerOpen(i);
                if (!controller) return -1;
                m_pads.push_back({controller, ::open(node.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)});
                return SDL_JoystickInstanceID(SDL_GameControllerGetJoystick(controller));
            }
        }
        return -1;
    }

    // False when this event of that pad did not come in time.
    bool waitFor(SDL_EventType type, SDL_JoystickID pad,
                 std::chrono::milliseconds timeout = std::chrono::milliseconds(500)) const {
        const auto end = std::chrono::steady_clock::now() + timeout;
        while (std::chrono::steady_clock::now() < end) {
            SDL_Event event;
            while (SDL_PollEvent(&event))
                if (event.type == static_cast<unsigned>(type) && event.cbutton.which == pad) return true;
            if (m_waiting == Waiting::Sleeps) sleep();
        }
        return false;
    }

private:
    struct Pad {
        SDL_GameController* controller;
        int node; // once more, to be woken by
    };

    void sleep() const {
        std::vector<::pollfd> nodes;
        for (const Pad& pad : m_pads) nodes.push_back({pad.node, POLLIN, 0});
        // The kernel may wake us before it has given the library its share: look again soon.
        ::poll(nodes.data(), nodes.size(), 10);
        std::array<char, 4096> bytes;
        for (const Pad& pad : m_pads)
            while (::read(pad.node, bytes.data(), bytes.size()) > 0) {
            }
    }

    Waiting m_waiting;
    std::vector<Pad> m_pads;
};
