// What a first frame, a row, a key and a step of a drag take: counted, not timed, so that it is the same on every
// machine. Each limit is a fifth above what it takes; who needs more looks for the reason, or says it beside a new
// limit. Counts every allocation of the main thread, so it is a program alone.

#include "keymap/JVNKeymapViewController.h"

#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/ZKColorPickerView.h"
#include "kit/quartz/pixels.h"
#include "kit/uikit/UIWindow.h"
#include "platform/foundation/time.h"
#include "platform/settings_framework/PSTableCell.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIKeyEvent.h"
#include "tests/colourpicker/PickerScene.h"
#include "tests/settings/PageTest.h"
#include "tests/support/counted_allocations.h"

namespace {

struct Work {
    long allocations = 0;
    double points = 0; // painted, square
};

// Of what is done and of the frame that shows it.
class Counter {
public:
    explicit Counter(seat::WindowScene& scene) : m_scene(scene), m_pixels(pixelCount()) {}

    template <class Do> Work of(Do&& act) {
        const long before = testing_support::allocationsOfThisThread;
        act();
        Work work;
        const auto damage = m_scene.prepareFrame();
        for (const CGRect& rect : damage) work.points += rect.size.width * rect.size.height;
        const auto width = static_cast<int>(m_scene.size().width);
        const auto height = static_cast<int>(m_scene.size().height);
        if (!damage.empty())
            m_scene.paint({m_pixels.data(), width, height, width * static_cast<std::ptrdiff_t>(sizeof(std::uint32_t))},
                          damage);
        work.allocations = testing_support::allocationsOfThisThread - before;
        return work;
    }
    Work ofFrame() {
        return of([] {});
    }

private:
    std::size_t pixelCount() const {
        return static_cast<std::size_t>(m_scene.size().width) * static_cast<std::size_t>(m_scene.size().height);
    }
    seat::WindowScene& m_scene;
    std::vector<std::uint32_t> m_pixels;
};

// Says how much it was where it was too much.
void expectAtMost(const Work& work, long mostAllocations, double mostPoints) {
    EXPECT_LE(work.allocations, mostAllocations);
    EXPECT_LE(work.points, mostPoints);
    EXPECT_GT(work.allocations, 0) << "nobody counts";
    EXPECT_GT(work.points, 0);
    ::testing::Test::RecordProperty("allocations", std::to_string(work.allocations));
    ::testing::Test::RecordProperty("points", std::to_string(work.points));
}

using WorkCounts = PageTest;

TEST_F(WorkCounts, FirstFrameOfThePage) {
    // What the toolkit takes for each font of the computer, once, is another matter.
    show(6);
    Counter counter(app.scene());
    counter.ofFrame();
    app.close();

    const Work work = counter.of([&] {
        page = JoyvaneListController::alloc()->init();
        app.scene().window()->setRootViewController(UINavigationController::alloc()->initWithRootViewController(page));
    });

    expectAtMost(work, 4'600, 375 * 667);
    EXPECT_EQ(counter.ofFrame().points, 0) << "what nothing changes is not painted again";
}

TEST_F(WorkCounts, RowThatIsShownAnew) {
    show(2);
    Counter counter(app.scene());
    counter.ofFrame();
    const auto row = page->specifierForID("controller_type");
    app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(3)}}));

    expectAtMost(counter.of([&] { page->reloadSpecifier(row); }), 360, 375 * 44);
}

TEST_F(WorkCounts, KeyThatTwoRowsShow) {
    app.open(UIViewController::alloc()->init());
    const auto editor = JVNKeymapViewController::alloc()->initWithKeymapPath(
        "/var/mobile/Library/Preferences/com.quorrel.joyvane.plist");
    app.navigation()->pushViewController_animated(editor, false);
    editor->tableView()->reloadData();
    app.settle();
    Counter counter(app.scene());
    const auto path = NSIndexPath::indexPathForRow_inSection(0, 0);
    editor->tableView()->selectRowAtIndexPath_animated(path, false);
    editor->tableView_didSelectRowAtIndexPath(*editor->tableView(), path);
    app.settle();
    counter.ofFrame();

    // The key of the row below.
    const Work work = counter.of([] {
        objc_msgSend(*UIApplication::sharedApplication(), "handleKeyUIEvent:", {UIKeyEvent::keyEvent(4, true)});
    });

    expectAtMost(work, 400, 2 * 375 * 44);
}

TEST(PickerWorkCounts, StepOfADragOverTheColours) {
    PickerScene window({320, 460}, 1);
    const auto picker = ZKColorPickerView::alloc()->init();
    window.show(picker, {{0, 0}, {320, 460}});
    const auto map = window.keep(std::static_pointer_cast<ZKColorMapView>(picker->colorMapView().view()));
    ASSERT_TRUE(window.waitForField(*map));
    const CGRect frame = map->convertRect_toView(map->bounds(), nullptr);
    const auto at = [&](int step) { return CGPoint{CGRectGetMidX(frame) + step * 5, CGRectGetMidY(frame)}; };
    Counter counter(window.scene);
    double time = platform::CACurrentMediaTime();
    const auto moveTo = [&](int step) { window.scene.window()->touchMoved(1, at(step), time += 1.0 / 60); };
    window.scene.window()->touchBegan(1, at(0), time);
    for (int step = 1; step < 10; ++step) counter.of([&] { moveTo(step); });

    const Work work = counter.of([&] { moveTo(10); });

    window.scene.window()->touchEnded(1, at(10), time);
    expectAtMost(work, 95, 6'700);
}

} // namespace
