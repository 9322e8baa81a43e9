#include "colourpicker/ZKBrightnessSlider.h"

#include "colourpicker/ZKBrightnessCursor.h"
#include "colourpicker/finger.h"
#include "platform/quartz/CAGradientLayer.h"
#include "platform/quartz/CATransaction.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UIScreen.h"

#include <algorithm>
#include <utility>

NS_CLASS_IMPLEMENTATION(ZKBrightnessSlider, UIControl, method<&ZKBrightnessSlider::handleTap>("handleTap:"),
                        method<&ZKBrightnessSlider::handlePan>("handlePan:"))

namespace {

constexpr UIEdgeInsets alignmentInsets{10, 20, 10, 20};
constexpr double trackInset = 8; // from the ends of the bar

CGPoint lastPan;

} // namespace

ZKBrightnessSlider::ZKBrightnessSlider() = default;
ZKBrightnessSlider::~ZKBrightnessSlider() = default;

CGPoint ZKBrightnessSlider::lastPanLocation() { return lastPan; }

std::shared_ptr<ZKBrightnessSlider> ZKBrightnessSlider::init() { return initWithFrame(CGRectZero); }

std::shared_ptr<ZKBrightnessSlider> ZKBrightnessSlider::initWithFrame(CGRect frame) {
    if (!UIControl::initWithFrame(frame)) return nullptr;
    _init();
    return self(this);
}

std::shared_ptr<ZKBrightnessSlider> ZKBrightnessSlider::initWithCoder(const std::shared_ptr<NSCoder>& coder) {
    if (!UIControl::initWithCoder(coder)) return nullptr;
    _init();
    return self(this);
}

void ZKBrightnessSlider::_init() {
    m_sliderLayer = CAGradientLayer::alloc()->initWithLayer(layer());
    m_sliderLayer->setStartPoint({0, 0.5});
    m_sliderLayer->setEndPoint({1, 0.5});
    m_sliderLayer->setBorderColor(UIColor::lightGrayColor()->CGColor());
    m_sliderLayer->setBorderWidth(1 / UIScreen::mainScreen()->scale());
    layer()->addSublayer(m_sliderLayer);
    setBackgroundColor(UIColor::clearColor());

    addGestureRecognizer(UITapGestureRecognizer::alloc()->initWithTarget_action(self(this), "handleTap:"));
    addGestureRecognizer(UIPanGestureRecognizer::alloc()->initWithTarget_action(self(this), "handlePan:"));

    m_brightnessCursor = ZKBrightnessCursor::alloc()->init();
    addSubview(m_brightnessCursor);
    m_needsToUpdateColor = false;
    setBackgroundColor(UIColor::clearColor());
}

UIEdgeInsets ZKBrightnessSlider::alignmentRectInsets() const { return alignmentInsets; }

CGRect ZKBrightnessSlider::alignmentRectForFrame(CGRect frame) const {
    const UIEdgeInsets insets = alignmentRectInsets();
    return {{frame.origin.x + insets.left, frame.origin.y + insets.top},
            {frame.size.width - insets.left - insets.right, frame.size.height - insets.top - insets.bottom}};
}

// By the numbers themselves, where the way there asks for the insets.
CGRect ZKBrightnessSlider::frameForAlignmentRect(CGRect rect) const {
    return {{rect.origin.x - 20, rect.origin.y - 10}, {rect.size.width + 40, rect.size.height + 20}};
}

void ZKBrightnessSlider::setFrame(CGRect frame) { UIControl::setFrame(frame); }

void ZKBrightnessSlider::layoutSubviews() {
    UIControl::layoutSubviews();
    m_renderingFrame = alignmentRectForFrame({{0, 0}, frame().size});
    m_controlFrame = CGRectInset(m_renderingFrame, trackInset, 0);
    if (m_brightnessCursor)
        m_brightnessCursor->setCenter({CGRectGetMinX(m_controlFrame), CGRectGetMidY(m_controlFrame)});
    if (m_sliderLayer) {
        m_sliderLayer->setCornerRadius(m_renderingFrame.size.height / 2);
        m_sliderLayer->setFrame(m_renderingFrame);
    }
    updateCursor();
}

