#include "kit/quartz/geometry.h"
#include "kit/uikit/AccessibilityTree.h"
#include "tests/kit/uikit/SceneTest.h"

namespace {

using seat::AccessibilityChange;
using seat::AccessibilityNode;

class RoleView : public UIView {
    NS_CLASS(RoleView)
public:
    std::shared_ptr<RoleView> initWithFrame(CGRect frame) {
        return UIView::initWithFrame(frame) ? self(this) : nullptr;
    }
    UIAccessibilityRole accessibilityRole() const override { return role; }
    std::string accessibilityValue() const override { return value; }
    bool accessibilitySetValue(double next) override {
        value = std::to_string(static_cast<int>(next));
        return true;
    }
    UIAccessibilityRole role = UIAccessibilityRole::Group;
    std::string value;
};
NS_CLASS_IMPLEMENTATION(RoleView, UIView)

class Accessibility : public SceneTest {
protected:
    std::shared_ptr<RoleView> addRole(UIAccessibilityRole role, const std::string& name, CGRect frame,
                                      const std::shared_ptr<UIView>& parent = nullptr) {
        const auto view = add<RoleView>(frame, parent);
        view->role = role;
        view->setAccessibilityLabel(name);
        return view;
    }
    // "window(list(item item))" by the names of the nodes.
    std::string outline() {
        scene.prepareFrame();
        return outlineOf(tree.root());
    }
    std::string outlineOf(seat::AccessibilityIdentity identity) {
        const AccessibilityNode* const node = tree.node(identity);
        if (!node) return "?";
        std::string text = identity == tree.root() ? "window" : node->name;
        if (node->children.empty()) return text;
        text += '(';
        for (const auto child : node->children) text += (text.back() == '(' ? "" : " ") + outlineOf(child);
        return text + ')';
    }
    const AccessibilityNode& named(const std::string& name) {
        scene.prepareFrame();
        for (const auto& [identity, node] : tree.nodes())
            if (node.name == name) return node;
        static const AccessibilityNode none;
        return none;
    }

    seat::AccessibilityTree& tree = scene.accessibility();
};

} // namespace

TEST_F(Accessibility, ViewsWithoutARoleGiveTheirPlaceToTheirContent) {
    const auto list = addRole(UIAccessibilityRole::List, "list", {{0, 0}, {320, 400}});
    const auto plain = add({{0, 0}, {320, 100}}, list);
    addRole(UIAccessibilityRole::Button, "button", {{0, 0}, {50, 50}}, plain);
    addRole(UIAccessibilityRole::Image, "image", {{0, 100}, {50, 50}}, list);

    EXPECT_EQ(outline(), "window(list(button image))");
}

TEST_F(Accessibility, HiddenViewsHaveNoNodes) {
    const auto list = addRole(UIAccessibilityRole::List, "list", {{0, 0}, {320, 400}});
    addRole(UIAccessibilityRole::Button, "button", {{0, 0}, {50, 50}}, list);
    EXPECT_EQ(outline(), "window(list(button))");

    list->setAlpha(0);
    EXPECT_EQ(outline(), "window");
}

TEST_F(Accessibility, TextsOfARowAreNotSaidTwice) {
    const auto row = addRole(UIAccessibilityRole::ListItem, "row", {{0, 0}, {320, 44}});
    addRole(UIAccessibilityRole::StaticText, "text", {{0, 0}, {100, 44}}, row);
    addRole(UIAccessibilityRole::Switch, "switch", {{200, 0}, {51, 31}}, row);

    EXPECT_EQ(outline(), "window(row(switch))");
}

TEST_F(Accessibility, ModalViewStandsAlone) {
    addRole(UIAccessibilityRole::Button, "below", {{0, 0}, {50, 50}});
    const auto alert = addRole(UIAccessibilityRole::Alert, "alert", {{50, 50}, {200, 100}});
    alert->setAccessibilityViewIsModal(true);
    addRole(UIAccessibilityRole::Button, "ok", {{0, 0}, {50, 50}}, alert);
    EXPECT_EQ(outline(), "window(alert(ok))");

    alert->removeFromSuperview();
    EXPECT_EQ(outline(), "window(below)");
}

