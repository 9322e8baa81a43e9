#include "tests/kit/uikit/SceneTest.h"

namespace {

class Controls : public SceneTest {
protected:
    std::shared_ptr<Recorder> named(const std::string& name) {
        const auto recorder = Recorder::alloc()->init();
        recorder->name = name;
        return recorder;
    }
    std::shared_ptr<UISwitch> switchHeardBy(const std::shared_ptr<Recorder>& recorder) {
        const auto toggle = add<UISwitch>({{100, 100}, {51, 31}});
        toggle->addTarget_action_forControlEvents(recorder, "valueChanged:", UIControlEventValueChanged);
        return toggle;
    }
};

// Writes each call into one shared log.
class Listener final : public NSObject {
    NS_CLASS(Listener)
public:
    void first(const std::shared_ptr<UIControl>& sender) { hear("first", sender); }
    void second(const std::shared_ptr<UIControl>& sender) { hear("second", sender); }
    void bare() { *log += "bare "; }

    std::string* log = nullptr;
    std::function<void()> then;

private:
    void hear(const char* what, const std::shared_ptr<UIControl>& sender) {
        *log += std::string(what) + (sender ? " " : "(nil) ");
        if (then) then();
    }
};
NS_CLASS_IMPLEMENTATION(Listener, NSObject, method<&Listener::first>("first:"), method<&Listener::second>("second:"),
                        method<&Listener::bare>("bare"))

} // namespace

TEST_F(Controls, ActionsGoOutInTheOrderOfAddition) {
    const auto control = UIControl::alloc()->init();
    std::string log;
    const auto listener = Listener::alloc();
    listener->log = &log;
    control->addTarget_action_forControlEvents(listener, "second:", UIControlEventValueChanged);
    control->addTarget_action_forControlEvents(listener, "bare", UIControlEventValueChanged);
    control->addTarget_action_forControlEvents(listener, "first:", UIControlEventValueChanged);

    control->sendActionsForControlEvents(UIControlEventValueChanged);

    EXPECT_EQ(log, "second bare first ");
}

TEST_F(Controls, EqualPairsAreMergedAndCalledOnce) {
    const auto control = UIControl::alloc()->init();
    std::string log;
    const auto listener = Listener::alloc();
    listener->log = &log;
    control->addTarget_action_forControlEvents(listener, "first:", UIControlEventValueChanged);
    control->addTarget_action_forControlEvents(listener, "second:", UIControlEventValueChanged);
    control->addTarget_action_forControlEvents(listener,
                                               "first:", UIControlEventValueChanged | UIControlEventEditingDidEnd);

    control->sendActionsForControlEvents(UIControlEventValueChanged);
    EXPECT_EQ(log, "first second ");
    log.clear();
    control->sendActionsForControlEvents(UIControlEventEditingDidEnd);
    EXPECT_EQ(log, "first ");
    log.clear();
    control->sendActionsForControlEvents(UIControlEventTouchDown);
    EXPECT_EQ(log, "");
}

TEST_F(Controls, EventBitsAreThePhones) {
    EXPECT_EQ(UIControlEventValueChanged, 0x1000u);
    EXPECT_EQ(UIControlEventEditingDidEnd, 0x40000u);
}

TEST_F(Controls, TargetThatIsGoneIsNotCalled) {
    const auto control = UIControl::alloc()->init();
    std::string log;
    auto gone = Listener::alloc();
    gone->log = &log;
    const auto stays = Listener::alloc();
    stays->log = &log;
    control->addTarget_action_forControlEvents(gone, "first:", UIControlEventValueChanged);
    control->addTarget_action_forControlEvents(stays, "second:", UIControlEventValueChanged);

    gone.reset();
    control->sendActionsForControlEvents(UIControlEventValueChanged);

    EXPECT_EQ(log, "second ");
}

