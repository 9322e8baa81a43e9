#include "platform/uikit/UIView.h"

#include "kit/quartz/geometry.h"
#include "kit/quartz/graphics_stack.h"
#include "kit/uikit/ViewInternals.h"
#include "platform/foundation/NSArray.h"
#include "platform/uikit/UIGestureRecognizer.h"
#include "platform/uikit/UIViewController.h"

NS_CLASS_IMPLEMENTATION(UIView, UIResponder)

namespace {

// The numbers of an array value; fewer when it is shorter.
std::vector<double> numbers(const id& value) {
    std::vector<double> result;
    if (const auto array = value.object<NSArray>())
        for (std::size_t i = 0; i < array->count(); ++i) result.push_back(array->objectAtIndex(i).doubleValue());
    return result;
}

} // namespace

UIView::UIView() : m_view(std::make_unique<State>()) {
    m_view->layer = CALayer::layer();
    m_view->layer->setDelegate(this);
}

UIView::~UIView() {
    // The layer and the subviews may be held by others and live on.
    m_view->layer->setDelegate(nullptr);
    for (const auto& subview : m_view->subviews) {
        subview->m_view->superview = nullptr;
        subview->m_view->layer->removeFromSuperlayer();
    }
}

std::shared_ptr<UIView> UIView::init() { return initWithFrame(CGRectZero); }

std::shared_ptr<UIView> UIView::initWithFrame(CGRect frame) {
    if (!UIResponder::init()) return nullptr;
    m_view->layer->setFrame(frame);
    return self(this);
}

std::shared_ptr<UIView> UIView::initWithCoder(const std::shared_ptr<NSCoder>& coder) {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    if (!coder) return self(this);
    if (const auto frame = numbers(coder->decodeObjectForKey("frame")); frame.size() == 4)
        m_view->layer->setFrame(CGRectMake(frame[0], frame[1], frame[2], frame[3]));
    if (coder->containsValueForKey("alpha")) setAlpha(coder->decodeObjectForKey("alpha").doubleValue());
    setHidden(coder->decodeObjectForKey("hidden").boolValue());
    if (const auto color = numbers(coder->decodeObjectForKey("backgroundColor")); color.size() == 4)
        setBackgroundColor(UIColor::colorWithRed_green_blue_alpha(color[0], color[1], color[2], color[3]));
    return self(this);
}

// Geometry

CGRect UIView::frame() const { return m_view->layer->frame(); }

void UIView::setFrame(CGRect frame) {
    const CGSize oldSize = bounds().size;
    m_view->layer->setFrame(frame);
    ViewInternals::sizeMayHaveChanged(*this, oldSize);
}

CGRect UIView::bounds() const { return m_view->layer->bounds(); }

void UIView::setBounds(CGRect bounds) {
    const CGSize oldSize = UIView::bounds().size;
    m_view->layer->setBounds(bounds);
    ViewInternals::sizeMayHaveChanged(*this, oldSize);
}

CGPoint UIView::center() const { return m_view->layer->position(); }
void UIView::setCenter(CGPoint center) { m_view->layer->setPosition(center); }
CGAffineTransform UIView::transform() const { return m_view->layer->affineTransform(); }
void UIView::setTransform(CGAffineTransform transform) { m_view->layer->setAffineTransform(transform); }
const std::shared_ptr<CALayer>& UIView::layer() const { return m_view->layer; }

// Look

double UIView::alpha() const { return m_view->layer->opacity(); }
void UIView::setAlpha(double alpha) { m_view->layer->setOpacity(alpha); }
bool UIView::isHidden() const { return m_view->layer->isHidden(); }
void UIView::setHidden(bool hidden) { m_view->layer->setHidden(hidden); }
const std::shared_ptr<UIColor>& UIView::backgroundColor() const { return m_view->backgroundColor; }

void UIView::setBackgroundColor(std::shared_ptr<UIColor> color) {
    m_view->backgroundColor = std::move(color);
    m_view->layer->setBackgroundColor(m_view->backgroundColor ? m_view->backgroundColor->CGColor() : nullptr);
}

bool UIView::clipsToBounds() const { return m_view->layer->masksToBounds(); }
void UIView::setClipsToBounds(bool clips) { m_view->layer->setMasksToBounds(clips); }
void UIView::setNeedsDisplay() { m_view->layer->setNeedsDisplay(); }
void UIView::setNeedsDisplayInRect(CGRect rect) { m_view->layer->setNeedsDisplayInRect(rect); }
void UIView::drawRect(CGRect) {}

void UIView::drawLayer_inContext(CALayer&, CGContextRef context) {
    const seat::CurrentContext current(context);
    drawRect(bounds());
}

std::shared_ptr<UIResponder> UIView::nextResponder() const {
    if (const auto controller = m_view->controller.lock()) return controller;
    return superview();
}
