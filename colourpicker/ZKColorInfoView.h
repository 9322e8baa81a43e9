#pragma once

#include "colourpicker/part_protocols.h"
#include "platform/uikit/UIView.h"

#include <memory>

class UILabel;

// Height of the strip at the bottom that holds the hex code, and the corner radius of the border.
extern "C" [[gnu::visibility("default")]] const double kZKColorInfoViewLabelHeight;
extern "C" [[gnu::visibility("default")]] const double kZKColorInfoViewCornerRadius;

// A swatch of the current colour with rounded top corners, its hex code under it, and a hairline border round both.
// Main thread only.
class ZKColorInfoView final : public UIView, public protocol::ZKColorInfoView {
    NS_CLASS(ZKColorInfoView)
public:
    ~ZKColorInfoView() override;

    std::shared_ptr<ZKColorInfoView> init();
    std::shared_ptr<ZKColorInfoView> initWithFrame(CGRect frame);
    std::shared_ptr<ZKColorInfoView> initWithCoder(const std::shared_ptr<NSCoder>& coder);

    // nil until one was set.
    std::shared_ptr<UIColor> color() override { return m_color; }
    void setColor(std::shared_ptr<UIColor> color) override;

    const std::shared_ptr<UILabel>& hexColorLabel() const { return m_hexColorLabel; }
    const std::shared_ptr<CALayer>& borderLayer() const { return m_borderLayer; }

    void layoutSubviews() override;
    void drawRect(CGRect rect) override;
    // The hex code, so that the view lines up with text.
    std::shared_ptr<UIView> viewForBaselineLayout() override;

private:
    ZKColorInfoView();
    void _init();

    std::shared_ptr<UIColor> m_color;
    std::shared_ptr<UILabel> m_hexColorLabel;
    std::shared_ptr<CALayer> m_borderLayer;
};
