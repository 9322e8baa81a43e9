// A window without anything in it, for the drag-step benchmark. With "repaint" as its argument it paints, at each move
// of the pointer, the rectangles that a drag on the picker's map changes; otherwise it only takes the events.

#include <QBackingStore>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWindow>

#include <cstdio>
#include <cstring>

namespace {

class BareWindow final : public QWindow {
public:
    explicit BareWindow(bool repaints) : m_store(this), m_repaints(repaints) {
        setGeometry(0, 0, 375, 623);
        m_store.resize({375, 623});
    }

protected:
    void exposeEvent(QExposeEvent*) override { paint(QRect(0, 0, 375, 623)); }
    // The picker's cursor stands in the middle of its tile. In the same tile only what is drawn by code is drawn again:
    // the swatch, and the cursor's own square; else the large cursor's places before and after, the slider's bar and
    // the small cursor's disc on it, too.
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!m_repaints) return;
        constexpr int tile = 16;
        const QPoint field(0, 111);
        const QPoint at = (event->position().toPoint() - field) / tile * tile + field;
        const QPoint middle(tile / 2, tile / 2);
        const QRect swatch(8, 13, 66, 85);
        if (at == m_last) {
            paint(QRegion(QRect(at + middle - QPoint(14, 14), QSize(28, 28))) | swatch);
            return;
        }
        const auto cursor = [&](QPoint place) { return QRect(place + middle - QPoint(23, 23), QSize(46, 46)); };
        paint(QRegion(cursor(m_last)) | cursor(at) | swatch | QRect(83, 68, 283, 12) | QRect(85, 65, 18, 18));
        m_last = at;
    }

private:
    void paint(const QRegion& region) {
        m_store.beginPaint(region);
        {
            QPainter painter(m_store.paintDevice());
            for (const QRect& rect : region) painter.fillRect(rect, QColor(m_shade, 128, 255 - m_shade));
        }
        m_store.endPaint();
        m_store.flush(region);
        m_shade = (m_shade + 1) % 256;
    }

    QBackingStore m_store;
    QPoint m_last;
    int m_shade = 0;
    bool m_repaints;
};

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    BareWindow window(argc > 1 && std::strcmp(argv[1], "repaint") == 0);
    window.show();
    QTimer::singleShot(500, [] {
        std::printf("0 111 368 512\n");
        std::fflush(stdout);
    });
    return QGuiApplication::exec();
}
