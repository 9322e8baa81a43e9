#include "platform/uikit/UIControl.h"

#include "kit/uikit/UITouch.h"
#include "platform/foundation/id.h"

#include <algorithm>

NS_CLASS_IMPLEMENTATION(UIControl, UIView)

namespace {

constexpr double fingerSlack = 30; // points beside the control where letting go still counts as inside

} // namespace

UIControl::UIControl() = default;
UIControl::~UIControl() = default;

std::shared_ptr<UIControl> UIControl::init() { return initWithFrame(CGRectZero); }

std::shared_ptr<UIControl> UIControl::initWithFrame(CGRect frame) {
    return UIView::initWithFrame(frame) ? self(this) : nullptr;
}

std::shared_ptr<UIControl> UIControl::initWithCoder(const std::shared_ptr<NSCoder>& coder) {
    return UIView::initWithCoder(coder) ? self(this) : nullptr;
}

void UIControl::addTarget_action_forControlEvents(const std::shared_ptr<NSObject>& target, SEL action,
                                                  unsigned events) {
    if (!target || !action) return;
    std::erase_if(m_pairs, [](const Pair& pair) { return pair.target.expired(); });
    const auto same = std::ranges::find_if(
        m_pairs, [&](const Pair& pair) { return pair.target.lock() == target && pair.action == action; });
    if (same != m_pairs.end())
        same->events |= events;
    else
        m_pairs.push_back({target, action, events});
}

void UIControl::sendActionsForControlEvents(unsigned events) {
    const auto sender = self(this);
    std::vector<std::pair<std::shared_ptr<NSObject>, SEL>> calls;
    for (const Pair& pair : m_pairs)
        if (pair.events & events)
            if (auto target = pair.target.lock()) calls.emplace_back(std::move(target), pair.action);
    for (const auto& [target, action] : calls) objc_msgSend(*target, action, {id(sender)});
}

bool UIControl::isEnabled() const { return m_enabled; }

void UIControl::setEnabled(bool enabled) {
    m_enabled = enabled;
    if (!enabled) setHighlighted(false);
}

bool UIControl::isHighlighted() const { return m_highlighted; }
void UIControl::setHighlighted(bool highlighted) { m_highlighted = highlighted; }
bool UIControl::accessibilityIsEnabled() const { return m_enabled; }

void UIControl::touchesBegan_withEvent(const UITouchList&, UIEvent&) {
    if (!m_enabled) return;
    setHighlighted(true);
    sendActionsForControlEvents(UIControlEventTouchDown);
}

void UIControl::touchesMoved_withEvent(const UITouchList& touches, UIEvent&) {
    if (!m_enabled || touches.empty()) return;
    const CGRect reach = CGRectInset(bounds(), -fingerSlack, -fingerSlack);
    const bool inside = CGRectContainsPoint(reach, touches.front()->locationInView(this));
    if (inside != m_highlighted) setHighlighted(inside);
}

void UIControl::touchesEnded_withEvent(const UITouchList& touches, UIEvent&) {
    if (!m_enabled || touches.empty()) return;
    const bool inside = m_highlighted;
    setHighlighted(false);
    if (inside) sendActionsForControlEvents(UIControlEventTouchUpInside);
}

void UIControl::touchesCancelled_withEvent(const UITouchList&, UIEvent&) {
    if (!m_enabled) return;
    setHighlighted(false);
    sendActionsForControlEvents(UIControlEventTouchCancel);
}
