// Where the keyboard's focus goes.

#include "kit/quartz/geometry.h"
#include "kit/uikit/WindowInternals.h"
#include "kit/uikit/focus_order.h"
#include "tests/kit/uikit/KeyboardTest.h"

TEST_F(Keyboard, TabGoesRoundInReadingOrder) {
    const auto bottom = add<KeyView>({{0, 200}, {100, 40}});
    const auto right = add<KeyView>({{200, 5}, {50, 30}});
    const auto left = add<KeyView>({{0, 0}, {50, 44}});
    const auto box = add({{0, 100}, {320, 50}});
    const auto inBox = add<KeyView>({{10, 0}, {50, 44}}, box);

    std::vector<std::shared_ptr<UIView>> order;
    for (int i = 0; i < 5; ++i) {
        touches.key(hid::tab);
        order.push_back(focused());
    }
    EXPECT_EQ(order, (std::vector<std::shared_ptr<UIView>>{left, right, inBox, bottom, left}));

    touches.key(hid::tab, UIKeyEvent::Shift);
    EXPECT_EQ(focused(), bottom);
    touches.key(hid::up);
    EXPECT_EQ(focused(), inBox);
    touches.key(hid::down);
    EXPECT_EQ(focused(), bottom);
}

TEST_F(Keyboard, HiddenAndPassiveViewsAreSkipped) {
    const auto hidden = add<KeyView>({{0, 0}, {50, 44}});
    hidden->setHidden(true);
    const auto box = add({{0, 50}, {320, 50}});
    add<KeyView>({{0, 0}, {50, 44}}, box);
    box->setUserInteractionEnabled(false);
    const auto disabled = add<UISwitch>({{0, 100}, {51, 31}});
    disabled->setEnabled(false);
    const auto usable = add<UISwitch>({{0, 200}, {51, 31}});

    touches.key(hid::tab);

    EXPECT_EQ(focused(), usable);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), usable);
}

TEST_F(Keyboard, ContainerNamesTheNeighbourThatIsOffScreen) {
    const auto container = add<KeyView>({{0, 0}, {320, 200}});
    container->focusable = false;
    const auto row = add<KeyView>({{0, 0}, {320, 44}}, container);
    const auto later = add<KeyView>({{0, 100}, {320, 44}}, container);
    const auto farther = add<KeyView>({{0, 150}, {320, 44}}, container);
    container->neighbour = farther;
    scene.window()->setFocusedView(row);

    touches.key(hid::tab);
    EXPECT_EQ(focused(), farther);
    touches.key(hid::tab, UIKeyEvent::Shift);
    EXPECT_EQ(focused(), later);
}

TEST_F(Keyboard, ModalViewConfinesTheFocus) {
    const auto below = add<KeyView>({{0, 0}, {50, 44}});
    scene.window()->setFocusedView(below);
    const auto modal = add({{50, 50}, {200, 200}});
    modal->setAccessibilityViewIsModal(true);
    const auto inside = add<KeyView>({{0, 0}, {50, 44}}, modal);

    touches.key(hid::enter);
    EXPECT_EQ(below->log, "");
    touches.key(hid::tab);
    EXPECT_EQ(focused(), inside);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), inside);

    modal->removeFromSuperview();
    EXPECT_EQ(focused(), below);
    touches.key(hid::enter);
    EXPECT_EQ(below->log, "activated ");
}

TEST_F(Keyboard, FocusedViewIsScrolledIntoView) {
    const auto scroll = add<UIScrollView>({{0, 0}, {320, 480}});
    scroll->setContentSize({320, 2000});
    add<KeyView>({{0, 0}, {320, 44}}, scroll);
    const auto far = add<KeyView>({{0, 1000}, {320, 44}}, scroll);

    touches.key(hid::tab);
    touches.key(hid::tab);

    EXPECT_EQ(focused(), far);
    EXPECT_EQ(scroll->contentOffset().y, 1044 + 12 - 480);
}

TEST_F(Keyboard, RingShowsForKeysAndNotForFingers) {
    const auto view = add<KeyView>({{10, 10}, {50, 44}});
    scene.prepareFrame();
    const auto layers = [&] { return scene.window()->layer()->sublayers().size(); };
    const auto plain = layers();

    touches.key(hid::tab);
    EXPECT_EQ(layers(), plain + 1);
    EXPECT_EQ(scene.window()->layer()->sublayers().back()->frame(), CGRectMake(6, 6, 58, 52));

    touches.tap({200, 200});
    EXPECT_EQ(layers(), plain);
    EXPECT_EQ(focused(), view);
}

TEST_F(Keyboard, ScreenThatComesBackHasItsFocusAgain) {
    const auto below = add({{0, 0}, {320, 480}});
    const auto row = add<KeyView>({{0, 0}, {320, 44}}, below);
    touches.key(hid::tab);
    below->removeFromSuperview();
    const auto above = add<KeyView>({{0, 0}, {320, 44}});
    EXPECT_EQ(focused(), nullptr);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), above);

    above->removeFromSuperview();
    scene.window()->addSubview(below);

    EXPECT_EQ(focused(), row);
    scene.window()->setFocusedView(nullptr);
    EXPECT_EQ(focused(), nullptr);
}

TEST_F(Keyboard, ForgottenFocusDoesNotComeBack) {
    const auto cell = add({{0, 0}, {320, 44}});
    const auto inner = add<KeyView>({{0, 0}, {51, 31}}, cell);
    scene.window()->setFocusedView(inner);

    WindowInternals::forgetFocus(*scene.window(), *cell);

    EXPECT_EQ(focused(), nullptr);
}

TEST_F(Keyboard, WhatIsCoveredIsOutOfReach) {
    const auto page = add<UIScrollView>({{0, 44}, {320, 436}});
    page->setContentSize({320, 1000});
    const auto row = add<KeyView>({{0, 0}, {320, 44}}, page);
    const auto far = add<KeyView>({{0, 800}, {320, 44}}, page);
    const auto back = add<KeyView>({{0, 0}, {100, 44}});
    scene.window()->setFocusedView(row);

    const auto cover = add(page->bounds(), page);
    touches.key(hid::enter);
    EXPECT_EQ(row->log, "");
    touches.key(hid::tab);
    EXPECT_EQ(focused(), back);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), back);

    cover->removeFromSuperview();
    touches.key(hid::tab);
    touches.key(hid::tab);
    EXPECT_EQ(focused(), far);
}

TEST_F(Keyboard, WhatABarCoversInPartIsWithinReach) {
    const auto page = add<UIScrollView>({{0, 0}, {320, 480}});
    page->setContentSize({320, 1000});
    const auto row = add<KeyView>({{0, 0}, {320, 44}}, page);
    add({{0, 0}, {320, 30}});

    touches.key(hid::tab);

    EXPECT_EQ(focused(), row);
}
