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
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!m_repaints) return;
        const QPoint now = event->position().toPoint();
        const QRegion cursors =
            QRegion(QRect(m_last - QPoint(23, 23), QSize(46, 46))) | QRect(now - QPoint(23, 23), QSize(46, 46));
        m_last = now;
        paint(cursors | QRect(8, 13, 66, 84) | QRect(63, 54, 312, 31));
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
