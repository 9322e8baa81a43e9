#pragma once

#include "platform/foundation/NSCoder.h"
#include "platform/quartz/CALayer.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIResponder.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class UIGestureRecognizer;
class UIViewController;
class UIWindow;

enum UIViewAutoresizing : unsigned {
    UIViewAutoresizingNone = 0,
    UIViewAutoresizingFlexibleLeftMargin = 1,
    UIViewAutoresizingFlexibleWidth = 2,
    UIViewAutoresizingFlexibleRightMargin = 4,
    UIViewAutoresizingFlexibleTopMargin = 8,
    UIViewAutoresizingFlexibleHeight = 16,
    UIViewAutoresizingFlexibleBottomMargin = 32,
};

inline constexpr double UIViewNoIntrinsicMetric = -1;

// A constraint. A seat keeps the list, by which a view can tell that somebody else lays it out; it need not solve any.
class NSLayoutConstraint final : public NSObject {
    NS_CLASS(NSLayoutConstraint)
};

// A rectangle of the interface, backed by one layer. A view holds its subviews; who wants to keep one that is taken out
// holds it. Everything that is asked of a view that stands in no window works, and is seen when it comes into one. Main
// thread only.
class UIView : public UIResponder, public CALayerDelegate {
    NS_CLASS(UIView)
public:
    struct Internals; // the seat's way in, opaque to everybody else
    ~UIView() override;

    std::shared_ptr<UIView> init(); // zero frame
    std::shared_ptr<UIView> initWithFrame(CGRect frame);
    std::shared_ptr<UIView> initWithCoder(const std::shared_ptr<NSCoder>& coder);

    // Geometry, in points. `frame` is in the superview's coordinates, `bounds` in the view's own, `center` is where the
    // bounds' middle stands in the superview; see CALayer.h for how they hang together. Setting what is there already
    // does nothing. Coordinates that are no numbers are kept: such a view is hit by no finger and paints nothing.
    CGRect frame() const;
    virtual void setFrame(CGRect frame);
    CGRect bounds() const;
    virtual void setBounds(CGRect bounds);
    CGPoint center() const;
    void setCenter(CGPoint center);
    CGAffineTransform transform() const;
    void setTransform(CGAffineTransform transform);
    // Never nil; the view is its delegate, and stays it.
    const std::shared_ptr<CALayer>& layer() const;

    // Look. Clipping cuts what is inside at the bounds, rounded as the layer's corners are.
    // 0 to 1, for the view with all that it holds.
    double alpha() const;
    void setAlpha(double alpha);
    bool isHidden() const;
    void setHidden(bool hidden);
    // nil: none.
    const std::shared_ptr<UIColor>& backgroundColor() const;
    void setBackgroundColor(std::shared_ptr<UIColor> color);
    bool clipsToBounds() const;
    void setClipsToBounds(bool clips);
    // Asks for one repaint with the next frame, however often it is called.
    void setNeedsDisplay();
    void setNeedsDisplayInRect(CGRect rect);
    // Draws the view's own content into the current context, in the view's coordinates, between its background and its
    // subviews; by default nothing. The rectangle is the view's whole bounds; what lies outside the part that is
    // repainted is clipped. Called while a frame is painted: it may not change the tree.
    virtual void drawRect(CGRect rect);

    // Tree. Subviews are painted in their order, the last in front. Adding takes the view from where it was; nil, and a
    // view that this one stands in, are ignored, an index beyond the end appends.
    std::shared_ptr<UIView> superview() const;
    const std::vector<std::shared_ptr<UIView>>& subviews() const;
    // nil while the view stands in none.
    std::shared_ptr<UIWindow> window() const;
    void addSubview(const std::shared_ptr<UIView>& view);
    void insertSubview_atIndex(const std::shared_ptr<UIView>& view, std::size_t index);
    void bringSubviewToFront(const std::shared_ptr<UIView>& view);
    void removeFromSuperview();
    // The view itself counts; nothing descends from nil.
    bool isDescendantOfView(const UIView* view) const;
    // Before and after the view changes its superview (nil: it is taken out), and after its window has changed, for it
    // and then for all below it. By default nothing.
    virtual void willMoveToSuperview(const std::shared_ptr<UIView>& superview);
    virtual void didMoveToSuperview();
    virtual void didMoveToWindow();

