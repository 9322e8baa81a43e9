#pragma once

// What a view tells assistive technology. Nodes are made from the view tree: a view whose role is not None is one; the
// views inside it that have roles are its children. What is asked of it (activate, step, set a value) is what a finger
// could do to it at that moment: a disabled or hidden view does nothing and answers false. Main thread only.

// What the node is said to be; what can be done with it follows from the view's own answers.
enum class UIAccessibilityRole {
    None, // no node of its own; its subviews may be
    Window,
    Group,
    StaticText,
    Heading,
    Button,
    Switch,
    Slider,
    List,
    ListItem,
    Image,
    Alert,
    ProgressIndicator,
    NavigationBar,
    Canvas, // a two-dimensional field, such as a colour map
};

// How far a keyboard or assistive step goes.
// The first is an arrow key's, the second is the same with Shift.
enum class UIAccessibilityStep { Small, Large };
// On a slider up is always more and down less; left and right move its knob, whichever end is more.
enum class UIAccessibilityDirection { Left, Right, Up, Down };

// The bounds and the present place of a number that can be stepped or set; `step` is what a small step changes.
struct UIAccessibilityRange {
    double minimum = 0;
    double maximum = 0;
    double current = 0;
    double step = 0;
    friend bool operator==(const UIAccessibilityRange&, const UIAccessibilityRange&) = default;
};
