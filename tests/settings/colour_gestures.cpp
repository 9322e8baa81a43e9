// What each gesture on the picker's screen leaves behind, all the way: the file, the announcement, the daemon.

#include "kit/uikit/hid_keys.h"
#include "tests/settings/colour_test.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ColourGestures : public LEDColour {
protected:
    void SetUp() override {
        show(1);
        ASSERT_TRUE(m_daemon.waitForConnections(1));
        // The answer to the page's query rebuilds its rows, and a finger on one of them would be lost.
        app.waitUntil([] { return false; }, 0.1);
        ASSERT_TRUE(openPicker());
    }

    void tapMap(CGPoint place) {
        app.touches().tap(map().convertPoint_toView(place, nullptr));
        app.settle();
    }
    void dragMap(CGPoint from, CGPoint to) {
        app.touches().drag(map(), from, to);
        app.settle();
    }
    // To the far end of the bar, which is two fifths of full brightness.
    void dragSlider() {
        app.touches().drag(slider(), {40, 15}, {slider().bounds().size.width - 21, 15});
        app.settle();
    }
    void tapSlider() {
        app.touches().tap(slider().convertPoint_toView({slider().bounds().size.width - 21, 15}, nullptr));
        app.settle();
    }
    void leave() {
        app.goBack();
        app.waitUntil([&] { return queries() == 2; }); // the page has appeared again, and all that was before is sent
    }

    std::string stored() const {
        const id value = app.preference("JVNLEDColorKey");
        return value.string() ? *value.string() : "nothing";
    }
    // The colours that the daemon was sent, each on a connection of its own; waits for so many.
    std::vector<std::string> sent(std::size_t count) {
        app.waitUntil([&] { return frames().size() >= count; }, count == 0 ? 0.3 : 10);
        return frames();
    }
    // Announcements so far; waits for so many.
    int announced(int count) {
        app.waitUntil([&] { return changes >= count; });
        return changes;
    }
    std::string shown() { return JVNStringColorForUIColor(picker()->colorPicker()->color()); }

private:
    std::vector<std::string> frames() const {
        std::vector<std::string> colours;
        for (const auto& bytes : m_daemon.connections())
            if (bytes.size() == 16 && bytes[0] == 4) colours.push_back(hex({bytes.begin() + 12, bytes.begin() + 15}));
        return colours;
    }
    int queries() const {
        int count = 0;
        for (const auto& bytes : m_daemon.connections()) count += !bytes.empty() && bytes[0] == 5 ? 1 : 0;
        return count;
    }

    ScriptedDaemon m_daemon{app.root(), sayNothingNew};
};

TEST_F(ColourGestures, OneTapOnTheMapReportsTheColourFromBeforeIt) {
    tapMap({8, 8});

    EXPECT_EQ(shown(), "fd0000");
    EXPECT_EQ(stored(), "004efd");
    EXPECT_THAT(sent(1), ElementsAre("00 4e fd"));
    EXPECT_EQ(announced(1), 1);

    leave();
    EXPECT_EQ(stored(), "004efd") << "what was reported last, not what was shown";
    EXPECT_THAT(sent(2), ElementsAre("00 4e fd", "00 4e fd"));
    EXPECT_EQ(announced(2), 2);
}

TEST_F(ColourGestures, AClickWithAShakyHandReportsTheColourThatWasTouched) {
    dragMap({100, 100}, {300, 8});
    const std::string former = stored();
    const CGPoint place = map().convertPoint_toView({8, 8}, nullptr);

    app.touches().press(place);
    app.touches().move({place.x + 6, place.y + 6});
    app.touches().release();
    app.settle();

    EXPECT_NE(former, "fd0000");
    EXPECT_EQ(shown(), "fd0000");
    EXPECT_EQ(stored(), "fd0000");
    EXPECT_EQ(sent(2).back(), "fd 00 00");
}

TEST_F(ColourGestures, AnArrowKeyOnTheMapStoresAndSendsOnceAKeyPress) {
    dragMap({100, 100}, {8, 8});
    app.scene().window()->setFocusedView(picker()->colorPicker()->colorMapView().view());

    app.touches().keyDown(seat::hid::right);
    for (int i = 0; i < 3; ++i) app.touches().keyDown(seat::hid::right, 0, /*isRepeat=*/true);
    app.touches().keyUp(seat::hid::right);
    app.settle();

    EXPECT_EQ(stored(), shown());
    EXPECT_EQ(announced(5), 5);
    leave();
    EXPECT_EQ(sent(6).size(), 6u) << "the drag, four steps, and leaving";
}

