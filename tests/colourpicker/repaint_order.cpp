// In which order a part of the picker changes what is seen, as whoever shows the layers hears of it.

#include "colourpicker/ZKBrightnessSlider.h"
#include "colourpicker/ZKColorCursor.h"
#include "colourpicker/ZKColorMapView.h"
#include "kit/quartz/LayerHost.h"
#include "kit/quartz/LayerInternals.h"
#include "kit/quartz/geometry.h"
#include "kit/uikit/UIWindow.h"
#include "platform/quartz/CAGradientLayer.h"
#include "platform/quartz/CATransaction.h"
#include "tests/colourpicker/PickerScene.h"

#include <gtest/gtest.h>

namespace {

// Shows nothing, and keeps what it is told of.
class NotingHost final : public seat::LayerHost {
public:
    struct Repaint {
        CGRect rect;
        bool isWithoutActions = false;
    };
    void layerNeedsRepaint(CGRect rect) override { repaints.push_back({rect, CATransaction::disableActions()}); }
    void animationsStarted() override {}
    std::vector<Repaint> repaints;
};

class RepaintOrder : public ::testing::Test {
protected:
    ~RepaintOrder() override { LayerInternals::setHost(*window->layer(), nullptr); }
    void show(const std::shared_ptr<UIView>& view, CGRect frame) {
        view->setFrame(frame);
        window->addSubview(view);
        window->layoutIfNeeded();
        host.repaints.clear();
        LayerInternals::setHost(*window->layer(), &host);
    }

    PickerScene scene{{400, 400}, 2};
    NotingHost host;
    std::shared_ptr<UIWindow> window = UIWindow::alloc()->initWithFrame({{0, 0}, {400, 400}});
};

TEST_F(RepaintOrder, MapsCursorHasItsColourBeforeItMoves) {
    const auto map = scene.keep(ZKColorMapView::colorMapWithFrame(CGRectZero));
    map->setTileSize(NSNumber::numberWithInt(16));
    map->setAlpha(1);
    show(map, {{0, 0}, {320, 320}});
    map->setColor(hsb(0, 1, 1));
    const CGRect before = map->colorCursor()->convertRect_toView(map->colorCursor()->bounds(), nullptr);
    host.repaints.clear();

    map->setColor(hsb(0.5, 0.5, 1));

    ASSERT_FALSE(host.repaints.empty());
    const auto& first = host.repaints.front();
    EXPECT_TRUE(CGRectIntersectsRect(first.rect, before));
    EXPECT_LT(CGRectGetMaxX(first.rect), CGRectGetMaxX(before)) << "its inside, where it stood";
    EXPECT_TRUE(first.isWithoutActions);
}

TEST_F(RepaintOrder, SlidersGradientChangesWithoutActions) {
    const auto slider = ZKBrightnessSlider::alloc()->init();
    slider->setBrightnessLowerLimit(NSNumber::numberWithDouble(0.4));
    slider->setColor(hsb(0.6, 0.8, 1));
    show(slider, {{0, 0}, {268, 31}});
    const CGRect bar = slider->sliderLayer()->frame();

    slider->setColor(hsb(0.1, 0.8, 1));

    int changes = 0;
    for (const auto& repaint : host.repaints)
        if (repaint.rect.size.width >= bar.size.width) {
            ++changes;
            EXPECT_TRUE(repaint.isWithoutActions);
        }
    EXPECT_EQ(changes, 1);
}

} // namespace
