#pragma once

#include "platform/uikit/UILabel.h"

#include <cstdint>
#include <memory>
#include <vector>

class UIBezierPath;

namespace app {

// A picture of a gamepad whose inputs light up while they are down. Bit N of a mask stands for the input with native
// code N, 1 to 21, as the input service numbers them.
class PadView final : public UIView {
    NS_CLASS(PadView)
public:
    ~PadView() override;

    enum class Parts { Plain, Extended }; // without sticks and triggers, or with them
    // At most so large a share of the height of what it stands in, so that what stands below it is seen, too.
    std::shared_ptr<PadView> initWithMostHeight(double share);
    void show(std::uint32_t inputs, Parts parts);

    // As wide as the place, up to a size at which it still looks like one thing.
    CGSize sizeThatFits(CGSize size) const override;
    void layoutSubviews() override;
    void drawRect(CGRect rect) override;
    UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::Image; }

private:
    struct Name {
        int code;
        CGRect place; // in units
        std::shared_ptr<UILabel> label;
    };
    PadView() = default;
    bool isDown(int code) const { return (m_inputs >> code & 1) != 0; }
    bool isShown(int code) const;
    double unit() const; // in points
    CGRect placed(CGRect inUnits) const;
    CGPoint placed(CGPoint inUnits) const;
    void drawBody() const;
    void drawPart(const UIBezierPath& outline, bool isDown) const;
    void drawDirections() const;
    void drawStick(CGPoint middle, int rightCode) const;
    void nameInputs();

    double m_mostHeight = 1;
    std::uint32_t m_inputs = 0;
    Parts m_parts = Parts::Plain;
    std::vector<Name> m_names;
};

} // namespace app