TEST_F(Accessibility, IdentitiesStayWithTheirViews) {
    const auto view = addRole(UIAccessibilityRole::Button, "button", {{0, 0}, {50, 50}});
    const auto identity = named("button").identity;
    view->removeFromSuperview();
    EXPECT_EQ(named("button").identity, 0u);

    scene.window()->addSubview(view);

    EXPECT_EQ(named("button").identity, identity);
}

TEST_F(Accessibility, ExtentsAreInTheWindow) {
    const auto outer = add({{100, 50}, {200, 200}});
    addRole(UIAccessibilityRole::Button, "button", {{10, 20}, {50, 30}}, outer);

    EXPECT_EQ(named("button").extent, CGRectMake(110, 70, 50, 30));
    EXPECT_EQ(tree.node(tree.nodeAt({115, 75}))->name, "button");
    EXPECT_EQ(tree.nodeAt({5, 5}), tree.root());
    EXPECT_EQ(tree.nodeAt({-5, 5}), 0u);
}

TEST_F(Accessibility, WhatIsScrolledAwayIsNotOnScreen) {
    const auto scroll = add<UIScrollView>({{0, 0}, {320, 100}});
    scroll->setContentSize({320, 1000});
    addRole(UIAccessibilityRole::Button, "far", {{0, 500}, {50, 30}}, scroll);
    EXPECT_FALSE(named("far").isOnScreen);

    scroll->setContentOffset({0, 480});

    EXPECT_TRUE(named("far").isOnScreen);
}

TEST_F(Accessibility, ChangesAreTold) {
    const auto button = addRole(UIAccessibilityRole::Button, "button", {{0, 0}, {50, 50}});
    const auto identity = named("button").identity;
    std::string log;
    tree.setListener([&](seat::AccessibilityIdentity changed, AccessibilityChange change, int place) {
        const char* const names[] = {"created", "destroyed", "children", "name", "value", "state", "extent", "focus"};
        log += std::string(changed == identity      ? "button:"
                           : changed == tree.root() ? "window:"
                                                    : "other:") +
               names[static_cast<int>(change)] + (place != 0 ? '@' + std::to_string(place) : "") + ' ';
    });
    const auto told = [&] {
        scene.prepareFrame();
        return std::exchange(log, {});
    };
    EXPECT_EQ(told(), "");
    button->setAccessibilityLabel("new");
    EXPECT_EQ(told(), "button:name ");
    button->value = "3";
    EXPECT_EQ(told(), "button:value ");
    button->setFrame({{5, 0}, {50, 50}});
    EXPECT_EQ(told(), "button:extent ");
    const auto other = addRole(UIAccessibilityRole::Image, "image", {{0, 100}, {50, 50}});
    EXPECT_EQ(told(), "other:created@1 window:children ");
    other->removeFromSuperview();
    EXPECT_EQ(told(), "other:destroyed@1 window:children ");
    scene.window()->setFocusedView(button);
    EXPECT_EQ(told(), "button:focus ");
}

