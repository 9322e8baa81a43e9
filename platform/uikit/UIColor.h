#pragma once

#include "platform/quartz/CGColor.h"
#include "platform/runtime/NSObject.h"

// An immutable colour whose identity counts. Components are kept as given, in doubles, also outside 0 to 1; hue,
// saturation and brightness are derived (black and greys have hue 0 and saturation 0). A hue is a fraction of a turn
// and may be outside 0 to 1; one that is no number counts as 0. A colour with a component that is no number paints
// nothing. Any thread.
class UIColor final : public NSObject {
    NS_CLASS(UIColor)

    static std::shared_ptr<UIColor> colorWithRed_green_blue_alpha(double red, double green, double blue, double alpha);
    static std::shared_ptr<UIColor> colorWithHue_saturation_brightness_alpha(double hue, double saturation,
                                                                             double brightness, double alpha);
    // A grey from 0 (black) to 1.
    static std::shared_ptr<UIColor> colorWithWhite_alpha(double white, double alpha);
    // A colour that answers neither RGB nor HSB.
    static std::shared_ptr<UIColor> patternColor();
    // As the constructor of the same parts.
    std::shared_ptr<UIColor> initWithHue_saturation_brightness_alpha(double hue, double saturation, double brightness,
                                                                     double alpha);

    // The same object at each call.
    static std::shared_ptr<UIColor> whiteColor();
    static std::shared_ptr<UIColor> blackColor();
    static std::shared_ptr<UIColor> redColor();
    static std::shared_ptr<UIColor> blueColor();
    static std::shared_ptr<UIColor> lightGrayColor();
    static std::shared_ptr<UIColor> clearColor();

    // Each output may be null. False, and no output touched, for a pattern.
    bool getRed_green_blue_alpha(double* red, double* green, double* blue, double* alpha) const;
    bool getHue_saturation_brightness_alpha(double* hue, double* saturation, double* brightness, double* alpha) const;

    // What layers and contexts take; the same object at each call.
    const CGColorRef& CGColor() const { return m_color; }
    // Makes this the fill (stroke) colour of the thread's current context; nothing without one.
    void setFill() const;
    void setStroke() const;

    // Same kind, same components.
    bool isEqual(const NSObject& other) const override;

private:
    bool m_isPattern = false;
    CGColorRef m_color;
};
