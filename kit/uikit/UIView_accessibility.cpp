// What assistive technology and the keyboard learn of a view that says nothing itself.

#include "kit/uikit/ViewInternals.h"

bool UIView::canBecomeFocused() const { return false; }
void UIView::focusDidChange() {}
std::shared_ptr<UIView> UIView::focusNeighbour(const UIView&, bool) { return nullptr; }
UIAccessibilityRole UIView::accessibilityRole() const { return UIAccessibilityRole::None; }
std::string UIView::accessibilityLabel() const { return m_view->accessibilityLabel; }
std::string UIView::accessibilityValue() const { return {}; }
std::string UIView::accessibilityHint() const { return {}; }
bool UIView::accessibilityIsEnabled() const { return true; }
bool UIView::accessibilityIsSelected() const { return false; }
std::optional<bool> UIView::accessibilityIsOn() const { return std::nullopt; }
std::optional<UIAccessibilityRange> UIView::accessibilityRange() const { return std::nullopt; }
bool UIView::accessibilityActivate() { return false; }
bool UIView::accessibilityStep(UIAccessibilityDirection, UIAccessibilityStep) { return false; }
bool UIView::accessibilitySetValue(double) { return false; }
void UIView::setAccessibilityLabel(std::string label) { m_view->accessibilityLabel = std::move(label); }
bool UIView::accessibilityElementsHidden() const { return m_view->hidesElements; }
void UIView::setAccessibilityElementsHidden(bool hidden) { m_view->hidesElements = hidden; }
bool UIView::accessibilityViewIsModal() const { return m_view->modal; }
void UIView::setAccessibilityViewIsModal(bool modal) { m_view->modal = modal; }
