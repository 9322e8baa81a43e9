#pragma once

#include "platform/uikit/UIViewController.h"

#include <memory>

class JVNColorPickerController;
class ZKColorPickerView;

class JVNColorPickerControllerDelegate : public NSObjectProtocol {
public:
    virtual void colorPicker_didPickColor(JVNColorPickerController& picker, const std::shared_ptr<UIColor>& color) = 0;
};

// The screen "LED Color": a colour picker under the navigation bar. Tells its delegate the colour at the end of each
// gesture and once more when it goes away; nothing when the user has changed nothing. Main thread only.
class JVNColorPickerController final : public UIViewController {
    NS_CLASS(JVNColorPickerController)
public:
    ~JVNColorPickerController() override;

    std::shared_ptr<JVNColorPickerController> initWithColor(const std::shared_ptr<UIColor>& color);

    // Non-owning: it must outlive the screen, or take itself away. Called only if it responds to
    // "colorPicker:didPickColor:".
    JVNColorPickerControllerDelegate* delegate() const { return m_delegate; }
    void setDelegate(JVNColorPickerControllerDelegate* delegate) { m_delegate = delegate; }
    const std::shared_ptr<ZKColorPickerView>& colorPicker() const { return m_colorPicker; }
    void setColorPicker(std::shared_ptr<ZKColorPickerView> picker);
    // nil until a gesture has ended.
    const std::shared_ptr<UIColor>& pickedColor() const { return m_pickedColor; }
    void setPickedColor(std::shared_ptr<UIColor> color);

    void viewDidLoad() override;
    void viewWillDisappear(bool animated) override;

private:
    JVNColorPickerController();
    void colorPicked(const std::shared_ptr<ZKColorPickerView>& sender);
    void reportPickedColor();

    JVNColorPickerControllerDelegate* m_delegate = nullptr;
    std::shared_ptr<ZKColorPickerView> m_colorPicker;
    std::shared_ptr<UIColor> m_pickedColor;
};
