#pragma once

// The toolkit's window behind a SceneWindow: a raster surface, and the place where the toolkit's events become ours.

#include "desktop/window/FramePacer.h"
#include "desktop/window/KeyTranslator.h"
#include "desktop/window/SceneWindow.h"

#include <QBackingStore>
#include <QImage>
#include <QWindow>

#include <set>
#include <span>
#include <vector>

namespace seat {

class AccessibilityBridge;

class SurfaceWindow final : public QWindow {
public:
    explicit SurfaceWindow(const SceneWindowOptions& options);
    ~SurfaceWindow() override;

    // By which a screen is known again. Empty for nullptr.
    static std::string name(const QScreen* screen);

    CGSize sizeInPoints() const;
    double scale() const; // pixels a point

    void setScene(WindowScene& scene);

    void setTitleSource(std::function<std::string()> title);
    void bringToFront(const std::string& activationToken);
    std::function<void()> closed;
    std::function<void(WindowShortcut)> shortcutPressed;
    std::function<void(double seconds)> framePainted;

    QAccessibleInterface* accessibleRoot() const override;
    // The root's node, for the toolkit to own; nullptr while there is no scene.
    QAccessibleInterface* makeAccessibleRoot();

protected:
    bool event(QEvent* event) override;
    void exposeEvent(QExposeEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void touchEvent(QTouchEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void wantFrame();
    void frameIsDue();
    void makeFrame();
    void refreshAccessibility();
    void fitScene();
    void paint(std::span<const CGRect> damage);
    void paintSurface(std::span<const CGRect> damage);
    CGRect alignedToPixels(CGRect points) const;
    void noteVisibility();
    void refreshTitle();
    void showIcon();

    CGPoint toPoints(QPointF position) const;
    void touchBegins(long identifier, CGPoint location);
    void touchMoves(long identifier, CGPoint location);
    void touchEnds(long identifier, CGPoint location);
    void cancelTouches();
    void deliverKey(const QKeyEvent& event, bool isDown);
    bool takeShortcut(const QKeyEvent& event);

    WindowScene* m_scene = nullptr; // non-owning
    std::function<std::string()> m_titleSource;
    double m_fixedScale; // 0: the screen's
    QBackingStore m_store;
    QImage m_picture; // in between, where the surface has another pixel format
    FramePacer m_pacer;
    KeyTranslator m_keys;
    std::set<long> m_touches;
    CGSize m_sceneSize;
    double m_sceneScale = 0;
    bool m_frameIsWanted = false;  // something has changed since the last frame
    bool m_surfaceIsWhole = false; // what was painted last is still in the surface
    bool m_isRefreshing = false;
    bool m_isInForeground = false;
    bool m_hasIcon = false;
    std::unique_ptr<AccessibilityBridge> m_accessibility; // once assistive technology has asked
};

} // namespace seat
