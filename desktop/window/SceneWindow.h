#pragma once

// A window of the desktop that shows a scene and feeds it touches and keys.

#include "platform/quartz/CGGeometry.h"

#include <functional>
#include <memory>
#include <string>

namespace seat {

class WindowScene;

// What keys that every program of a desktop knows ask of the application.
enum class WindowShortcut { Quit, Help };

struct SceneWindowOptions {
    CGSize size{384, 667};        // points; never larger than the screen
    CGSize minimumSize{320, 240}; // points
    double scale = 0;             // pixels a point; 0: the screen's
};

// Main thread only, with a Toolkit that has a display. The mouse's main button is a finger; a window that is minimised
// or hidden posts UIApplicationDidEnterBackgroundNotification. Paints what has changed, when something has.
class SceneWindow {
public:
    // The window system is asked for the window at once, so that it can work on it while the scene is being made.
    explicit SceneWindow(const SceneWindowOptions& options);
    ~SceneWindow();
    SceneWindow(const SceneWindow&) = delete;
    SceneWindow& operator=(const SceneWindow&) = delete;

    // Where a window comes up that is made now: the screen's name and its size. Empty without one.
    static std::string screenForNew();

    CGSize size() const; // points, as they are now
    // Where it is, as above; empty while it has a size that the user did not give it: maximised, full-screen,
    // minimised.
    std::string screenOfOwnSize() const;
    double scale() const;

    // Non-owning: the scene outlives the window.
    void setScene(WindowScene& scene);
    // Asked now, and after each frame.
    void setTitleSource(std::function<std::string()> title);
    // The user wants the window gone; it stays until it is destroyed.
    void setCloseHandler(std::function<void()> closed);
    // Ctrl+Q and Ctrl+W, and F1, by the user's layout. Not while a row waits for a key, which takes every one.
    void setShortcutHandler(std::function<void(WindowShortcut)> pressed);
    // To where the user sees it, and gives it the keyboard, as far as the desktop allows. The token, which may be
    // empty, is what the desktop's launcher gave to the program that a user has started.
    void bringToFront(const std::string& activationToken);
    // Runs each time something was painted, with the seconds since the frame was begun.
    void setFrameHandler(std::function<void(double seconds)> painted);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace seat
