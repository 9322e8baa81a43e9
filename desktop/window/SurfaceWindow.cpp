#include "desktop/window/SurfaceWindow.h"

#include "desktop/window/AccessibilityBridge.h"
#include "desktop/window/StallWatch.h"
#include "kit/quartz/pixels.h"
#include "kit/uikit/WindowScene.h"
#include "kit/uikit/application.h"
#include "platform/foundation/time.h"

#include <QGuiApplication>
#include <QIcon>
#include <QPainter>
#include <QScreen>
#include <QStandardPaths>

namespace {

QRegion region(std::span<const CGRect> pixels, double pixelRatio) {
    QRegion result;
    for (const CGRect& rect : pixels) {
        const QPoint topLeft(static_cast<int>(std::floor(CGRectGetMinX(rect) / pixelRatio)),
                             static_cast<int>(std::floor(CGRectGetMinY(rect) / pixelRatio)));
        const QPoint bottomRight(static_cast<int>(std::ceil(CGRectGetMaxX(rect) / pixelRatio)) - 1,
                                 static_cast<int>(std::ceil(CGRectGetMaxY(rect) / pixelRatio)) - 1);
        result += QRect(topLeft, bottomRight);
    }
    return result;
}

bool holdsPixelsAsWeDo(const QImage& image) {
    return image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32_Premultiplied;
}

// Whether pixels may be sent to a window before the window system has asked for them: it shows the window by then, or
// drops them.
bool showsUnexposed() { return QGuiApplication::platformName() == QLatin1String("xcb"); }

seat::PixelTarget target(QImage& image) {
    return {reinterpret_cast<std::uint32_t*>(image.bits()), image.width(), image.height(),
            static_cast<int>(image.bytesPerLine())};
}

} // namespace

seat::SurfaceWindow::SurfaceWindow(const SceneWindowOptions& options)
    : m_fixedScale(options.scale), m_store(this), m_pacer([this] { frameIsDue(); }) {
    setSurfaceType(QSurface::RasterSurface);
    const double unit = scale() / devicePixelRatio();
    // At least that many points: a picker that has a part of a pixel too little has a column of tiles less.
    const auto toolkitSize = [unit](CGSize points) {
        constexpr double roundingError = 1e-6;
        return QSize(static_cast<int>(std::ceil(points.width * unit - roundingError)),
                     static_cast<int>(std::ceil(points.height * unit - roundingError)));
    };
    const QSize most = screen() ? screen()->availableSize() : toolkitSize(options.size);
    const QSize size = toolkitSize(options.size).boundedTo(most);
    setMinimumSize(toolkitSize(options.minimumSize).boundedTo(size));
    resize(size);
    show();
}

seat::SurfaceWindow::~SurfaceWindow() {
    // Going away is not going to the background.
    m_isInForeground = false;
    if (m_scene) m_scene->setNeedsFrame(nullptr);
}

std::string seat::SurfaceWindow::name(const QScreen* screen) {
    if (!screen) return {};
    const QSize size = screen->size();
    const QString name = QStringLiteral("%1 %2x%3").arg(screen->name()).arg(size.width()).arg(size.height());
    return name.toStdString();
}

double seat::SurfaceWindow::scale() const { return m_fixedScale > 0 ? m_fixedScale : devicePixelRatio(); }

CGSize seat::SurfaceWindow::sizeInPoints() const {
    const double unit = scale() / devicePixelRatio();
    return {width() / unit, height() / unit};
}

void seat::SurfaceWindow::setScene(WindowScene& scene) {
    m_scene = &scene;
    m_surfaceIsWhole = false;
    scene.setNeedsFrame([this] { wantFrame(); });
    // Not exposed yet: what the window system answers meanwhile, it answers to a window that is painted already.
    makeFrame();
}

void seat::SurfaceWindow::wantFrame() {
    m_frameIsWanted = true;
    if (m_scene && isExposed()) m_pacer.request();
}

void seat::SurfaceWindow::frameIsDue() {
    if (m_scene && isExposed()) makeFrame();
}

void seat::SurfaceWindow::makeFrame() {
    const StallWatch::Section painting; // the event loop counts its timers' work as waiting
    const double start = platform::CACurrentMediaTime();
    m_pacer.frameBegins();
    m_frameIsWanted = false;
    fitScene();
    auto damage = m_scene->prepareFrame();
    if (!m_surfaceIsWhole) damage = {{{0, 0}, m_sceneSize}};
    if (!damage.empty()) {
        paint(damage);
        if (framePainted) framePainted(platform::CACurrentMediaTime() - start);
    }
    refreshTitle();
    if (m_scene->isAnimating()) m_pacer.request();
}

// The surface follows the window's size, the scene the surface's.
void seat::SurfaceWindow::fitScene() {
    if (m_store.size() != size()) {
        m_store.resize(size());
        m_surfaceIsWhole = false;
    }
    const CGSize points = sizeInPoints();
    if (points == m_sceneSize && scale() == m_sceneScale) return;
    m_sceneSize = points;
    m_sceneScale = scale();
    m_surfaceIsWhole = false;
    m_scene->resize(m_sceneSize, m_sceneScale);
    if (screen()) m_pacer.setRefreshRate(screen()->refreshRate());
}

