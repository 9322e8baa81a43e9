// Reloading a settings page, and the table below it alone.

#include "kit/uikit/WindowScene.h"
#include "platform/settings_framework/PSListController.h"
#include "platform/uikit/UINavigationController.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>

namespace {

// Rows of each kind in turn, made in code.
class RowsPage : public PSListController {
    NS_CLASS(RowsPage)
public:
    std::shared_ptr<RowsPage> initWithCount(long count) {
        m_count = count;
        return PSListController::init() ? self(this) : nullptr;
    }
    const PSSpecifierList& specifiers() override {
        if (_specifiers) return *_specifiers;
        _specifiers.emplace();
        for (long i = 0; i < m_count; ++i) {
            const PSCellType kind = i % 8 == 0   ? PSCellType::Group
                                    : i % 2 == 0 ? PSCellType::Button
                                                 : PSCellType::StaticText;
            _specifiers->push_back(PSSpecifier::preferenceSpecifierNamed_target_set_get_detail_cell_edit(
                "Row " + std::to_string(i), shared_from_this(), SEL(), SEL(), nullptr, kind, nullptr));
        }
        return *_specifiers;
    }

private:
    long m_count = 0;
};

NS_CLASS_IMPLEMENTATION(RowsPage, PSListController)

void reloadPage(benchmark::State& state) {
    seat::WindowScene scene({375, 667}, 2);
    const auto page = RowsPage::alloc()->initWithCount(state.range(0));
    scene.window()->setRootViewController(UINavigationController::alloc()->initWithRootViewController(page));
    scene.prepareFrame();
    for ([[maybe_unused]] auto _ : state) {
        page->reloadSpecifiers();
        scene.prepareFrame();
    }
    state.SetComplexityN(state.range(0));
    scene.window()->setRootViewController(nullptr);
}
BENCHMARK(reloadPage)->Arg(20)->Arg(100)->Arg(1000)->Arg(10'000)->Unit(benchmark::kMicrosecond)->Complexity();

void reloadTable(benchmark::State& state) {
    seat::WindowScene scene({375, 667}, 2);
    const auto page = RowsPage::alloc()->initWithCount(state.range(0));
    scene.window()->setRootViewController(page);
    scene.prepareFrame();
    for ([[maybe_unused]] auto _ : state) {
        page->table()->reloadData();
        scene.prepareFrame();
    }
    state.SetComplexityN(state.range(0));
    scene.window()->setRootViewController(nullptr);
}
BENCHMARK(reloadTable)->Arg(20)->Arg(100)->Arg(1000)->Arg(10'000)->Unit(benchmark::kMicrosecond)->Complexity();

void scrollThroughTenThousandRows(benchmark::State& state) {
    seat::WindowScene scene({375, 667}, 2);
    const auto page = RowsPage::alloc()->initWithCount(10'000);
    scene.window()->setRootViewController(page);
    scene.prepareFrame();
    double offset = 0;
    for ([[maybe_unused]] auto _ : state) {
        offset += 100;
        if (offset > 400'000) offset = 0;
        page->table()->setContentOffset({0, offset});
        scene.prepareFrame();
    }
    scene.window()->setRootViewController(nullptr);
}
BENCHMARK(scrollThroughTenThousandRows)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
