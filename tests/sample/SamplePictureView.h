#pragma once

#include "platform/uikit/UIImage.h"
#include "platform/uikit/UIView.h"

// Shows a picture that a worker draws, once the view has a size.
class SamplePictureView final : public UIView {
    NS_CLASS(SamplePictureView)
public:
    std::shared_ptr<SamplePictureView> initWithFrame(CGRect frame);

    void layoutSubviews() override;
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::Image; }
    std::string accessibilityValue() const override { return m_isDrawn ? "drawn" : "not drawn yet"; }

private:
    bool m_isAskedFor = false;
    bool m_isDrawn = false;
};
