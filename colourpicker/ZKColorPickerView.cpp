#include "colourpicker/ZKColorPickerView.h"

#include "platform/foundation/NSLocalizedString.h"
#include "platform/runtime/method.h"

#include <algorithm>
#include <tuple>

NS_CLASS_IMPLEMENTATION(ZKColorPickerView, UIControl,
                        method<&ZKColorPickerView::brightnessChanged>("brightnessChanged:"),
                        method<&ZKColorPickerView::colorMapColorChanged>("colorMapColorChanged:"),
                        method<&ZKColorPickerView::sendActions>("sendActions"))

namespace {

constexpr platform::timeval waitTime{0, 66666}; // a fifteenth of a second

constexpr double infoTop = 104; // the band above the map, when the picker is high enough
constexpr CGSize infoSize{66, 84};
constexpr double infoLeft = 8;
constexpr double sliderGap = 9; // left and right of the slider
constexpr double sliderRise = 29;
constexpr double sliderHeight = 11;

platform::timeval elapsed(platform::timeval from, platform::timeval to) {
    platform::timeval difference{to.tv_sec - from.tv_sec, to.tv_usec - from.tv_usec};
    if (difference.tv_usec < 0) {
        --difference.tv_sec;
        difference.tv_usec += 1'000'000;
    }
    return difference;
}

bool isLonger(platform::timeval a, platform::timeval b) {
    return std::tie(a.tv_sec, a.tv_usec) > std::tie(b.tv_sec, b.tv_usec);
}

} // namespace

ZKColorPickerView::ZKColorPickerView() = default;
ZKColorPickerView::~ZKColorPickerView() = default;

std::shared_ptr<ZKColorPickerView> ZKColorPickerView::init() { return initWithFrame(CGRectZero); }

std::shared_ptr<ZKColorPickerView> ZKColorPickerView::initWithFrame(CGRect frame) {
    if (!UIControl::initWithFrame(frame)) return nullptr;
    setBackgroundColor(UIColor::whiteColor());
    _init();
    return self(this);
}

std::shared_ptr<ZKColorPickerView> ZKColorPickerView::initWithCoder(const std::shared_ptr<NSCoder>& coder) {
    if (!UIControl::initWithCoder(coder)) return nullptr;
    _init();
    return self(this);
}

void ZKColorPickerView::_init() {
    platform::gettimeofday(&m_lastDrawTime);
    m_waitTimeDuration = waitTime;
}

std::shared_ptr<UIColor> ZKColorPickerView::color() const { return colorFromHSV(m_currentHsvColor); }

void ZKColorPickerView::setColor(const std::shared_ptr<UIColor>& color) {
    HSVColorFromUIColor(color, m_currentHsvColor);
    if (m_brightnessSlider) m_brightnessSlider->setColor(this->color());
    if (m_colorInfoView) m_colorInfoView->setColor(this->color());
    if (m_colorMapView) {
        m_colorMapView->setColor(this->color());
        m_colorMapView->setBrightness(m_currentHsvColor.v);
    }
}

// The slider knows its brightness already; telling it would take the brightness from a colour again.
void ZKColorPickerView::brightnessChanged(const std::shared_ptr<UIControl>& sender) {
    const auto* const slider = dynamic_cast<protocol::ZKBrightnessSlider*>(sender.get());
    if (!slider) return;
    m_currentHsvColor.v = floatValue(slider->brightness());
    colorMapView()->setBrightness(m_currentHsvColor.v);
    colorMapView()->setColor(color());
    colorInfoView()->setColor(color());
}

void ZKColorPickerView::colorMapColorChanged(const std::shared_ptr<UIControl>& sender) {
    auto* const map = dynamic_cast<protocol::ZKColorMapView*>(sender.get());
    if (!map) return;
    HSVColorFromUIColor(map->color(), m_currentHsvColor);
    brightnessSlider()->setColor(map->color());
    colorInfoView()->setColor(color());
}

// The wait decides when the time stamp is renewed; it holds no event back.
void ZKColorPickerView::sendActions() {
    platform::timeval now;
    platform::gettimeofday(&now);
    if (isLonger(elapsed(m_lastDrawTime, now), m_waitTimeDuration)) m_lastDrawTime = now;
    sendActionsForControlEvents(UIControlEventValueChanged);
}

bool ZKColorPickerView::usingAutoLayout() const { return constraints() && !constraints()->empty(); }

void ZKColorPickerView::willMoveToSuperview(const std::shared_ptr<UIView>& superview) {
    UIControl::willMoveToSuperview(superview);
}

void ZKColorPickerView::layoutSubviews() {
    UIControl::layoutSubviews();
    if (usingAutoLayout()) return;
    const CGSize size = frame().size;

    // The map says how large it wants to be once it knows how large it may be.
    const auto map = colorMapView().view();
    map->setFrame({{0, infoTop}, {size.width, std::max(size.width, size.height - infoTop)}});
    const CGSize mapSize = map->intrinsicContentSize();
    map->setFrame({{0, size.height - mapSize.height}, mapSize});

    const auto info = colorInfoView().view();
    info->setFrame({{infoLeft, (map->frame().origin.y - infoSize.height) * 0.5}, infoSize});

    const auto slider = brightnessSlider().view();
    const double infoRight = CGRectGetMaxX(info->frame());
    slider->setFrame(slider->frameForAlignmentRect({{infoRight + sliderGap, CGRectGetMaxY(info->frame()) - sliderRise},
                                                    {size.width - 2 * sliderGap - infoRight, sliderHeight}}));
}

UIAccessibilityRole ZKColorPickerView::accessibilityRole() const { return UIAccessibilityRole::Group; }

std::string ZKColorPickerView::accessibilityLabel() const { return NSLocalizedString("Color picker"); }
