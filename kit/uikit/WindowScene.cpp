#include "kit/uikit/WindowScene.h"

#include "kit/quartz/LayerInternals.h"
#include "kit/quartz/animation.h"
#include "kit/quartz/layer_renderer.h"
#include "kit/quartz/screen.h"
#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/ViewInternals.h"
#include "kit/uikit/WindowInternals.h"
#include "kit/uikit/damage.h"
#include "kit/uikit/focus_ring.h"
#include "kit/uikit/reachable.h"
#include "platform/foundation/time.h"
#include "platform/uikit/UIApplication.h"

#include <utility>

namespace seat {

namespace {

void layOutTreeAnew(UIView& view) {
    view.setNeedsLayout();
    for (const auto& subview : view.subviews()) layOutTreeAnew(*subview);
}

} // namespace

WindowScene::WindowScene(CGSize points, double scale) : m_scale(scale) {
    setMainScreen(points, scale);
    m_window = UIWindow::alloc()->initWithFrame({{0, 0}, points});
    LayerInternals::setHost(*m_window->layer(), this);
    auto& state = WindowInternals::state(*m_window);
    state.requestFrame = [this] { requestFrame(); };
    state.frameSteps = &m_steps;
    UIApplication::sharedApplication()->setKeyWindow(m_window);
    layerNeedsRepaint(m_window->bounds());
}

WindowScene::~WindowScene() {
    // Others may hold the window; it is not shown any more.
    auto& state = WindowInternals::state(*m_window);
    state.requestFrame = nullptr;
    state.frameSteps = nullptr;
    LayerInternals::setHost(*m_window->layer(), nullptr);
    m_window->setRootViewController(nullptr);
}

CGSize WindowScene::size() const { return m_window->bounds().size; }

void WindowScene::resize(CGSize points, double scale) {
    // Lines are a pixel wide, and texts as high as their pixels: all of them have other sizes now.
    if (scale != m_scale) layOutTreeAnew(*m_window);
    m_scale = scale;
    setMainScreen(points, scale);
    m_window->setFrame({{0, 0}, points});
    layerNeedsRepaint(m_window->bounds());
}

void WindowScene::layOutAnew() {
    layOutTreeAnew(*m_window);
    repaint();
}

void WindowScene::setNeedsFrame(std::function<void()> callback) {
    m_needsFrame = std::move(callback);
    if (m_frameRequested && m_needsFrame) m_needsFrame();
}

void WindowScene::requestFrame() {
    if (std::exchange(m_frameRequested, true)) return;
    if (m_needsFrame) m_needsFrame();
}

void WindowScene::layerNeedsRepaint(CGRect rect) {
    addDamage(m_damage, rect, m_window->bounds());
    requestFrame();
}

void WindowScene::animationsStarted() {
    m_animates = true;
    requestFrame();
}

std::vector<CGRect> WindowScene::prepareFrame() {
    // What asks for a frame from here on is taken up in this one.
    m_frameRequested = true;
    m_frameTime = platform::CACurrentMediaTime();
    m_steps.run(m_frameTime);
    m_animates = advanceAnimations(m_frameTime);
    m_window->layoutIfNeeded();
    const bool isLaidOut = !ViewInternals::needsLayout(*m_window);
    placeFocusRing();
    if (m_accessibility) m_accessibility->update();
    m_frameRequested = false;
    // Whoever was told of the frame has changed something; a view that never stops asking gets no frame for it.
    if (isLaidOut && ViewInternals::needsLayout(*m_window)) requestFrame();
    return std::exchange(m_damage, {});
}

void WindowScene::paint(const PixelTarget& target, std::span<const CGRect> damage) {
    renderLayerTree(*m_window->layer(), target, m_scale, damage);
}

AccessibilityTree& WindowScene::accessibility() {
    if (!m_accessibility) m_accessibility = std::make_unique<AccessibilityTree>(m_window);
    return *m_accessibility;
}

void WindowScene::placeFocusRing() {
    const auto focused = m_window->focusedView();
    const bool isShown = focused && isReachable(*focused) && WindowInternals::state(*m_window).focusIsShown;
    const CGRect ring = isShown ? focusRingRect(*focused) : CGRectNull;
    if (CGRectIsNull(ring)) {
        if (m_focusRing) m_focusRing->removeFromSuperlayer();
        return;
    }
    if (!m_focusRing) m_focusRing = makeFocusRing();
    CALayer& root = *m_window->layer();
    if (root.sublayers().empty() || root.sublayers().back() != m_focusRing) root.addSublayer(m_focusRing);
    if (m_focusRing->frame() != ring) m_focusRing->setFrame(ring);
    const double radius = focusRingRadius(*focused);
    if (m_focusRing->cornerRadius() != radius) m_focusRing->setCornerRadius(radius);
}

} // namespace seat
