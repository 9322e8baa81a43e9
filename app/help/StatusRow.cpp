#include "app/help/StatusRow.h"

#include "kit/quartz/geometry.h"
#include "kit/tables/CellParts.h"
#include "kit/uikit/appearance.h"

#include <algorithm>
#include <cmath>

namespace app {

using namespace seat::appearance;

NS_CLASS_IMPLEMENTATION(StatusRow, UIView)

namespace {

constexpr double advicePadding = 11; // below the advice

std::shared_ptr<UILabel> label(double size, const std::shared_ptr<UIColor>& color) {
    const auto made = seat::CellLabel::alloc()->initWithFrame(CGRectZero);
    made->setFont(textFont(size));
    made->setTextColor(color);
    made->setTextAlignment(startAlignment());
    return made;
}

} // namespace

StatusRow::~StatusRow() = default;

std::shared_ptr<StatusRow> StatusRow::initWithName(const std::string& name) {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    m_name = label(17, textColor());
    m_name->setText(name);
    m_name->setNumberOfLines(0);
    m_state = label(17, secondaryTextColor());
    m_state->setNumberOfLines(0);
    m_advice = label(13, secondaryTextColor());
    m_advice->setNumberOfLines(0);
    addSubview(m_name);
    addSubview(m_state);
    addSubview(m_advice);
    return self(this);
}

void StatusRow::show(const std::string& state, Mood mood, const std::string& advice) {
    m_state->setText(state);
    m_state->setTextColor(mood == Mood::Trouble ? errorTextColor() : secondaryTextColor());
    m_advice->setText(advice);
    setNeedsLayout();
    for (auto around = superview(); around; around = around->superview()) around->setNeedsLayout();
}

double StatusRow::adviceHeight(double width) const {
    if (m_advice->text().empty()) return 0;
    return std::ceil(m_advice->sizeThatFits({std::max(1.0, width - 2 * sideMargin), 1e6}).height);
}

bool StatusRow::isStacked(double room) const {
    const auto widthOf = [](const UILabel& label) { return std::ceil(label.sizeThatFits({1e6, 1e6}).width); };
    return widthOf(*m_name) + labelGap + widthOf(*m_state) > room;
}

double StatusRow::lineHeight(double room) const {
    if (!isStacked(room)) return heightForText(rowHeight);
    const auto heightOf = [&](const UILabel& label) { return label.sizeThatFits({room, 1e6}).height; };
    return heightAroundText(heightOf(*m_name) + heightOf(*m_state));
}

CGSize StatusRow::sizeThatFits(CGSize size) const {
    const double advice = adviceHeight(size.width);
    const double line = lineHeight(std::max(1.0, size.width - 2 * sideMargin));
    return CGSizeMake(size.width, line + (advice > 0 ? advice + advicePadding : 0));
}

void StatusRow::layoutSubviews() {
    UIView::layoutSubviews();
    const double width = bounds().size.width;
    const double room = std::max(0.0, width - 2 * sideMargin);
    const double line = lineHeight(room);
    if (isStacked(room)) {
        const double name = std::ceil(m_name->sizeThatFits({room, 1e6}).height);
        const double state = std::ceil(m_state->sizeThatFits({room, 1e6}).height);
        const double top = std::floor((line - name - state) / 2);
        m_state->setTextAlignment(startAlignment());
        m_name->setFrame(CGRectMake(sideMargin, top, room, name));
        m_state->setFrame(CGRectMake(sideMargin, top + name, room, state));
    } else {
        const double name = std::min(room, std::ceil(m_name->sizeThatFits({1e6, 1e6}).width));
        const double state = std::max(0.0, room - name - labelGap);
        m_state->setTextAlignment(endAlignment());
        m_name->setFrame(inDirection(CGRectMake(sideMargin, 0, name, line), width));
        m_state->setFrame(inDirection(CGRectMake(sideMargin + room - state, 0, state, line), width));
    }
    // The advice belongs to the line above it: a little nearer than the row's own height puts it.
    m_advice->setFrame(CGRectMake(sideMargin, line - 4, room, adviceHeight(width)));
}

std::string StatusRow::accessibilityLabel() const {
    std::string text = m_name->text() + ": " + m_state->text();
    if (!m_advice->text().empty()) text += ". " + m_advice->text();
    return text;
}

} // namespace app
