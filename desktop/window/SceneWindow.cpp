#include "host/window/scene_window.h"

#include "host/window/surface_window.h"

struct host::SceneWindow::State {
    explicit State(const SceneWindowOptions& options) : window(options) {}
    SurfaceWindow window;
};

host::SceneWindow::SceneWindow(const SceneWindowOptions& options) : m_state(std::make_unique<State>(options)) {}
host::SceneWindow::~SceneWindow() = default;

CGSize host::SceneWindow::size() const { return m_state->window.sizeInPoints(); }
double host::SceneWindow::scale() const { return m_state->window.scale(); }
void host::SceneWindow::setScene(WindowScene& scene) { m_state->window.setScene(scene); }

void host::SceneWindow::setTitleSource(std::function<std::string()> title) {
    m_state->window.setTitleSource(std::move(title));
}
void host::SceneWindow::setCloseHandler(std::function<void()> closed) { m_state->window.closed = std::move(closed); }
void host::SceneWindow::setFrameHandler(std::function<void(double seconds)> painted) {
    m_state->window.framePainted = std::move(painted);
}
