// A widget toolkit's own colour dialog, for the drag-step benchmark. Says where its colour field is: "x y width
// height".

#include <QApplication>
#include <QColorDialog>
#include <QTimer>

#include <cstdio>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QColorDialog dialog;
    dialog.setOption(QColorDialog::DontUseNativeDialog);
    dialog.move(0, 0);
    dialog.show();
    QTimer::singleShot(500, &dialog, [&dialog] {
        for (const QWidget* widget : dialog.findChildren<QWidget*>())
            if (QByteArray(widget->metaObject()->className()).endsWith("QColorPicker")) {
                const QPoint at = widget->mapToGlobal(QPoint(0, 0));
                std::printf("%d %d %d %d\n", at.x(), at.y(), widget->width(), widget->height());
                std::fflush(stdout);
            }
    });
    return QApplication::exec();
}
