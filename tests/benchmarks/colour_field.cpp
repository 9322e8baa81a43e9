// Building the colour field of a large phone, beside the same fills given straight to the drawing library and beside a
// picture that is reckoned pixel by pixel.

#include "colourpicker/ZKColorMapView.h"
#include "kit/quartz/screen.h"
#include "platform/uikit/UIImage.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

namespace {

constexpr int width = 368;
constexpr int height = 512;
constexpr int tile = 16;
constexpr int scale = 2;
constexpr int columns = width / tile;
constexpr int rows = height / tile;
constexpr double limit = 0.9f;

void ours(benchmark::State& state) {
    seat::setMainScreen({375, 667}, scale);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            ZKColorMapView::colorMapImageWithSize_tileSize_saturationUpperLimit({width, height}, tile, limit));
        benchmark::DoNotOptimize(ZKColorMapView::backgroundImageWithSize_tileSize({width, height}, tile));
    }
}

QImage emptyImage() {
    QImage image(width * scale, height * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

void drawingLibrary(benchmark::State& state) {
    for (auto _ : state) {
        QImage field = emptyImage();
        {
            QPainter painter(&field);
            painter.scale(scale, scale);
            for (int i = 0; i < columns; ++i)
                painter.fillRect(QRectF(i * tile, 0, tile, height), QColor::fromHsvF(float(i) / columns, 1, 1));
            for (int j = 0; j < rows; ++j)
                painter.fillRect(QRectF(0, j * tile, width, tile),
                                 QColor::fromRgbF(1, 1, 1, float(limit * j / (rows - 1))));
        }
        QImage background = emptyImage();
        {
            QPainter painter(&background);
            painter.scale(scale, scale);
            painter.fillRect(QRectF(0, 0, width, height), Qt::white);
            for (int j = 0; j < rows; ++j)
                for (int i = 0; i < columns; ++i) painter.fillRect(QRectF(i * tile, j * tile, tile, tile), Qt::black);
        }
        benchmark::DoNotOptimize(field);
        benchmark::DoNotOptimize(background);
    }
}

void pixelByPixel(benchmark::State& state) {
    for (auto _ : state) {
        QImage field(width * scale, height * scale, QImage::Format_RGB32);
        for (int y = 0; y < field.height(); ++y) {
            const double saturation = 1 - limit * (y / (tile * scale)) / (rows - 1);
            for (int x = 0; x < field.width(); ++x)
                field.setPixelColor(x, y, QColor::fromHsvF(float(x / (tile * scale)) / columns, float(saturation), 1));
        }
        benchmark::DoNotOptimize(field);
    }
}

BENCHMARK(ours)->Unit(benchmark::kMicrosecond);
BENCHMARK(drawingLibrary)->Unit(benchmark::kMicrosecond);
BENCHMARK(pixelByPixel)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
}
