#pragma once

#include "platform/uikit/UIView.h"

#include <memory>

// The round marker on the colour map. Takes no touches. Grows while the user drags (`editing`); over pale colours its
// rim turns to a faint dark tint (`grayCursor`).
class ZKColorCursor final : public UIView {
    NS_CLASS(ZKColorCursor)

    static CGSize cursorSize();
    // `point` is its origin.
    static std::shared_ptr<ZKColorCursor> colorCursorWithPoint(CGPoint point);

    // A fresh cursor says that it is gray (it was given white before it had anything to draw with) while its rim has
    // the normal look and its disc no colour.
    std::shared_ptr<ZKColorCursor> initWithPoint(CGPoint point);

    const std::shared_ptr<UIColor>& color() const { return m_color; }
    // The rim changes only when the colour crosses from pale to not pale or back.
    void setColor(std::shared_ptr<UIColor> color);
    bool editing() const { return m_editing; }
    void setEditing(bool editing);
    bool isGrayCursor() const { return m_grayCursor; }
    void setGrayCursor(bool gray) { m_grayCursor = gray; }

    // nil until the cursor is made.
    const std::shared_ptr<CALayer>& backLayer() const { return m_backLayer; }
    const std::shared_ptr<CALayer>& colorLayer() const { return m_colorLayer; }

private:
    std::shared_ptr<CALayer> m_backLayer;
    std::shared_ptr<CALayer> m_colorLayer;
    std::shared_ptr<UIColor> m_color;
    bool m_editing = false;
    bool m_grayCursor = false;
};
