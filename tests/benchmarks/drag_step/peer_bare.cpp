// A window without anything in it, for the drag-step benchmark. With "repaint" as its argument it fills, at each move
// of the pointer, the rectangles that a drag on the picker's map changes; with "picture" it paints in them what the
// picker shows there, by the toolkit's painter alone; otherwise it only takes the events.

#include <QBackingStore>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace {

class BareWindow final : public QWindow {
public:
    enum class Does { Nothing, Fill, Picture };

    explicit BareWindow(Does does) : m_store(this), m_does(does), m_field(368, 512, QImage::Format_RGB32) {
        setGeometry(0, 0, 375, 623);
        m_store.resize({375, 623});
        for (int y = 0; y < m_field.height(); ++y)
            for (int x = 0; x < m_field.width(); ++x) m_field.setPixelColor(x, y, colorAt({x, y}));
    }

protected:
    void exposeEvent(QExposeEvent*) override { paint(QRect(0, 0, 375, 623)); }
    // The picker's cursor stands in the middle of its tile. In the same tile only what is drawn by code is drawn again:
    // the swatch, and the cursor's own square; else the large cursor's places before and after, the slider's bar and
    // the small cursor's disc on it, too.
    void mouseMoveEvent(QMouseEvent* event) override {
        if (m_does == Does::Nothing) return;
        constexpr int tile = 16;
        const QPoint field(0, 111);
        const QPoint at = (event->position().toPoint() - field) / tile * tile + field;
        const QPoint middle(tile / 2, tile / 2);
        const QRect swatch(8, 13, 66, 85);
        m_color = colorAt(at - field);
        if (at == m_last) {
            paint(QRegion(QRect(at + middle - QPoint(14, 14), QSize(28, 28))) | swatch);
            return;
        }
        const auto cursor = [&](QPoint place) { return QRect(place + middle - QPoint(23, 23), QSize(46, 46)); };
        const QPoint before = std::exchange(m_last, at);
        paint(QRegion(cursor(before)) | cursor(at) | swatch | QRect(83, 68, 283, 12) | QRect(85, 65, 18, 18));
    }

private:
    static QColor colorAt(QPoint inField) {
        return QColor::fromHsvF(static_cast<float>(std::clamp(inField.x() / 16, 0, 22)) / 23,
                                1 - 0.9F * static_cast<float>(std::clamp(inField.y() / 16, 0, 31)) / 31, 0.99F);
    }

    void paintCursor(QPainter& painter, QPointF middle, double radius, double colorRadius) const {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(255, 255, 255, 178));
        painter.drawEllipse(middle, radius, radius);
        painter.setPen(QPen(QColor(166, 166, 166), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(middle, radius - 0.5, radius - 0.5);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_color);
        painter.drawEllipse(middle, colorRadius, colorRadius);
    }

    void paintPicture(QPainter& painter, const QRegion& region) const {
        painter.setClipRegion(region);
        painter.fillRect(region.boundingRect(), Qt::white);
        painter.drawImage(0, 111, m_field);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath top;
        top.moveTo(8, 79);
        top.lineTo(8, 17);
        top.arcTo(8, 13, 8, 8, 180, -90);
        top.lineTo(70, 13);
        top.arcTo(66, 13, 8, 8, 90, -90);
        top.lineTo(74, 79);
        painter.fillPath(top, m_color);
        painter.setPen(QPen(QColor(170, 170, 170), 1));
        painter.drawRoundedRect(QRectF(8.5, 13.5, 65, 84), 3, 3);
        painter.setPen(QColor(128, 128, 128));
        QFont font = painter.font();
        font.setPixelSize(12);
        painter.setFont(font);
        painter.drawText(QRectF(8, 79, 66, 18), Qt::AlignCenter, m_color.name());
        QLinearGradient gradient(83, 0, 366, 0);
        gradient.setColorAt(0, QColor::fromHsvF(m_color.hueF(), m_color.saturationF(), 1));
        gradient.setColorAt(1, QColor::fromHsvF(m_color.hueF(), m_color.saturationF(), 0.4F));
        painter.setPen(QPen(QColor(170, 170, 170), 1));
        painter.setBrush(gradient);
        painter.drawRoundedRect(QRectF(83.5, 68.5, 282, 11), 5.5, 5.5);
        paintCursor(painter, {94, 74}, 14, 8.5);
        paintCursor(painter, m_last + QPoint(8, 8), 22.4, 11.9);
    }

    void paint(const QRegion& region) {
        m_store.beginPaint(region);
        {
            QPainter painter(m_store.paintDevice());
            if (m_does == Does::Picture)
                paintPicture(painter, region);
            else
                for (const QRect& rect : region) painter.fillRect(rect, QColor(m_shade, 128, 255 - m_shade));
        }
        m_store.endPaint();
        m_store.flush(region);
        m_shade = (m_shade + 1) % 256;
    }

    QBackingStore m_store;
    QPoint m_last;
    int m_shade = 0;
    Does m_does;
    QImage m_field;
    QColor m_color;
};

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    const std::string_view does = argc > 1 ? argv[1] : "";
    BareWindow window(does == "picture"   ? BareWindow::Does::Picture
                      : does == "repaint" ? BareWindow::Does::Fill
                                          : BareWindow::Does::Nothing);
    window.show();
    QTimer::singleShot(500, [] {
        std::printf("0 111 368 512\n");
        std::fflush(stdout);
    });
    return QGuiApplication::exec();
}
