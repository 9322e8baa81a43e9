#include "ledcolour/JVNColorPickerController.h"

#include "colourpicker/ZKColorPickerView.h"
#include "platform/runtime/method.h"
#include "platform/uikit/UINavigationController.h"

#include <utility>

NS_CLASS_IMPLEMENTATION(JVNColorPickerController, UIViewController,
                        method<&JVNColorPickerController::colorPicked>("colorPicked:"))

JVNColorPickerController::JVNColorPickerController() = default;
JVNColorPickerController::~JVNColorPickerController() = default;

std::shared_ptr<JVNColorPickerController>
JVNColorPickerController::initWithColor(const std::shared_ptr<UIColor>& color) {
    if (!UIViewController::init()) return nullptr;
    setColorPicker(ZKColorPickerView::alloc()->init());
    m_colorPicker->setColor(color);
    m_colorPicker->addTarget_action_forControlEvents(self(this), "colorPicked:", UIControlEventValueChanged);
    setTitle("LED Color");
    return self(this);
}

void JVNColorPickerController::setColorPicker(std::shared_ptr<ZKColorPickerView> picker) {
    m_colorPicker = std::move(picker);
}

void JVNColorPickerController::setPickedColor(std::shared_ptr<UIColor> color) { m_pickedColor = std::move(color); }

// Below the bar and down to the bottom; what stands above the bar is not taken into account.
void JVNColorPickerController::viewDidLoad() {
    UIViewController::viewDidLoad();
    if (!m_colorPicker) return;
    CGRect frame = view() ? view()->frame() : CGRectZero;
    double barHeight = 0;
    if (const auto navigation = navigationController())
        if (const auto& bar = navigation->navigationBar()) barHeight = bar->frame().size.height;
    frame.origin = {0, barHeight};
    frame.size.height -= barHeight;
    m_colorPicker->setFrame(frame);
    m_colorPicker->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    if (view()) view()->addSubview(m_colorPicker);
}

void JVNColorPickerController::colorPicked(const std::shared_ptr<ZKColorPickerView>& sender) {
    setPickedColor(sender ? sender->color() : nullptr);
    reportPickedColor();
}

void JVNColorPickerController::viewWillDisappear(bool animated) {
    UIViewController::viewWillDisappear(animated);
    reportPickedColor();
}

void JVNColorPickerController::reportPickedColor() {
    const auto color = m_pickedColor; // the delegate may set another while it still reads this one
    if (!color) return;
    if (!m_delegate || !m_delegate->respondsToSelector("colorPicker:didPickColor:")) return;
    m_delegate->colorPicker_didPickColor(*this, color);
}