    // Layout. A changed size or `setNeedsLayout` leads to one `layoutSubviews` before the next frame; `layoutIfNeeded`
    // does it at once for the view and all below it. A layout that asks for another one each time is stopped after
    // eight.
    void setNeedsLayout();
    void layoutIfNeeded();
    virtual void layoutSubviews();
    // A view directly in this one has changed its size, for whatever reason; by default nothing.
    virtual void subviewSizeChanged(UIView& subview);
    // How the frame follows a new size of the superview: what is flexible shares the difference by its present length,
    // what is not keeps its points. None by default: the frame stays.
    unsigned autoresizingMask() const;
    void setAutoresizingMask(unsigned mask);
    // The size that the content wants where it may have `size`; by default the present one. `sizeToFit` takes it and
    // keeps the origin.
    virtual CGSize sizeThatFits(CGSize size) const;
    void sizeToFit();
    // UIViewNoIntrinsicMetric in both directions by default.
    virtual CGSize intrinsicContentSize() const;
    // Asks for a layout of the superview.
    void invalidateIntrinsicContentSize();
    // What is to be aligned of the view: by default the whole frame, else the frame less these insets, and back.
    virtual UIEdgeInsets alignmentRectInsets() const;
    virtual CGRect alignmentRectForFrame(CGRect frame) const;
    virtual CGRect frameForAlignmentRect(CGRect alignmentRect) const;
    // nil when none was ever added.
    const std::vector<std::shared_ptr<NSLayoutConstraint>>* constraints() const;
    void addConstraint(const std::shared_ptr<NSLayoutConstraint>& constraint);
    // By default the view itself.
    virtual std::shared_ptr<UIView> viewForBaselineLayout();

    // Touches. A view that is hidden, nearly invisible (alpha below 0.01) or without user interaction takes none, nor
    // do the views in it. Of overlapping views the one in front is hit; a place outside a view's bounds hits neither it
    // nor what it holds. nil: nothing was hit.
    // True at first.
    bool isUserInteractionEnabled() const;
    virtual void setUserInteractionEnabled(bool enabled);
    virtual bool pointInside_withEvent(CGPoint point, UIEvent* event) const;
    virtual std::shared_ptr<UIView> hitTest_withEvent(CGPoint point, UIEvent* event);
    // The view holds its recognisers; adding one takes it from the view where it was. nil is ignored.
    void addGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer);
    const std::vector<std::shared_ptr<UIGestureRecognizer>>& gestureRecognizers() const;

    // Points and rectangles of this view's coordinates in another's of the same window, through all transforms, and
    // back; a rectangle that is turned gives the smallest upright one around it. nil stands for the window.
    CGPoint convertPoint_toView(CGPoint point, const UIView* view) const;
    CGPoint convertPoint_fromView(CGPoint point, const UIView* view) const;
    CGRect convertRect_toView(CGRect rect, const UIView* view) const;

    std::shared_ptr<UIResponder> nextResponder() const override;
    // Animation: values change at once, what is drawn follows over `duration` seconds (ease in, ease out). A later
    // change starts from what is shown. A duration that is not above 0 (or no number), and a view in no window, jump.
    // The completion runs on the main thread; its argument is false when cut short.
    static void animateWithDuration_animations(double duration, const std::function<void()>& animations);
    static void animateWithDuration_animations_completion(double duration, const std::function<void()>& animations,
                                                          std::function<void(bool finished)> completion);

    // Keyboard focus and assistive technology. The defaults: no role, no focus, texts that are empty; see
    // UIAccessibility.h. Asked whenever somebody looks: an answer is not kept.
    virtual bool canBecomeFocused() const;
    // The view has the focus now, or has it no longer; by default nothing.
    virtual void focusDidChange();
    // A container whose views come and go with scrolling names the view that the focus goes to from one inside it, and
    // makes and shows it first where it is off screen. nil: by the order of the tree, which leads out of the container
    // at its ends. The containers around the focused view are asked, the innermost first.
    virtual std::shared_ptr<UIView> focusNeighbour(const UIView& focused, bool forward);
    virtual UIAccessibilityRole accessibilityRole() const;
    virtual std::string accessibilityLabel() const;
    virtual std::string accessibilityValue() const;
    virtual std::string accessibilityHint() const;
    virtual bool accessibilityIsEnabled() const;
    virtual bool accessibilityIsSelected() const;
    // Switches: on or off.
    virtual std::optional<bool> accessibilityIsOn() const;
    virtual std::optional<UIAccessibilityRange> accessibilityRange() const;
    // What a tap on the middle of the view does; false when nothing.
    virtual bool accessibilityActivate();
    // Sliders and canvases; false when nothing moved.
    virtual bool accessibilityStep(UIAccessibilityDirection direction, UIAccessibilityStep step);
    // Sliders, in the range's numbers; false when it cannot be set.
    virtual bool accessibilitySetValue(double value);
    // What `accessibilityLabel` says where a class has no answer of its own.
    void setAccessibilityLabel(std::string label);
    // With it all that the view holds is nothing to assistive technology: a screen on its way out, say.
    bool accessibilityElementsHidden() const;
    void setAccessibilityElementsHidden(bool hidden);
    // While a modal view is in front, keys and assistive technology reach nothing outside it.
    bool accessibilityViewIsModal() const;
    void setAccessibilityViewIsModal(bool modal);

protected:
    UIView();
    void drawLayer_inContext(CALayer& layer, CGContextRef context) override;

private:
    struct State;
    std::unique_ptr<State> m_view;
};
