#include "colourpicker/ZKColorCursor.h"

#include "colourpicker/HSVColor.h"
#include "colourpicker/cursor_look.h"
#include "platform/quartz/CATransaction.h"
#include "platform/runtime/method.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(ZKColorCursor, UIView, method<&ZKColorCursor::setEditing>("setEditing:"))

CGSize ZKColorCursor::cursorSize() { return cursorLookSize; }

std::shared_ptr<ZKColorCursor> ZKColorCursor::colorCursorWithPoint(CGPoint point) {
    return alloc()->initWithPoint(point);
}

std::shared_ptr<ZKColorCursor> ZKColorCursor::initWithPoint(CGPoint point) {
    if (!UIView::initWithFrame({point, cursorSize()})) return nullptr;
    setBackgroundColor(UIColor::clearColor());
    setUserInteractionEnabled(false);
    setColor(UIColor::whiteColor());
    m_backLayer = makeCursorBackLayer();
    layer()->addSublayer(m_backLayer);
    m_colorLayer = makeCursorColorLayer(*m_backLayer);
    layer()->addSublayer(m_colorLayer);
    return self(this);
}

void ZKColorCursor::setColor(std::shared_ptr<UIColor> color) {
    m_color = std::move(color);
    HSVColor hsv;
    HSVColorFromUIColor(m_color, hsv);
    const bool gray = hsv.v > 0.7 && !(hsv.s >= 0.4);

    CATransaction::begin();
    CATransaction::setDisableActions(true);
    if (m_colorLayer) m_colorLayer->setBackgroundColor(m_color ? m_color->CGColor() : nullptr);
    if (isGrayCursor() != gray) {
        if (m_backLayer) {
            m_backLayer->setBorderColor(UIColor::colorWithWhite_alpha(gray ? 0 : 0.65, gray ? 0.3 : 1)->CGColor());
            m_backLayer->setBackgroundColor(UIColor::colorWithWhite_alpha(gray ? 0 : 1, gray ? 0.2 : 0.7)->CGColor());
        }
        setGrayCursor(gray);
    }
    CATransaction::commit();
    setNeedsDisplay();
}

void ZKColorCursor::setEditing(bool editing) {
    if (editing == m_editing) return;
    m_editing = editing;
    if (!m_backLayer || !m_colorLayer) return;
    animateCursorEditing(editing, [this](CursorStep step) { setCursorStep(*m_backLayer, *m_colorLayer, step); });
}
