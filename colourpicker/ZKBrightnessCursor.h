#pragma once

#include "platform/uikit/UIView.h"

#include <memory>

class UILabel;

// The round marker that rides on the brightness slider. Takes no touches. While the user drags (`editing`) it grows and
// shows the brightness as a percentage above itself.
class ZKBrightnessCursor final : public UIView {
    NS_CLASS(ZKBrightnessCursor)

    std::shared_ptr<ZKBrightnessCursor> init();

    const std::shared_ptr<UIColor>& color() const { return m_color; }
    void setColor(std::shared_ptr<UIColor> color);
    // What the label says.
    int percent() const;
    bool editing() const { return m_editing; }
    void setEditing(bool editing);

    // nil until the cursor is made.
    const std::shared_ptr<CALayer>& backLayer() const { return m_backLayer; }
    const std::shared_ptr<CALayer>& colorLayer() const { return m_colorLayer; }
    const std::shared_ptr<UILabel>& brightnessLabel() const { return m_brightnessLabel; }

private:
    std::shared_ptr<CALayer> m_backLayer;
    std::shared_ptr<CALayer> m_colorLayer;
    std::shared_ptr<UILabel> m_brightnessLabel;
    bool m_editing = false;
    std::shared_ptr<UIColor> m_color;
};
