// A game that knows gamepads by the wide-spread library alone, with no file that describes them. Says in a line what it
// hears: "pad" and "no pad" as one comes and goes, "dpup" and "dpup rest" as a button of it is pressed and let go.
#include <SDL.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main() {
    ::setenv("SDL_VIDEODRIVER", "dummy", 1);
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    if (SDL_Init(SDL_INIT_GAMECONTROLLER) != 0) {
        std::printf("%s\n", SDL_GetError());
        return 1;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::puts("looking for a pad");
    for (;;) {
        SDL_Event event;
        if (!SDL_WaitEvent(&event)) return 1;
        switch (event.type) {
        case SDL_CONTROLLERDEVICEADDED:
            if (SDL_GameControllerOpen(event.cdevice.which)) std::puts("pad");
            break;
        case SDL_CONTROLLERDEVICEREMOVED:
            SDL_GameControllerClose(SDL_GameControllerFromInstanceID(event.cdevice.which));
            std::puts("no pad");
            break;
        case SDL_CONTROLLERBUTTONDOWN:
        case SDL_CONTROLLERBUTTONUP:
            std::printf(
                "%s%s\n",
                SDL_GameControllerGetStringForButton(static_cast<SDL_GameControllerButton>(event.cbutton.button)),
                event.type == SDL_CONTROLLERBUTTONUP ? " rest" : "");
            break;
        case SDL_QUIT:
            return 0;
        default:
            break;
        }
    }
}
