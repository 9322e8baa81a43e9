#include "tests/sample/SampleControlsController.h"

#include "platform/foundation/NSString.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UINavigationController.h"

#include <algorithm>
#include <cmath>

NS_CLASS_IMPLEMENTATION(SampleControlsController, UIViewController, method<&SampleControlsController::init>("init"),
                        method<&SampleControlsController::switchChanged>("switchChanged"),
                        method<&SampleControlsController::sliderChanged>("sliderChanged"))

std::shared_ptr<SampleControlsController> SampleControlsController::init() {
    if (!UIViewController::init()) return nullptr;
    setTitle("Controls");
    return self(this);
}

void SampleControlsController::viewDidLoad() {
    UIViewController::viewDidLoad();
    view()->setBackgroundColor(UIColor::whiteColor());

    m_caption = UILabel::alloc()->init();
    const auto text = NSAttributedString::alloc()->initWithString_attributes(
        "Two styles ", {UIFont::boldSystemFontOfSize(17), UIColor::blackColor()});
    text->appendAttributedString(*NSAttributedString::alloc()->initWithString_attributes(
        "in one line", {UIFont::systemFontOfSize(13), UIColor::colorWithWhite_alpha(0.5, 1)}));
    m_caption->setAttributedText(text);

    m_switch = UISwitch::alloc()->init();
    m_switch->setAccessibilityLabel("Sample switch");
    m_switch->addTarget_action_forControlEvents(shared_from_this(), "switchChanged", UIControlEventValueChanged);

    m_disabled = UISwitch::alloc()->init();
    m_disabled->setAccessibilityLabel("Disabled switch");
    m_disabled->setOn_animated(true, /*animated=*/false);
    m_disabled->setEnabled(false);

    m_slider = SampleSlider::alloc()->initWithFrame({{0, 0}, {200, 44}});
    m_slider->setAccessibilityLabel("Sample slider");
    m_slider->addTarget_action_forControlEvents(shared_from_this(), "sliderChanged", UIControlEventValueChanged);

    m_report = UILabel::alloc()->init();
    m_report->setText("Nothing was changed yet");
    m_report->setNumberOfLines(0);

    m_picture = SamplePictureView::alloc()->initWithFrame({{0, 0}, {120, 120}});
    m_picture->setAccessibilityLabel("Sample picture");

    for (const std::shared_ptr<UIView>& part :
         {std::shared_ptr<UIView>(m_caption), std::shared_ptr<UIView>(m_switch), std::shared_ptr<UIView>(m_disabled),
          std::shared_ptr<UIView>(m_slider), std::shared_ptr<UIView>(m_report), std::shared_ptr<UIView>(m_picture)})
        view()->addSubview(part);
}

void SampleControlsController::viewDidLayoutSubviews() {
    const auto navigation = navigationController();
    const CGRect bar = navigation ? navigation->navigationBar()->frame() : CGRectZero;
    const CGSize size = view()->bounds().size;
    const double width = std::min(size.width - 32, 600.0);
    const double left = (size.width - width) / 2;
    double y = CGRectGetMaxY(bar) + 16;
    const auto place = [&](UIView& part, double height, bool keepsWidth) {
        part.setFrame({{left, y}, {keepsWidth ? part.bounds().size.width : width, height}});
        y += height + 16;
    };
    place(*m_caption, 24, false);
    place(*m_switch, m_switch->bounds().size.height, true);
    m_disabled->setCenter(
        {CGRectGetMaxX(m_switch->frame()) + 16 + m_disabled->bounds().size.width / 2, m_switch->center().y});
    place(*m_slider, 44, false);
    place(*m_report, 24, false);
    place(*m_picture, 120, true);
}

void SampleControlsController::switchChanged() { m_report->setText(m_switch->isOn() ? "Switched on" : "Switched off"); }

void SampleControlsController::sliderChanged() {
    m_report->setText(NSStringWithFormat("Slid to %d percent", static_cast<int>(std::lround(m_slider->value() * 100))));
}
