// The LED colour on the page: shown, picked, stored, announced and sent.

#include "tests/settings/colour_test.h"

namespace {

TEST_F(LEDColour, RowShowsTheDefaultBlueWhileNothingIsStored) {
    show(1);
    EXPECT_TRUE(swatch()->isEqual(*JVNColorForHexString("004EFD")));
}

TEST_F(LEDColour, RowShowsTheStoredColourFromTheFirst) {
    show(1, 0, {{"JVNLEDColorKey", "ff0000"}});
    EXPECT_TRUE(swatch()->isEqual(*JVNColorForHexString("ff0000")));
}

TEST_F(LEDColour, RowComesBackWithTheStoredColourAfterAmbient) {
    show(1, 0, {{"JVNLEDColorKey", "00ff00"}, {"JVNAmbientColorKey", NSNumber::numberWithBool(true)}});
    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));
    EXPECT_TRUE(swatch()->isEqual(*JVNColorForHexString("00ff00")));
}

TEST_F(LEDColour, PickerOpensWithTheStoredColourTheDefaultOrBlack) {
    const std::pair<id, const char*> cases[] = {{id(), "004efd"},
                                                {id("ff8000"), "ff8000"},
                                                {id("zzz"), "000000"},
                                                {id(NSNumber::numberWithInteger(7)), "000000"}};
    for (const auto& [stored, expected] : cases) {
        show(1, 0, {{"JVNLEDColorKey", stored}});
        const auto screen = openPicker();
        EXPECT_EQ(screen->title(), "LED Color");
        double components[3];
        screen->colorPicker()->color()->getRed_green_blue_alpha(&components[0], &components[1], &components[2],
                                                                nullptr);
        for (int i = 0; i < 3; ++i) {
            const double byte =
                std::stoi(std::string(expected).substr(static_cast<std::size_t>(i) * 2, 2), nullptr, 16);
            EXPECT_NEAR(components[i] * 255, byte, 0.01) << expected;
        }
        app.close();
    }
}

TEST_F(LEDColour, PickerSlidesIn) {
    show(1);

    page->presentColorChooser(page->ds4ColorChooser());

    EXPECT_TRUE(app.scene().isAnimating());
}

TEST_F(LEDColour, LeavingThePickerUntouchedStoresAndSendsNothing) {
    const ScriptedDaemon daemon(app.root());
    show(1);
    openPicker();
    app.goBack();

    EXPECT_FALSE(app.preference("JVNLEDColorKey"));
    EXPECT_EQ(changes, 0);
}

TEST_F(LEDColour, ADragOnTheMapStoresAnnouncesAndSendsOnceAtItsEndAndOnceOnLeaving) {
    ScriptedDaemon daemon(app.root());
    show(1);
    openPicker();
    ASSERT_TRUE(daemon.waitForConnections(1));

    app.touches().drag(map(), {100, 100}, {8, 8});
    ASSERT_TRUE(daemon.waitForConnections(2));
    const id stored = app.preference("JVNLEDColorKey");
    ASSERT_TRUE(stored.string());
    EXPECT_TRUE(app.waitUntil([&] { return changes == 1; }));
    app.goBack();
    ASSERT_TRUE(app.waitUntil([&] { return daemon.connectionCount() == 4; }));

    EXPECT_EQ(app.preference("JVNLEDColorKey"), stored);
    EXPECT_TRUE(app.waitUntil([&] { return changes == 2; }));
    EXPECT_TRUE(swatch()->isEqual(*JVNColorForHexString(*stored.string())));
    // Red at the top left, at the brightness that the default's blue had.
    EXPECT_EQ(*stored.string(), "fd0000");
    const std::string frame = "04 00 00 00 01 00 00 00 00 00 00 00 fd 00 00 00";
    EXPECT_EQ(hex(daemon.connections()[1]), frame);
    EXPECT_EQ(hex(daemon.connections()[2]), frame) << "the last colour goes out before the query of the page";
    EXPECT_EQ(hex(daemon.connections()[3]).substr(0, 2), "05");
}

TEST_F(LEDColour, RowShowsThePickedColourBeforeThePickerIsLeft) {
    show(1);
    const auto screen = openPicker();

    app.touches().drag(map(), {40, 40}, {200, 120});
    app.settle();

    ASSERT_TRUE(screen->pickedColor());
    const id stored = app.preference("JVNLEDColorKey");
    ASSERT_TRUE(stored.string());
    EXPECT_NE(*stored.string(), "004efd");
    EXPECT_TRUE(swatch()->isEqual(*JVNColorForHexString(*stored.string())));
}