CGRect seat::SurfaceWindow::alignedToPixels(CGRect points) const {
    const double left = std::floor(CGRectGetMinX(points) * m_sceneScale);
    const double top = std::floor(CGRectGetMinY(points) * m_sceneScale);
    const double right = std::ceil(CGRectGetMaxX(points) * m_sceneScale);
    const double bottom = std::ceil(CGRectGetMaxY(points) * m_sceneScale);
    return {{left, top}, {right - left, bottom - top}};
}

void seat::SurfaceWindow::paint(std::span<const CGRect> damage) {
    std::vector<CGRect> pixels;
    for (const CGRect& rect : damage) pixels.push_back(alignedToPixels(rect));
    const QRegion changed = region(pixels, devicePixelRatio()) & QRect(QPoint(), size());
    if (changed.isEmpty()) return;

    // The surface may hand out cleared pixels, whole ones: all of them have to be painted.
    for (CGRect& rect : pixels)
        rect = {{rect.origin.x / m_sceneScale, rect.origin.y / m_sceneScale},
                {rect.size.width / m_sceneScale, rect.size.height / m_sceneScale}};
    m_store.beginPaint(changed);
    paintSurface(pixels);
    m_store.endPaint();
    m_surfaceIsWhole = true;
    if (isExposed() || showsUnexposed()) m_store.flush(changed);
    // Once there is something to see.
    if (!std::exchange(m_hasIcon, true))
        QMetaObject::invokeMethod(
            this, [this] { showIcon(); }, Qt::QueuedConnection);
}

void seat::SurfaceWindow::paintSurface(std::span<const CGRect> damage) {
    auto* const surface = m_store.paintDevice();
    if (!surface) return;
    if (surface->devType() == QInternal::Image)
        if (auto* const image = static_cast<QImage*>(surface); holdsPixelsAsWeDo(*image)) {
            m_scene->paint(target(*image), damage);
            return;
        }

    const QSize pixelSize(surface->width(), surface->height());
    const CGRect all{{0, 0}, m_sceneSize};
    if (m_picture.size() != pixelSize) {
        m_picture = QImage(pixelSize, QImage::Format_RGB32);
        m_picture.setDevicePixelRatio(surface->devicePixelRatio());
        damage = {&all, 1};
    }
    m_scene->paint(target(m_picture), damage);
    QPainter painter(surface);
    painter.drawImage(QPointF(), m_picture);
}

bool seat::SurfaceWindow::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::Close:
        event->ignore();
        if (closed) closed();
        return true;
    case QEvent::WindowStateChange:
    case QEvent::Hide:
        noteVisibility();
        break;
    default:
        break;
    }
    return QWindow::event(event);
}

void seat::SurfaceWindow::exposeEvent(QExposeEvent*) {
    noteVisibility();
    if (!isExposed()) return m_pacer.cancel();
    if (!m_scene) return;
    // What was covered is still in the surface, unless the window has changed meanwhile.
    if (m_surfaceIsWhole && m_store.size() == size() && m_sceneScale == scale())
        m_store.flush(QRect(QPoint(), size()));
    else
        frameIsDue();
    if (m_frameIsWanted || m_scene->isAnimating()) wantFrame();
}

void seat::SurfaceWindow::resizeEvent(QResizeEvent*) { wantFrame(); }

void seat::SurfaceWindow::noteVisibility() {
    const bool isInForeground = isExposed() && isVisible() && !(windowStates() & Qt::WindowMinimized);
    if (isInForeground == m_isInForeground) return;
    m_isInForeground = isInForeground;
    if (isInForeground) return;
    cancelTouches();
    applicationDidEnterBackground();
}

void seat::SurfaceWindow::setTitleSource(std::function<std::string()> source) {
    m_titleSource = std::move(source);
    refreshTitle();
}

// Other window systems than X find the icon by the program's desktop entry. The picture that was installed is taken,
// not the toolkit's search for it: that reads the index of each icon theme, which takes longer than all else until the
// first frame. Desktops with a picture of their own for the program find it by the entry, here too.
void seat::SurfaceWindow::showIcon() {
    if (QGuiApplication::platformName() != QLatin1String("xcb")) return;
    const QString name = QLatin1String("icons/hicolor/128x128/apps/") + QGuiApplication::desktopFileName();
    const QString file = QStandardPaths::locate(QStandardPaths::GenericDataLocation, name + QLatin1String(".png"));
    if (!file.isEmpty()) setIcon(QIcon(file));
}

void seat::SurfaceWindow::bringToFront(const std::string& activationToken) {
    // The toolkit takes the token from there.
    static constexpr const char* variable = "XDG_ACTIVATION_TOKEN";
    if (!activationToken.empty()) qputenv(variable, QByteArray::fromStdString(activationToken));
    setWindowStates(windowStates() & ~Qt::WindowMinimized);
    raise();
    requestActivate();
    qunsetenv(variable);
}

void seat::SurfaceWindow::refreshTitle() {
    if (!m_titleSource) return;
    if (const auto text = QString::fromStdString(m_titleSource()); text != title()) setTitle(text);
}
