// What assistive technology meets while screens are on the move.

#include "kit/uikit/AccessibilityTree.h"
#include "tests/kit/controllers/screens.h"

namespace {

using seat::AccessibilityIdentity;

// A switch that takes its screen's place in the log.
std::shared_ptr<UISwitch> addSwitch(UIViewController& screen, const std::string& name) {
    const auto toggle = UISwitch::alloc()->initWithFrame({{20, 200}, {51, 31}});
    toggle->setAccessibilityLabel(name);
    screen.view()->addSubview(toggle);
    return toggle;
}

class Assistance : public NavigationTest {
protected:
    // 0 when there is none.
    AccessibilityIdentity named(const std::string& name) {
        for (const auto& [identity, node] : tree.nodes())
            if (node.name == name) return identity;
        return 0;
    }

    seat::AccessibilityTree& tree = scene.accessibility();
};

TEST_F(Assistance, APressOnAScreenThatSlidesInActsWhenItHasArrived) {
    const auto b = make("b");
    const auto toggle = addSwitch(*b, "toggle");
    push(b, /*animated=*/true);
    touches.wait(0.1);
    ASSERT_NE(named("toggle"), 0u);
    EXPECT_TRUE(tree.canAct(named("toggle")));

    EXPECT_TRUE(tree.press(named("toggle")));
    touches.wait(0.1);
    EXPECT_FALSE(toggle->isOn());
    touches.settle();

    EXPECT_TRUE(toggle->isOn());
}

TEST_F(Assistance, ActsThatWaitKeepTheirOrder) {
    const auto b = make("b");
    const auto first = addSwitch(*b, "first");
    const auto second = addSwitch(*b, "second");
    second->setFrame({{20, 300}, {51, 31}});
    push(b, /*animated=*/true);
    touches.wait(0.1);

    EXPECT_TRUE(tree.focus(named("first")));
    EXPECT_TRUE(tree.press(named("second")));
    EXPECT_TRUE(tree.press(named("second")));
    EXPECT_TRUE(tree.focus(named("second")));
    touches.settle();

    EXPECT_FALSE(second->isOn());
    EXPECT_EQ(scene.window()->focusedView(), second);
}

TEST_F(Assistance, AScreenThatSlidesOutHasNoNodes) {
    addSwitch(*a, "old");
    touches.wait(0.1);
    const auto old = named("old");
    ASSERT_NE(old, 0u);

    push(make("b"), /*animated=*/true);
    touches.wait(0.1);
    EXPECT_EQ(named("old"), 0u);
    EXPECT_FALSE(tree.canAct(old));
    EXPECT_FALSE(tree.press(old));
    touches.settle();
    navigation->popViewControllerAnimated(/*animated=*/true);
    touches.wait(0.1);

    EXPECT_EQ(named("old"), old);
}

TEST_F(Assistance, WhatGoesAwayWhileItWaitsIsLetGo) {
    const auto b = make("b");
    const auto toggle = addSwitch(*b, "toggle");
    push(b, /*animated=*/true);
    touches.wait(0.1);
    EXPECT_TRUE(tree.press(named("toggle")));

    toggle->removeFromSuperview();
    touches.settle();
    b->view()->addSubview(toggle);
    touches.settle();

    EXPECT_FALSE(toggle->isOn());
}

TEST_F(Assistance, WhatIsCoveredOffersNothing) {
    addSwitch(*a, "toggle")->setCenter({160, 240});
    const auto panel = UIProgressHUD::alloc()->init();
    panel->showInView(a->view());
    touches.wait(0.1);

    EXPECT_NE(named("toggle"), 0u);
    EXPECT_FALSE(tree.canAct(named("toggle")));
    EXPECT_FALSE(tree.press(named("toggle")));
    EXPECT_FALSE(tree.focus(named("toggle")));
    panel->hide();
    touches.wait(0.1);

    EXPECT_TRUE(tree.press(named("toggle")));
}

TEST_F(Assistance, WhatStandsBesideAProgressPanelCanBeUsed) {
    const auto toggle = addSwitch(*a, "toggle");
    const auto panel = UIProgressHUD::alloc()->init();
    panel->setText("Searching...");
    panel->showInView(a->view());
    touches.wait(0.1);

    EXPECT_TRUE(tree.press(named("toggle")));
    touches.settle();

    EXPECT_TRUE(toggle->isOn());
    EXPECT_EQ(tree.nodeAt({40, 215}), named("toggle"));
    EXPECT_EQ(tree.nodeAt({160, 240}), named("Searching..."));
}

} // namespace
