#pragma once

#include "kit/uikit/UITouch.h"

#include <map>
#include <memory>
#include <vector>

class UIGestureRecognizer;
class UIView;
class UIWindow;

// The way of a window's touches: to the recognisers of the hit view and of the views around it, innermost first, then
// to the hit view. Views, recognisers and targets may go away at any point of it.
class TouchDispatcher {
public:
    explicit TouchDispatcher(UIWindow& window) : m_window(window) {}

    void began(long identifier, CGPoint location, double time);
    void moved(long identifier, CGPoint location, double time);
    void ended(long identifier, CGPoint location, double time);
    void cancelled(long identifier, double time);

    // Touches of a view that leaves are cancelled for it; recognisers of views that stay go on.
    void subtreeLeaves(const UIView& subtree);

    // Whether the recogniser may begin with the touches it follows. When it may, the other recognisers of these touches
    // fail, and the views' touches are cancelled.
    bool claim(UIGestureRecognizer& recognizer);

private:
    struct Sequence {
        std::shared_ptr<UITouch> touch;
        std::vector<std::weak_ptr<UIGestureRecognizer>> recognizers; // innermost view's first
        std::weak_ptr<UIGestureRecognizer> winner;
        bool isClaimed = false;
        bool viewHears = false;   // the view is to be told of the touch, or is being told
        bool viewWasTold = false; // it had its touchesBegan
    };

    std::shared_ptr<Sequence> sequence(long identifier) const;
    std::shared_ptr<UIEvent> makeEvent() const;
    unsigned tapCount(CGPoint location, double time) const;
    void deliver(const std::shared_ptr<Sequence>& sequence);
    void deliverToRecognizers(Sequence& sequence, UIEvent& event);
    void deliverToView(Sequence& sequence, UIEvent& event);
    void cancelView(Sequence& sequence);
    void finish(const std::shared_ptr<Sequence>& sequence);

    UIWindow& m_window; // its owner
    std::map<long, std::shared_ptr<Sequence>> m_sequences;

    // The last tap, for counting.
    CGPoint m_tapLocation;
    double m_tapTime = -1e9;
    unsigned m_tapCount = 0;
};
