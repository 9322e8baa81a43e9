#pragma once

#include "kit/quartz/LayerHost.h"
#include "kit/seat.h"
#include "kit/uikit/FrameSteps.h"
#include "kit/uikit/UIWindow.h"

#include <functional>
#include <memory>
#include <span>
#include <vector>

class CALayer;

namespace seat {

class AccessibilityTree;

// A window of the interface and the frames that show it, without knowing what shows them. Main thread only.
//
// Whoever shows the scene: calls prepareFrame() when it was asked for a frame, paints the damage it gives, and asks for
// the next frame by itself as long as isAnimating().
class WindowScene final : public LayerHost {
public:
    WindowScene(CGSize points, double scale);
    ~WindowScene() override;
    WindowScene(const WindowScene&) = delete;
    WindowScene& operator=(const WindowScene&) = delete;

    const std::shared_ptr<UIWindow>& window() const { return m_window; }
    CGSize size() const;
    double scale() const { return m_scale; }
    void resize(CGSize points, double scale);
    // All of it: its colours are others now.
    void repaint() { layerNeedsRepaint(m_window->bounds()); }
    // All of it: its texts have another size or another face now.
    void layOutAnew();

    // Called once when there is something to do for a frame; not again before the next prepareFrame().
    void setNeedsFrame(std::function<void()> callback);
    bool isAnimating() const { return m_animates || !m_steps.isEmpty(); }
    // Brings layout, animations and movements to now. What is to be painted, in points; empty: nothing.
    std::vector<CGRect> prepareFrame();
    void paint(const PixelTarget& target, std::span<const CGRect> damage);

    // What assistive technology sees; made at the first call, and from then on kept up with every frame.
    AccessibilityTree& accessibility();

    void layerNeedsRepaint(CGRect inRootPoints) override;
    void animationsStarted() override;

private:
    void requestFrame();
    void placeFocusRing();

    std::shared_ptr<UIWindow> m_window;
    std::shared_ptr<CALayer> m_focusRing;
    std::unique_ptr<AccessibilityTree> m_accessibility;
    FrameSteps m_steps;
    std::function<void()> m_needsFrame;
    std::vector<CGRect> m_damage;
    double m_scale = 1;
    double m_frameTime = 0;
    bool m_frameRequested = false;
    bool m_animates = false;
};

} // namespace seat
