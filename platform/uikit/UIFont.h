#pragma once

#include "platform/runtime/NSObject.h"

// The system's interface font, with a fallback that has the key symbols. Equal requests share one object while somebody
// holds it. Any thread.
class UIFont final : public NSObject {
    NS_CLASS(UIFont)
public:
    struct Internals; // the seat's way in, opaque to everybody else

    // Points, cut to 1 to 1024; a size that is no number, or not above 0, gives 17.
    static std::shared_ptr<UIFont> systemFontOfSize(double pointSize);
    static std::shared_ptr<UIFont> boldSystemFontOfSize(double pointSize);

    // As it was asked for, after the cut.
    double pointSize() const;
    bool isBold() const { return m_bold; }
    // Points above the baseline.
    double ascender() const;
    double descender() const; // negative, below the baseline
    double lineHeight() const;

private:
    // Whether text follows the size that the user wants text to have.
    enum class Growth : unsigned char { Fixed, Text, Control };
    static std::shared_ptr<UIFont> systemFont(double pointSize, bool bold, Growth growth);

    double m_pointSize = 17;
    bool m_bold = false;
    Growth m_growth = Growth::Fixed;
};
