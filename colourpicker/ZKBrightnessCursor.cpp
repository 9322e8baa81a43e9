#include "colourpicker/ZKBrightnessCursor.h"

#include "colourpicker/HSVColor.h"
#include "colourpicker/cursor_look.h"
#include "colourpicker/truncation.h"
#include "platform/foundation/NSString.h"
#include "platform/quartz/CATransaction.h"
#include "platform/uikit/UILabel.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(ZKBrightnessCursor, UIView)

namespace {

constexpr CGSize labelSize{40, 16};
constexpr double labelNudge = 2;    // to the right of the cursor's middle: the percent sign weighs less
constexpr double labelHeight = -20; // of its middle, above the cursor
constexpr double labelSink = 10;    // on its way out

std::shared_ptr<NSAttributedString> percentage(int percent) {
    const auto gray = UIColor::colorWithWhite_alpha(0.5, 1);
    const auto text = NSMutableAttributedString::alloc()->initWithString_attributes(
        NSStringWithFormat("%d", percent), {UIFont::systemFontOfSize(14), gray});
    text->appendAttributedString(
        *NSMutableAttributedString::alloc()->initWithString_attributes("%", {UIFont::systemFontOfSize(12), gray}));
    return text;
}

} // namespace

std::shared_ptr<ZKBrightnessCursor> ZKBrightnessCursor::init() {
    if (!UIView::initWithFrame({{0, 0}, cursorLookSize})) return nullptr;
    setUserInteractionEnabled(false);
    setBackgroundColor(UIColor::clearColor());
    m_backLayer = makeCursorBackLayer();
    layer()->addSublayer(m_backLayer);
    m_colorLayer = makeCursorColorLayer(*m_backLayer);
    layer()->addSublayer(m_colorLayer);

    m_brightnessLabel = UILabel::alloc()->initWithFrame({{0, 0}, labelSize});
    m_brightnessLabel->setCenter({cursorLookSize.width / 2 + labelNudge, labelHeight});
    m_brightnessLabel->setTextAlignment(NSTextAlignmentCenter);
    m_brightnessLabel->setTextColor(UIColor::colorWithWhite_alpha(0.5, 1));
    m_brightnessLabel->setAlpha(0);
    addSubview(m_brightnessLabel);
    return self(this);
}

void ZKBrightnessCursor::setColor(std::shared_ptr<UIColor> color) {
    m_color = std::move(color);
    CATransaction::begin();
    CATransaction::setDisableActions(true);
    if (m_colorLayer) m_colorLayer->setBackgroundColor(m_color ? m_color->CGColor() : nullptr);
    CATransaction::commit();

    if (m_brightnessLabel) m_brightnessLabel->setAttributedText(percentage(percent()));
}

int ZKBrightnessCursor::percent() const {
    HSVColor hsv;
    HSVColorFromUIColor(m_color, hsv);
    return truncatedToInt(hsv.v * 100);
}

void ZKBrightnessCursor::setEditing(bool editing) {
    if (editing == m_editing) return;
    m_editing = editing;
    if (!m_backLayer || !m_colorLayer || !m_brightnessLabel) return;
    animateCursorEditing(editing, [this](CursorStep step) {
        const bool enlarged = step == CursorStep::Enlarged;
        setCursorStep(*m_backLayer, *m_colorLayer, step);
        m_brightnessLabel->setAlpha(enlarged ? 1 : 0);
        m_brightnessLabel->setTransform(enlarged ? CGAffineTransformIdentity
                                                 : CGAffineTransformMakeTranslation(0, labelSink));
    });
}
