// The colour field is drawn on a worker while the main thread goes on with the view.

#include "colourpicker/ZKColorMapView.h"
#include "kit/uikit/UIWindow.h"
#include "platform/dispatch.h"
#include "tests/support/RunLoop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

// Dies with the view that it stands in, and remembers where.
class Witness final : public UIView {
    NS_CLASS(Witness)
    ~Witness() override {
        ++deaths;
        if (!dispatch_is_main_thread()) ++deathsElsewhere;
    }
    static inline std::atomic<int> deaths = 0;
    static inline std::atomic<int> deathsElsewhere = 0;
};
NS_CLASS_IMPLEMENTATION(Witness, UIView)

class FieldThreads : public ::testing::Test {
protected:
    FieldThreads() {
        Witness::deaths = 0;
        Witness::deathsElsewhere = 0;
    }
    // Ready to be drawn: its queue is let go by the layout.
    static std::shared_ptr<ZKColorMapView> makeMap(CGSize size = {320, 352}, int tile = 16) {
        const auto map = ZKColorMapView::colorMapWithFrame_saturationUpperLimit({{0, 0}, size}, 0.9);
        const auto witness = Witness::alloc();
        witness->init();
        map->addSubview(witness);
        map->setTileSize(NSNumber::numberWithInt(tile));
        return map;
    }
    static void layOut(ZKColorMapView& map) {
        map.setNeedsLayout();
        map.layoutIfNeeded();
    }
    static bool isShown(const ZKColorMapView& map) {
        const auto layer = map.colorMapLayer();
        return layer && layer->superlayer() == map.layer().get();
    }

    testing_support::RunLoop loop;
};

} // namespace

TEST_F(FieldThreads, FieldIsDrawnBesideTheMainThreadAndInstalledOnIt) {
    const auto map = makeMap();
    layOut(*map);

    // The layers come by themselves while the main thread does nothing...
    while (!map->colorMapBackgroundLayer()) std::this_thread::yield();
    EXPECT_FALSE(map->colorMapLayer()->superlayer());
    EXPECT_EQ(map->alpha(), 0);

    // ...and are shown when its queue runs.
    EXPECT_TRUE(loop.runUntil([&] { return isShown(*map); }));
    EXPECT_EQ(map->alpha(), 1);
}

TEST_F(FieldThreads, MapReleasedWhileItsFieldIsDrawnDiesOnTheMainThread) {
    constexpr int maps = 8;
    for (int i = 0; i < maps; ++i) {
        const auto map = makeMap({640, 640}, 2);
        layOut(*map);
    }
    EXPECT_EQ(Witness::deaths, 0) << "the operations hold the views";

    EXPECT_TRUE(loop.runUntil([] { return Witness::deaths == maps; }));

    EXPECT_EQ(Witness::deathsElsewhere, 0);
}

TEST_F(FieldThreads, ViewMayChangeWhileItsFieldIsDrawn) {
    const auto map = makeMap({640, 640}, 2);
    layOut(*map);

    for (int i = 0; !map->colorMapBackgroundLayer(); ++i) {
        map->setFrame({{0, 0}, {600.0 + i % 40, 600}});
        map->setTileSize(NSNumber::numberWithInt(2 + i % 2));
        map->setSaturationUpperLimit(NSNumber::numberWithFloat(0.5f));
        map->setBrightness(i % 10 * 0.1);
        layOut(*map);
    }

    EXPECT_TRUE(loop.runUntil([&] { return isShown(*map); }));
    EXPECT_EQ(map->colorMapLayer()->opacity(), map->brightness());
}

TEST_F(FieldThreads, LayersMayBeReadFromAnyThread) {
    const auto map = makeMap({640, 640}, 2);
    std::atomic<bool> done = false;
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i)
        readers.emplace_back([&, layers = map] {
            while (!done)
                if (const auto layer = layers->colorMapLayer()) EXPECT_TRUE(layer->contents());
        });
    layOut(*map);

    EXPECT_TRUE(loop.runUntil([&] { return isShown(*map); }));

    done = true;
    for (std::thread& reader : readers) reader.join();
}

TEST_F(FieldThreads, ManyMapsAreDrawnAtOnce) {
    std::vector<std::shared_ptr<ZKColorMapView>> maps;
    for (int i = 0; i < 20; ++i) {
        maps.push_back(makeMap({100.0 + i, 100}, 4));
        layOut(*maps.back());
    }
    for (const auto& map : maps) {
        EXPECT_TRUE(loop.runUntil([&] { return isShown(*map); }));
        EXPECT_EQ(map->colorMapLayer()->frame().size.height, 100);
    }
}
