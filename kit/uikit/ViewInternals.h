#pragma once

#include "platform/uikit/UIView.h"

class UIViewController;

// What a view keeps; the kit's own classes reach it through ViewInternals.
struct UIView::State {
    std::shared_ptr<CALayer> layer;
    std::shared_ptr<UIColor> backgroundColor;
    UIView* superview = nullptr; // non-owning: it holds this view, and clears this when it dies
    std::vector<std::shared_ptr<UIView>> subviews;
    std::vector<std::shared_ptr<UIGestureRecognizer>> recognizers;
    std::optional<std::vector<std::shared_ptr<NSLayoutConstraint>>> constraints;
    std::weak_ptr<UIViewController> controller; // of which this is the view
    std::string accessibilityLabel;
    unsigned autoresizingMask = 0;
    std::uint64_t identity = 0; // 0 until assistive technology asks
    bool userInteractionEnabled = true;
    unsigned laidOutText = 0; // the generation of texts that the last layout was made for
    bool needsLayout = true;  // a view is laid out once before it is first seen
    bool descendantNeedsLayout = false;
    bool modal = false;
    bool hidesElements = false; // from assistive technology
};

struct UIView::Internals {
    static UIView::State& state(UIView& view) { return *view.m_view; }
    static const UIView::State& state(const UIView& view) { return *view.m_view; }

    // The root of the tree that the view stands in: a window, or the topmost view.
    static const UIView& root(const UIView& view);
    static UIWindow* window(const UIView& view);

    // The view's own size was `oldSize`: where it has changed, the subviews follow by their autoresizing masks, and the
    // superview hears of it.
    static void sizeMayHaveChanged(UIView& view, CGSize oldSize);
    // Lays out what needs it in the view and below; false when nothing did.
    static bool layoutOnce(UIView& view);
    static bool needsLayout(const UIView& view);
    // Tells the ancestors that something below them needs layout, and the window that a frame is due.
    static void announceLayout(const UIView& view);

    // From the view's own coordinates to its superview's, and back.
    static CGPoint toSuperview(const UIView& view, CGPoint point);
    static CGPoint fromSuperview(const UIView& view, CGPoint point);

    // The view shows itself and takes part: not hidden, not nearly invisible.
    static bool isVisible(const UIView& view);
};
using ViewInternals = UIView::Internals;
