#include "desktop/window/SceneWindow.h"

#include "desktop/window/StallWatch.h"
#include "desktop/window/SurfaceWindow.h"

#include <QGuiApplication>

struct seat::SceneWindow::State {
    explicit State(const SceneWindowOptions& options) : window(options) {}
    SurfaceWindow window;
};

// Its making and its going are asked of the display, outside the event loop.
seat::SceneWindow::SceneWindow(const SceneWindowOptions& options) {
    const StallWatch::Section making;
    m_state = std::make_unique<State>(options);
}

seat::SceneWindow::~SceneWindow() {
    const StallWatch::Section going;
    m_state.reset();
}

std::string seat::SceneWindow::screenForNew() { return SurfaceWindow::name(QGuiApplication::primaryScreen()); }

std::string seat::SceneWindow::screenOfOwnSize() const {
    const auto& window = m_state->window;
    return window.windowStates() == Qt::WindowNoState ? SurfaceWindow::name(window.screen()) : std::string();
}

CGSize seat::SceneWindow::size() const { return m_state->window.sizeInPoints(); }
double seat::SceneWindow::scale() const { return m_state->window.scale(); }
void seat::SceneWindow::setScene(WindowScene& scene) { m_state->window.setScene(scene); }

void seat::SceneWindow::setTitleSource(std::function<std::string()> title) {
    m_state->window.setTitleSource(std::move(title));
}
void seat::SceneWindow::setCloseHandler(std::function<void()> closed) { m_state->window.closed = std::move(closed); }
void seat::SceneWindow::setShortcutHandler(std::function<void(WindowShortcut)> pressed) {
    m_state->window.shortcutPressed = std::move(pressed);
}
void seat::SceneWindow::bringToFront(const std::string& activationToken) {
    m_state->window.bringToFront(activationToken);
}
void seat::SceneWindow::setFrameHandler(std::function<void(double seconds)> painted) {
    m_state->window.framePainted = std::move(painted);
}
