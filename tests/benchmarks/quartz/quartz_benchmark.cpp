// What drawing costs: the colour field as an image, and a page on the screen.

#include "kit/quartz/geometry.h"
#include "kit/quartz/layer_renderer.h"
#include "kit/quartz/pixels.h"
#include "kit/quartz/screen.h"
#include "kit/quartz/text_runs.h"
#include "kit/seat.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIImage.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <memory>
#include <vector>

namespace {

// The field: 23 columns and 32 rows of tiles, and the black tiles behind it, at scale 2.
constexpr int columns = 23;
constexpr int rows = 32;
constexpr int tile = 16;
constexpr double scale = 2;
constexpr double limit = 0.9;
constexpr CGSize fieldSize{columns * tile, rows* tile};

double whiteness(int row) { return limit * (row / double{rows - 1}); }

void fieldImage(benchmark::State& state) {
    for (auto _ : state) {
        UIGraphicsBeginImageContextWithOptions(fieldSize, /*opaque*/ false, scale);
        const CGContextRef context = UIGraphicsGetCurrentContext();
        for (int i = 0; i < columns; ++i) {
            UIColor::colorWithHue_saturation_brightness_alpha(i / double{columns}, 1, 1, 1)->setFill();
            CGContextFillRect(context, CGRectMake(tile * i, 0, tile, fieldSize.height));
        }
        for (int j = 0; j < rows; ++j) {
            CGContextSetRGBFillColor(context, 1, 1, 1, whiteness(j));
            CGContextFillRect(context, CGRectMake(0, tile * j, fieldSize.width, tile));
        }
        benchmark::DoNotOptimize(UIGraphicsGetImageFromCurrentImageContext());
        UIGraphicsEndImageContext();

        UIGraphicsBeginImageContextWithOptions(fieldSize, /*opaque*/ false, scale);
        const CGContextRef background = UIGraphicsGetCurrentContext();
        CGContextSetGrayFillColor(background, 1, 1);
        CGContextFillRect(background, {{0, 0}, fieldSize});
        CGContextSetGrayFillColor(background, 0, 1);
        for (int j = 0; j < rows; ++j)
            for (int i = 0; i < columns; ++i) CGContextFillRect(background, CGRectMake(tile * i, tile * j, tile, tile));
        benchmark::DoNotOptimize(UIGraphicsGetImageFromCurrentImageContext());
        UIGraphicsEndImageContext();
    }
}

QImage emptyImage() {
    QImage image(static_cast<int>(fieldSize.width * scale), static_cast<int>(fieldSize.height * scale),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(0);
    return image;
}

void sameFillsStraightToTheLibrary(benchmark::State& state) {
    for (auto _ : state) {
        QImage field = emptyImage();
        {
            QPainter painter(&field);
            painter.scale(scale, scale);
            for (int i = 0; i < columns; ++i)
                painter.fillRect(QRectF(tile * i, 0, tile, fieldSize.height),
                                 QColor::fromHsvF(static_cast<float>(i) / columns, 1, 1));
            for (int j = 0; j < rows; ++j)
                painter.fillRect(QRectF(0, tile * j, fieldSize.width, tile),
                                 QColor::fromRgbF(1, 1, 1, static_cast<float>(whiteness(j))));
        }
        benchmark::DoNotOptimize(field.constBits());
        QImage background = emptyImage();
        {
            QPainter painter(&background);
            painter.scale(scale, scale);
            painter.fillRect(QRectF(0, 0, fieldSize.width, fieldSize.height), Qt::white);
            for (int j = 0; j < rows; ++j)
                for (int i = 0; i < columns; ++i) painter.fillRect(QRectF(tile * i, tile * j, tile, tile), Qt::black);
        }
        benchmark::DoNotOptimize(background.constBits());
    }
}

void pixelByPixelFromHue(benchmark::State& state) {
    for (auto _ : state) {
        QImage field = emptyImage();
        for (int y = 0; y < field.height(); ++y)
            for (int x = 0; x < field.width(); ++x)
                field.setPixelColor(
                    x, y,
                    QColor::fromHsvF(static_cast<float>(x) / static_cast<float>(field.width()),
                                     1 - 0.9F * static_cast<float>(y) / static_cast<float>(field.height()), 1));
        QImage background = emptyImage();
        background.fill(Qt::black);
        benchmark::DoNotOptimize(field.constBits());
        benchmark::DoNotOptimize(background.constBits());
    }
}

struct Label : CALayerDelegate {
    void drawLayer_inContext(CALayer& layer, CGContextRef context) override {
        seat::drawText(context, runs, layer.bounds(), seat::TextAlignment::Left, 1);
    }
    std::vector<seat::TextRun> runs;
};

// A settings page: a bar, rows with a title and a value, hairlines, rounded sections.
struct Page {
    Page() {
        seat::setMainScreen({375, 667}, scale);
        root->setFrame({{0, 0}, {375, 667}});
        root->setBackgroundColor(UIColor::colorWithRed_green_blue_alpha(0.94, 0.94, 0.96, 1)->CGColor());
        for (int section = 0; section < 3; ++section) {
            const auto group = CALayer::layer();
            group->setFrame(CGRectMake(15, 64 + section * 200, 345, 176));
            group->setCornerRadius(10);
            group->setMasksToBounds(true);
            group->setBackgroundColor(UIColor::whiteColor()->CGColor());
            root->addSublayer(group);
            for (int row = 0; row < 4; ++row) {
                addText(*group, CGRectMake(15, row * 44, 200, 44), "Controller type " + std::to_string(row));
                addText(*group, CGRectMake(215, row * 44, 115, 44), "Value " + std::to_string(section));
                const auto line = CALayer::layer();
                line->setFrame(CGRectMake(15, row * 44 + 44 - 1 / scale, 330, 1 / scale));
                line->setBackgroundColor(UIColor::lightGrayColor()->CGColor());
                group->addSublayer(line);
            }
        }
    }
    void addText(CALayer& group, CGRect frame, const std::string& text) {
        const auto layer = CALayer::layer();
        layer->setFrame(frame);
        labels.push_back(std::make_unique<Label>());
        labels.back()->runs = seat::textRuns(text, UIFont::systemFontOfSize(17), UIColor::blackColor()->CGColor());
        layer->setDelegate(labels.back().get());
        group.addSublayer(layer);
    }
    void render(CGRect damage) {
        seat::renderLayerTree(*root, {pixels.data(), 750, 1334, std::ptrdiff_t{750} * 4}, scale, {&damage, 1});
    }

    std::shared_ptr<CALayer> root = CALayer::layer();
    std::vector<std::unique_ptr<Label>> labels;
    std::vector<std::uint32_t> pixels = std::vector<std::uint32_t>(std::size_t{750} * 1334);
};

void fullPage(benchmark::State& state) {
    Page page;
    for (auto _ : state) page.render({{0, 0}, {375, 667}});
}

void oneRow(benchmark::State& state) {
    Page page;
    for (auto _ : state) page.render({{15, 108}, {345, 44}});
}

// The field with its black image behind, as a change of brightness repaints it.
void brightnessChange(benchmark::State& state) {
    const auto root = CALayer::layer();
    root->setFrame({{0, 0}, fieldSize});
    UIGraphicsBeginImageContextWithOptions(fieldSize, /*opaque*/ false, scale);
    CGContextFillRect(UIGraphicsGetCurrentContext(), {{0, 0}, fieldSize});
    const auto image = UIGraphicsGetImageFromCurrentImageContext();
    UIGraphicsEndImageContext();
    for (int i = 0; i < 2; ++i) {
        const auto layer = CALayer::layer();
        layer->setFrame({{0, 0}, fieldSize});
        layer->setContents(image->CGImage());
        root->addSublayer(layer);
    }
    const int width = static_cast<int>(fieldSize.width * scale);
    const int height = static_cast<int>(fieldSize.height * scale);
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const CGRect damage{{0, 0}, fieldSize};
    double brightness = 0.4;
    for (auto _ : state) {
        brightness = brightness < 0.9 ? brightness + 0.01 : 0.4;
        root->sublayers()[1]->setOpacity(brightness);
        seat::renderLayerTree(*root, {pixels.data(), width, height, std::ptrdiff_t{4} * width}, scale, {&damage, 1});
    }
}

BENCHMARK(fieldImage)->Unit(benchmark::kMicrosecond);
BENCHMARK(sameFillsStraightToTheLibrary)->Unit(benchmark::kMicrosecond);
BENCHMARK(pixelByPixelFromHue)->Unit(benchmark::kMicrosecond);
BENCHMARK(fullPage)->Unit(benchmark::kMicrosecond);
BENCHMARK(oneRow)->Unit(benchmark::kMicrosecond);
BENCHMARK(brightnessChange)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