TEST_F(LEDColour, ATapReportsTheColourFromBeforeIt) {
    ScriptedDaemon daemon(app.root());
    show(1);
    const auto screen = openPicker();

    app.touches().tap(map().convertPoint_toView({8, 8}, nullptr));
    app.settle();
    // 4e comes back one lower from decoding and encoding only where truncation says so: this one survives.
    EXPECT_EQ(app.preference("JVNLEDColorKey"), id("004efd"));

    app.touches().tap(map().convertPoint_toView({8, 8}, nullptr));
    app.settle();
    EXPECT_EQ(app.preference("JVNLEDColorKey"), id("fd0000"));
}

TEST_F(LEDColour, ASliderDragAloneIsNotStored) {
    show(1);
    const auto screen = openPicker();
    const auto& slider = *screen->colorPicker()->brightnessSlider().view();

    app.touches().drag(slider, {40, 15}, {150, 15});
    app.goBack();

    EXPECT_FALSE(app.preference("JVNLEDColorKey"));
}

TEST_F(LEDColour, ATapOnTheSliderAfterADragReportsTheDraggedBrightness) {
    show(1);
    const auto screen = openPicker();
    const auto& slider = *screen->colorPicker()->brightnessSlider().view();
    const double width = slider.bounds().size.width;

    app.touches().drag(slider, {40, 15}, {width - 21, 15});
    app.touches().tap(slider.convertPoint_toView({width - 21, 15}, nullptr));
    app.settle();

    // Two fifths of full brightness: the far end of the bar.
    ASSERT_TRUE(app.preference("JVNLEDColorKey").string());
    EXPECT_EQ(*app.preference("JVNLEDColorKey").string(), "001f66");
}

TEST_F(LEDColour, IsTruncatedNotRounded) {
    show(1);
    const auto screen = JVNColorPickerController::alloc()->initWithColor(UIColor::blackColor());

    page->colorPicker_didPickColor(*screen, UIColor::colorWithRed_green_blue_alpha(0.999, 0.5, 1, 1));

    EXPECT_EQ(app.preference("JVNLEDColorKey"), id("fe7fff"));
}

TEST_F(LEDColour, OfAnotherTypeIsStoredButNotSent) {
    ScriptedDaemon daemon(app.root(), sayNothingNew);
    show(2);
    ASSERT_TRUE(daemon.waitForConnections(1));
    const auto screen = JVNColorPickerController::alloc()->initWithColor(UIColor::blackColor());

    page->colorPicker_didPickColor(*screen, UIColor::redColor());
    page->queryControllerConnected();

    ASSERT_TRUE(daemon.waitForConnections(2));
    EXPECT_EQ(hex(daemon.connections()[1]).substr(0, 2), "05") << "the query, and no colour before it";
    EXPECT_EQ(app.preference("JVNLEDColorKey"), id("ff0000"));
}

TEST_F(LEDColour, AmbientModeIsAnnouncedAndNotSent) {
    ScriptedDaemon daemon(app.root(), sayNothingNew);
    show(1);
    ASSERT_TRUE(daemon.waitForConnections(1));

    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));
    ASSERT_TRUE(app.tapSwitch("Ambient LED Color"));
    page->queryControllerConnected();

    ASSERT_TRUE(daemon.waitForConnections(2));
    EXPECT_EQ(hex(daemon.connections()[1]).substr(0, 2), "05") << "the query, and no colour before it";
    EXPECT_EQ(changes, 2);
}

TEST_F(LEDColour, WithoutADaemonIsStoredAndTheFailureAnnounced) {
    int failures = 0;
    const seat::NotifyListener failed("com.quorrel.jvnfailure", [&] { ++failures; });
    show(1);
    ASSERT_TRUE(app.waitUntil([&] { return failures == 1; }));
    const auto screen = JVNColorPickerController::alloc()->initWithColor(UIColor::blackColor());

    page->colorPicker_didPickColor(*screen, UIColor::redColor());

    EXPECT_EQ(app.preference("JVNLEDColorKey"), id("ff0000"));
    EXPECT_TRUE(app.waitUntil([&] { return failures == 2; }));
}

} // namespace
