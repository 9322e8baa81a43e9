#include "ledcolour/JVNColorChooserCell.h"

#include "ledcolour/colour_words.h"
#include "ledcolour/hex_colour.h"
#include "platform/runtime/method.h"

NS_CLASS_IMPLEMENTATION(
    JVNColorChooserCell, PSTableCell,
    method<&JVNColorChooserCell::initWithStyle_reuseIdentifier_specifier>("initWithStyle:reuseIdentifier:specifier:"))

namespace {

constexpr CGRect markFrame{{0, 0}, {25, 25}};
constexpr double markCornerRadius = 12; // not quite a circle

std::shared_ptr<UIColor> shownColor(const id& value) {
    if (!value) return JVNColorForHexString(JVNDefaultLEDColor);
    return JVNColorForHexString(value.string() ? *value.string() : std::string());
}

} // namespace

std::shared_ptr<JVNColorChooserCell>
JVNColorChooserCell::initWithStyle_reuseIdentifier_specifier(long style, const std::string& reuseIdentifier,
                                                             const std::shared_ptr<PSSpecifier>& specifier) {
    if (!PSTableCell::initWithStyle_reuseIdentifier_specifier(style, reuseIdentifier, specifier)) return nullptr;
    const auto mark = UIView::alloc()->initWithFrame(markFrame);
    mark->layer()->setCornerRadius(markCornerRadius);
    mark->setBackgroundColor(shownColor(specifier ? specifier->propertyForKey("value") : id()));
    setAccessoryView(mark);
    setColorMark(mark);
    return self(this);
}

void JVNColorChooserCell::setValue(const id& value) {
    setAccessoryView(m_colorMark);
    if (const auto& mark = accessoryView()) mark->setBackgroundColor(shownColor(value));
}

std::string JVNColorChooserCell::accessibilityValue() const {
    if (!m_colorMark) return {};
    const auto& color = m_colorMark->backgroundColor();
    const std::string words = JVNWordsForUIColor(color);
    return (words.empty() ? "" : words + ", ") + JVNStringColorForUIColor(color);
}