TEST_F(ColourGestures, OneDragOnTheMapReportsWhereItEnded) {
    dragMap({100, 100}, {8, 8});

    EXPECT_EQ(stored(), "fd0000");
    EXPECT_THAT(sent(1), ElementsAre("fd 00 00"));
    EXPECT_EQ(announced(1), 1);

    leave();
    EXPECT_EQ(stored(), "fd0000");
    EXPECT_THAT(sent(2), ElementsAre("fd 00 00", "fd 00 00"));
    EXPECT_EQ(announced(2), 2);
}

TEST_F(ColourGestures, OneDragOnTheSliderReportsNothingNotEvenOnLeaving) {
    dragSlider();

    EXPECT_EQ(shown(), "001f66");
    EXPECT_EQ(stored(), "nothing");
    EXPECT_THAT(sent(0), IsEmpty());

    leave();
    EXPECT_EQ(stored(), "nothing");
    EXPECT_THAT(sent(0), IsEmpty());
    EXPECT_EQ(changes, 0);
}

TEST_F(ColourGestures, TapOnTheSliderAfterItsDragReportsTheDraggedBrightness) {
    dragSlider();
    tapSlider();

    EXPECT_EQ(stored(), "001f66");
    EXPECT_THAT(sent(1), ElementsAre("00 1f 66"));
    EXPECT_EQ(announced(1), 1);

    leave();
    EXPECT_THAT(sent(2), ElementsAre("00 1f 66", "00 1f 66"));
    EXPECT_EQ(announced(2), 2);
}

TEST_F(ColourGestures, TapOnTheMapAfterADragOnTheSliderReportsTheDraggedBrightness) {
    dragSlider();
    tapMap({8, 8});

    EXPECT_EQ(shown(), "660000");
    EXPECT_EQ(stored(), "001f66");
    EXPECT_THAT(sent(1), ElementsAre("00 1f 66"));
    EXPECT_EQ(announced(1), 1);
}

TEST_F(ColourGestures, TapAfterADragOnTheMapReportsTheDraggedColourOnceMore) {
    dragMap({100, 100}, {8, 8});
    tapMap({200, 8});

    EXPECT_NE(shown(), "fd0000");
    EXPECT_EQ(stored(), "fd0000");
    EXPECT_THAT(sent(2), ElementsAre("fd 00 00", "fd 00 00"));
    EXPECT_EQ(announced(2), 2);

    leave();
    EXPECT_EQ(stored(), "fd0000");
    EXPECT_THAT(sent(3), ElementsAre("fd 00 00", "fd 00 00", "fd 00 00"));
    EXPECT_EQ(announced(3), 3);
}

TEST_F(ColourGestures, DragOnTheSliderAfterADragOnTheMapIsLostOnLeaving) {
    dragMap({100, 100}, {8, 8});
    dragSlider();

    leave();

    EXPECT_EQ(stored(), "fd0000") << "the colour as it was reported last";
    EXPECT_THAT(sent(2), ElementsAre("fd 00 00", "fd 00 00"));
    EXPECT_EQ(announced(2), 2);
}

TEST_F(ColourGestures, StepByKeyOrScreenReaderStoresAndSendsWhatItShows) {
    ASSERT_TRUE(map().accessibilityStep(UIAccessibilityDirection::Down, UIAccessibilityStep::Small));
    app.settle();

    EXPECT_NE(shown(), "004efd");
    EXPECT_EQ(stored(), shown());
    const auto colours = sent(1);
    ASSERT_FALSE(colours.empty());
    std::string last = colours.back();
    std::erase(last, ' ');
    EXPECT_EQ(last, stored());
}

TEST_F(ColourGestures, LeavingUntouchedReportsNothing) {
    leave();

    EXPECT_EQ(stored(), "nothing");
    EXPECT_THAT(sent(0), IsEmpty());
    EXPECT_EQ(changes, 0);
}

} // namespace