// A reader keeps a list of its own and follows each event.
TEST_F(Accessibility, ComingAndGoingAreToldInAnOrderThatCanBeFollowed) {
    const auto list = addRole(UIAccessibilityRole::List, "list", {{0, 0}, {320, 400}});
    std::vector<std::shared_ptr<RoleView>> rows;
    for (const char* const name : {"a", "b", "c", "d", "e", "f"})
        rows.push_back(addRole(UIAccessibilityRole::ListItem, name, {{0, 0}, {320, 44}}, list));
    for (const int early : {1, 4}) rows[static_cast<std::size_t>(early)]->removeFromSuperview();
    const auto listed = named("list");
    std::vector<seat::AccessibilityIdentity> followed = listed.children;
    tree.setListener([&](seat::AccessibilityIdentity changed, AccessibilityChange change, int place) {
        const auto at = followed.begin() + place;
        if (change == AccessibilityChange::Destroyed) {
            ASSERT_LT(place, std::ssize(followed));
            EXPECT_EQ(*at, changed);
            followed.erase(at);
        } else if (change == AccessibilityChange::Created) {
            ASSERT_LE(place, std::ssize(followed));
            followed.insert(at, changed);
        }
    });

    // Two go; two come back, which were known before those that stay.
    rows[0]->removeFromSuperview();
    rows[3]->removeFromSuperview();
    list->insertSubview_atIndex(rows[4], 0);
    list->insertSubview_atIndex(rows[1], 2);

    EXPECT_EQ(outline(), "window(list(e c b f))");
    EXPECT_EQ(followed, named("list").children);
    tree.setListener(nullptr);
}

TEST_F(Accessibility, AListIsCalledAsItsScreenUnlessItHasAName) {
    const auto screen = UIViewController::alloc()->init();
    screen->setTitle("Screen");
    scene.window()->setRootViewController(screen);
    const auto list = addRole(UIAccessibilityRole::List, "", {{0, 0}, {320, 400}}, nullptr);
    screen->view()->addSubview(list);
    EXPECT_EQ(outline(), "window(Screen)");

    list->setAccessibilityLabel("list");

    EXPECT_EQ(outline(), "window(list)");
}

TEST_F(Accessibility, TheStyleOfATextIsThatOfItsLabel) {
    const auto row = addRole(UIAccessibilityRole::StaticText, "text", {{0, 0}, {320, 44}});
    EXPECT_FALSE(tree.textStyle(named("text").identity));

    const auto label = UILabel::alloc()->initWithFrame({{0, 0}, {100, 44}});
    label->setFont(UIFont::boldSystemFontOfSize(21));
    label->setTextColor(UIColor::colorWithRed_green_blue_alpha(1, 0.5, 0, 1));
    label->setTextAlignment(NSTextAlignmentRight);
    row->addSubview(label);

    const auto style = tree.textStyle(named("text").identity);
    ASSERT_TRUE(style);
    EXPECT_EQ(style->font, label->font());
    EXPECT_EQ(style->color->green, 0.5);
    EXPECT_EQ(style->alignment, NSTextAlignmentRight);
}

TEST_F(Accessibility, SwitchIsPressedAndTellsItsState) {
    const auto toggle = add<UISwitch>({{0, 0}, {51, 31}});
    toggle->setAccessibilityLabel("ambient");
    const AccessibilityNode before = named("ambient");
    EXPECT_EQ(before.role, UIAccessibilityRole::Switch);
    EXPECT_EQ(before.isOn, false);
    EXPECT_TRUE(before.canPress);
    EXPECT_TRUE(before.isFocusable);

    EXPECT_TRUE(tree.press(before.identity));
    EXPECT_EQ(named("ambient").isOn, true);
    EXPECT_TRUE(tree.focus(before.identity));
    EXPECT_TRUE(named("ambient").isFocused);
    EXPECT_EQ(tree.focusedNode(), before.identity);

    toggle->setEnabled(false);
    EXPECT_FALSE(tree.press(before.identity));
    EXPECT_FALSE(named("ambient").isEnabled);
}

TEST_F(Accessibility, ValueIsSetAndUnknownNodesRefuse) {
    const auto slider = addRole(UIAccessibilityRole::Slider, "slider", {{0, 0}, {100, 20}});
    const auto identity = named("slider").identity;

    EXPECT_TRUE(tree.setValue(identity, 42));
    EXPECT_EQ(named("slider").value, "42");
    EXPECT_FALSE(tree.press(999999));
    EXPECT_FALSE(tree.step(0, UIAccessibilityDirection::Up, UIAccessibilityStep::Small));
}
