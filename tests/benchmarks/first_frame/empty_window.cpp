// What a window costs at least: the toolkit, a raster window, one white frame. The application is held against it.

#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>

namespace {

class EmptyWindow final : public QRasterWindow {
protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(0, 0, width(), height(), Qt::white); }
};

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    EmptyWindow window;
    window.resize(375, 667);
    window.show();
    return QGuiApplication::exec();
}