TEST_F(Controls, ControlAndTargetsLiveUntilAllWereCalled) {
    auto control = UIControl::alloc()->init();
    const std::weak_ptr<UIControl> weak = control;
    std::string log;
    auto first = Listener::alloc();
    auto second = Listener::alloc();
    first->log = second->log = &log;
    control->addTarget_action_forControlEvents(first, "first:", UIControlEventValueChanged);
    control->addTarget_action_forControlEvents(second, "second:", UIControlEventValueChanged);
    first->then = [&] {
        control.reset();
        second.reset();
    };

    control->sendActionsForControlEvents(UIControlEventValueChanged);

    EXPECT_EQ(log, "first second ");
    EXPECT_TRUE(weak.expired());
}

TEST_F(Controls, TouchesBecomeEvents) {
    const auto control = add<UIControl>({{100, 100}, {50, 50}});
    const auto recorder = named("");
    control->addTarget_action_forControlEvents(recorder, "touchDown:", UIControlEventTouchDown);
    control->addTarget_action_forControlEvents(recorder, "touchUpInside:", UIControlEventTouchUpInside);
    control->addTarget_action_forControlEvents(recorder, "touchCancelled:", UIControlEventTouchCancel);

    touches.press({110, 110});
    EXPECT_TRUE(control->isHighlighted());
    touches.release();
    EXPECT_EQ(recorder->take(), "down up");

    touches.drag({110, 110}, {300, 300});
    EXPECT_EQ(recorder->take(), "down");

    touches.press({110, 110});
    touches.cancel();
    EXPECT_EQ(recorder->take(), "down cancel");
    EXPECT_FALSE(control->isHighlighted());
}

TEST_F(Controls, DisabledControlSendsNothing) {
    const auto control = add<UIControl>({{100, 100}, {50, 50}});
    const auto recorder = named("");
    control->addTarget_action_forControlEvents(recorder, "touchDown:", UIControlEventTouchDown);
    control->setEnabled(false);

    touches.tap(*control);

    EXPECT_EQ(recorder->take(), "");
    EXPECT_FALSE(control->accessibilityIsEnabled());
}

TEST_F(Controls, TapTurnsASwitchAndSendsOneEvent) {
    const auto recorder = named("");
    const auto toggle = switchHeardBy(recorder);

    touches.tap(*toggle);
    EXPECT_TRUE(toggle->isOn());
    touches.tap(*toggle);
    EXPECT_FALSE(toggle->isOn());

    EXPECT_EQ(recorder->take(), "changed changed");
    EXPECT_TRUE(touches.settle());
}

TEST_F(Controls, DragAcrossTurnsASwitchOnceAtItsEnd) {
    const auto recorder = named("");
    const auto toggle = switchHeardBy(recorder);

    touches.press({105, 115});
    touches.move({140, 115});
    EXPECT_EQ(recorder->take(), "");
    touches.release();
    EXPECT_EQ(recorder->take(), "changed");
    EXPECT_TRUE(toggle->isOn());

    touches.press({105, 115});
    touches.move({140, 115});
    touches.move({105, 115});
    touches.move({140, 115});
    touches.release();
    EXPECT_EQ(recorder->take(), "");
    EXPECT_TRUE(toggle->isOn());
}

TEST_F(Controls, SettingASwitchSendsNothing) {
    const auto recorder = named("");
    const auto toggle = switchHeardBy(recorder);

    toggle->setOn_animated(true, /*animated=*/true);

    EXPECT_TRUE(toggle->isOn());
    EXPECT_EQ(recorder->take(), "");
    EXPECT_EQ(toggle->accessibilityIsOn(), true);
}

TEST_F(Controls, DisabledSwitchStaysAsItIs) {
    const auto toggle = add<UISwitch>({{100, 100}, {51, 31}});
    toggle->setEnabled(false);

    touches.tap(*toggle);
    touches.drag({105, 115}, {150, 115});

    EXPECT_FALSE(toggle->isOn());
    EXPECT_LT(toggle->alpha(), 1);
    EXPECT_FALSE(toggle->canBecomeFocused());
    EXPECT_FALSE(toggle->accessibilityActivate());
}
