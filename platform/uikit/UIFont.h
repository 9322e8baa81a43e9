#pragma once

#include "platform/runtime/NSObject.h"

// The system's interface font, with a fallback that has the key symbols. Immutable; equal requests share one object.
class UIFont final : public NSObject {
    NS_CLASS(UIFont)

    static std::shared_ptr<UIFont> systemFontOfSize(double pointSize);
    static std::shared_ptr<UIFont> boldSystemFontOfSize(double pointSize);

    double pointSize() const { return m_pointSize; }
    bool isBold() const { return m_bold; }
    double ascender() const;
    double descender() const; // negative, below the baseline
    double lineHeight() const;

private:
    static std::shared_ptr<UIFont> systemFont(double pointSize, bool bold);

    double m_pointSize = 17;
    bool m_bold = false;
};