// The colour with the current brightness is made at every call, once a colour was set: only then is there a hue to make
// it of.
std::shared_ptr<UIColor> ZKBrightnessSlider::color() {
    if (m_needsToUpdateColor) {
        double hue = 0;
        double saturation = 0;
        if (m_color) m_color->getHue_saturation_brightness_alpha(&hue, &saturation, nullptr, nullptr);
        m_color =
            UIColor::alloc()->initWithHue_saturation_brightness_alpha(hue, saturation, floatValue(m_brightness), 1);
    }
    return m_color;
}

void ZKBrightnessSlider::setColor(std::shared_ptr<UIColor> color) {
    m_color = std::move(color);
    double brightness = 0;
    if (m_color) m_color->getHue_saturation_brightness_alpha(nullptr, nullptr, &brightness, nullptr);
    m_brightness = NSNumber::numberWithDouble(brightness);
    m_needsToUpdateColor = true;
    updateCursor();

    CATransaction::begin();
    CATransaction::setDisableActions(true);
    double hue = 0;
    double saturation = 0;
    if (m_color) m_color->getHue_saturation_brightness_alpha(&hue, &saturation, nullptr, nullptr);
    const auto shade = [hue, saturation](double value) {
        return UIColor::colorWithHue_saturation_brightness_alpha(hue, saturation, value, 1)->CGColor();
    };
    if (m_sliderLayer) m_sliderLayer->setColors({shade(1), shade(floatValue(m_brightnessLowerLimit))});
    CATransaction::commit();
}

void ZKBrightnessSlider::setBrightnessLowerLimit(std::optional<NSNumber> limit) {
    m_brightnessLowerLimit = limit;
    updateCursor();
    setColor(m_color);
}

void ZKBrightnessSlider::handleTap(const std::shared_ptr<UITapGestureRecognizer>& recognizer) {
    if (const auto point = tappedPoint(recognizer, this)) tappedAtPoint(*point);
}

void ZKBrightnessSlider::handlePan(const std::shared_ptr<UIPanGestureRecognizer>& recognizer) {
    const auto step = panStep(recognizer, this);
    if (!step) return;
    if (step->point)
        pannedToPoint_ended(*step->point, step->ended);
    else
        panLifted();
}

void ZKBrightnessSlider::tappedAtPoint(CGPoint point) {
    update_sendUpdates(point, /*sendUpdates*/ true);
    updateCursor();
}

void ZKBrightnessSlider::pannedToPoint_ended(CGPoint point, bool ended) {
    lastPan = point;
    update_sendUpdates(point, ended);
    updateCursor();
    if (m_brightnessCursor) m_brightnessCursor->setEditing(true);
}

// The value of the last move stands, and nobody is told that editing has ended.
void ZKBrightnessSlider::panLifted() {
    if (m_brightnessCursor) m_brightnessCursor->setEditing(false);
}

// The limit is read in single precision and the rest reckoned in double: the left end is then exactly 1.
void ZKBrightnessSlider::update_sendUpdates(CGPoint point, bool sendUpdates) {
    const double width = m_controlFrame.size.width;
    const double distance = std::min(std::max(point.x - m_controlFrame.origin.x, 0.0), width);
    const double fraction = 1 - distance / width;
    const double limit = floatValue(m_brightnessLowerLimit);
    m_brightness = NSNumber::numberWithDouble(limit + (1 - limit) * fraction);
    if (sendUpdates) sendActionsForControlEvents(UIControlEventEditingDidEnd);
    sendActionsForControlEvents(UIControlEventValueChanged);
}

// In single precision. A brightness above 1, or one that is no number, leaves cursor and colour as they are.
void ZKBrightnessSlider::updateCursor() {
    if (!m_brightnessCursor) return;
    const float value = floatValue(m_brightness);
    const float limit = floatValue(m_brightnessLowerLimit);
    const float fraction = (limit - value) / (1 - limit) + 1;
    if (!(fraction >= 0)) return;
    m_brightnessCursor->setCenter(
        {m_controlFrame.origin.x + m_controlFrame.size.width * fraction, m_brightnessCursor->center().y});
    m_brightnessCursor->setColor(color());
}
