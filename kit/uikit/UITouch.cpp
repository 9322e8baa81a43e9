#include "kit/uikit/UITouch.h"

#include "platform/uikit/UIView.h"

NS_CLASS_IMPLEMENTATION(UITouch, NSObject)
NS_CLASS_IMPLEMENTATION(UIEvent, NSObject)

CGPoint UITouch::locationInView(const UIView* view) const {
    return view ? view->convertPoint_fromView(m_location, nullptr) : m_location;
}

CGPoint UITouch::previousLocationInView(const UIView* view) const {
    return view ? view->convertPoint_fromView(m_previousLocation, nullptr) : m_previousLocation;
}
