#pragma once

#include "kit/uikit/UISwitch.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIViewController.h"
#include "tests/sample/SamplePictureView.h"
#include "tests/sample/SampleSlider.h"

#include <memory>

// The pushed screen: a switch, one that is disabled, a slider of its own making, text in two styles, a picture drawn on
// a worker.
class SampleControlsController final : public UIViewController {
    NS_CLASS(SampleControlsController)
public:
    std::shared_ptr<SampleControlsController> init();

    void viewDidLoad() override;
    void viewDidLayoutSubviews() override;
    void switchChanged();
    void sliderChanged();

private:
    std::shared_ptr<UILabel> m_caption;
    std::shared_ptr<UILabel> m_report;
    std::shared_ptr<UISwitch> m_switch;
    std::shared_ptr<UISwitch> m_disabled;
    std::shared_ptr<SampleSlider> m_slider;
    std::shared_ptr<SamplePictureView> m_picture;
};
