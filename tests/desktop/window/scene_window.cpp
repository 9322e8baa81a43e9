#include "desktop/window/SceneWindow.h"

#include "kit/uikit/WindowScene.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

// A window with one view in it, and how often it was painted.
struct Stage {
    Stage() {
        view->setFrame({{10, 10}, {50, 50}});
        view->setBackgroundColor(UIColor::redColor());
        scene.window()->addSubview(view);
        window.setFrameHandler([this](double) { ++frames; });
    }

    static void runFor(int milliseconds) {
        for (const QDeadlineTimer end(milliseconds); !end.hasExpired();)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    // How often the loop had something to do in that time, the end of which is one.
    static int turnsIn(int milliseconds) {
        QTimer end;
        end.setSingleShot(true);
        end.start(milliseconds);
        int turns = 0;
        for (; end.isActive(); ++turns) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return turns;
    }
    template <class Condition> static bool runUntil(Condition condition) {
        for (const QDeadlineTimer end(10'000); !end.hasExpired();) {
            if (condition()) return true;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
        return false;
    }

    std::shared_ptr<UIView> view = UIView::alloc()->init();
    seat::WindowScene scene{{375, 667}, 1};
    seat::SceneWindow window{{.scale = 1}};
    int frames = 0;
};

TEST(SceneWindow, IsPaintedBeforeTheWindowSystemAsksForIt) {
    Stage stage;

    stage.window.setScene(stage.scene);

    EXPECT_EQ(stage.frames, 1);
}

TEST(SceneWindow, SleepsWhileNothingChanges) {
    Stage stage;
    stage.window.setScene(stage.scene);
    Stage::runFor(50);

    EXPECT_LE(Stage::turnsIn(200), 4); // at sixty frames a second it would be twelve
    EXPECT_EQ(stage.frames, 1);
}

TEST(SceneWindow, PaintsOnceForAllThatChangesInATurn) {
    Stage stage;
    stage.window.setScene(stage.scene);
    Stage::runFor(20);

    stage.view->setBackgroundColor(UIColor::blueColor());
    stage.view->setAlpha(0.5);
    ASSERT_TRUE(Stage::runUntil([&] { return stage.frames > 1; }));
    Stage::runFor(50);

    EXPECT_EQ(stage.frames, 2);
}

TEST(SceneWindow, TicksNoLongerThanItsAnimation) {
    Stage stage;
    stage.window.setScene(stage.scene);
    Stage::runFor(20);

    UIView::animateWithDuration_animations(0.05, [&stage] { stage.view->setAlpha(0); });
    ASSERT_TRUE(Stage::runUntil([&] { return stage.frames > 1 && !stage.scene.isAnimating(); }));
    const int framesOfTheAnimation = stage.frames;
    Stage::runFor(50);

    EXPECT_GT(framesOfTheAnimation, 2);
    EXPECT_LE(Stage::turnsIn(200), 4); // at sixty frames a second it would be twelve
    EXPECT_EQ(stage.frames, framesOfTheAnimation);
}

} // namespace
