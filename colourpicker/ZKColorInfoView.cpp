#include "colourpicker/ZKColorInfoView.h"

#include "colourpicker/colour_bytes.h"
#include "platform/foundation/NSString.h"
#include "platform/uikit/UIBezierPath.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIScreen.h"

#include <utility>

const double kZKColorInfoViewLabelHeight = 18.0;
const double kZKColorInfoViewCornerRadius = 3.0;

NS_CLASS_IMPLEMENTATION(ZKColorInfoView, UIView)

namespace {
constexpr double fillCornerRadius = 4.0; // not the border's
}

ZKColorInfoView::ZKColorInfoView() = default;
ZKColorInfoView::~ZKColorInfoView() = default;

std::shared_ptr<ZKColorInfoView> ZKColorInfoView::init() { return initWithFrame(CGRectZero); }

std::shared_ptr<ZKColorInfoView> ZKColorInfoView::initWithFrame(CGRect frame) {
    if (!UIView::initWithFrame(frame)) return nullptr;
    _init();
    return self(this);
}

std::shared_ptr<ZKColorInfoView> ZKColorInfoView::initWithCoder(const std::shared_ptr<NSCoder>& coder) {
    if (!UIView::initWithCoder(coder)) return nullptr;
    _init();
    return self(this);
}

void ZKColorInfoView::_init() {
    setBackgroundColor(UIColor::clearColor());

    m_hexColorLabel = UILabel::alloc()->init();
    m_hexColorLabel->setBackgroundColor(UIColor::clearColor());
    m_hexColorLabel->setFont(UIFont::systemFontOfSize(12));
    m_hexColorLabel->setTextColor(UIColor::colorWithWhite_alpha(0.5, 1));
    m_hexColorLabel->setTextAlignment(NSTextAlignmentCenter);
    addSubview(m_hexColorLabel);

    m_borderLayer = CALayer::alloc()->initWithLayer(layer());
    m_borderLayer->setCornerRadius(kZKColorInfoViewCornerRadius);
    m_borderLayer->setBorderColor(UIColor::lightGrayColor()->CGColor());
    m_borderLayer->setBorderWidth(1 / UIScreen::mainScreen()->scale());
    layer()->addSublayer(m_borderLayer);
}

void ZKColorInfoView::layoutSubviews() {
    UIView::layoutSubviews();
    const CGSize size = frame().size;
    if (m_hexColorLabel)
        m_hexColorLabel->setFrame(
            {{0, size.height - kZKColorInfoViewLabelHeight}, {size.width, kZKColorInfoViewLabelHeight}});
    if (m_borderLayer) m_borderLayer->setFrame({{0, 0}, size});
}

// Components beyond a byte spill into the digits to their left, as the plain arithmetic has it.
void ZKColorInfoView::setColor(std::shared_ptr<UIColor> color) {
    m_color = std::move(color);
    const ColorBytes bytes = colorBytes(m_color);
    const unsigned code = static_cast<unsigned>(bytes.red) << 16 | static_cast<unsigned>(bytes.green) << 8 |
                          static_cast<unsigned>(bytes.blue);
    if (m_hexColorLabel) m_hexColorLabel->setText(NSStringWithFormat("#%06x", code));
    setNeedsDisplay();
}

void ZKColorInfoView::drawRect(CGRect rect) {
    const CGRect fill{{0, 0}, {rect.size.width, rect.size.height - kZKColorInfoViewLabelHeight}};
    const auto path = UIBezierPath::bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(
        fill, UIRectCornerTopLeft | UIRectCornerTopRight, {fillCornerRadius, fillCornerRadius});
    path->closePath();
    if (m_color) m_color->setFill();
    path->fill();
}

std::shared_ptr<UIView> ZKColorInfoView::viewForBaselineLayout() { return m_hexColorLabel; }
