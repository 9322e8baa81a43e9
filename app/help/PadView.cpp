#include "app/help/PadView.h"

#include "kit/foundation/translation.h"
#include "kit/quartz/geometry.h"
#include "kit/tables/CellParts.h"
#include "kit/uikit/appearance.h"
#include "platform/uikit/UIBezierPath.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace app {

using seat::translated;

using namespace seat::appearance;

NS_CLASS_IMPLEMENTATION(PadView, UIView)

namespace {

// The drawing, in units.
constexpr CGSize drawing{320, 192};
constexpr double triggers = 22;   // the upper end, where a plain pad has nothing
constexpr double mostWidth = 400; // points

enum Code { Right = 1, Left, Up, Down, A, B, X, Y, L1, R1, MainRight, SecondRight = 15, L2 = 19, R2, Pause };

struct NamedPart {
    int code;
    const char* name;
    CGRect place;
};
constexpr double buttonSize = 28;
constexpr CGRect button(double x, double y) {
    return {{x - buttonSize / 2, y - buttonSize / 2}, {buttonSize, buttonSize}};
}
constexpr std::array<NamedPart, 8> namedParts{{
    {L2, "L2", {{62, 2}, {56, 20}}},
    {R2, "R2", {{202, 2}, {56, 20}}},
    {L1, "L1", {{50, 25}, {76, 20}}},
    {R1, "R1", {{194, 25}, {76, 20}}},
    {A, "A", button(238, 128)},
    {B, "B", button(264, 102)},
    {X, "X", button(212, 102)},
    {Y, "Y", button(238, 76)},
}};
constexpr CGPoint directions{82, 102}; // the middle of the D-pad
constexpr double arm = 20;             // of the D-pad: as wide as long
constexpr CGPoint mainStick{128, 138};
constexpr CGPoint secondStick{192, 138};
constexpr double stickRadius = 17;
constexpr double stickWay = 6;
constexpr CGRect pause{{146, 78}, {28, 14}};

std::shared_ptr<UIBezierPath> rounded(CGRect rect, double radius) {
    return UIBezierPath::bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(rect, UIRectCornerAllCorners,
                                                                                 {radius, radius});
}

} // namespace

PadView::~PadView() = default;

std::shared_ptr<PadView> PadView::initWithMostHeight(double share) {
    if (!UIView::initWithFrame(CGRectZero)) return nullptr;
    m_mostHeight = share;
    setUserInteractionEnabled(false);
    setAccessibilityLabel(translated("Gamepad"));
    for (const auto& part : namedParts) {
        const auto label = seat::CellLabel::alloc()->initWithFrame(CGRectZero);
        label->setText(part.name);
        label->setTextAlignment(NSTextAlignmentCenter);
        addSubview(label);
        m_names.push_back({part.code, part.place, label});
    }
    nameInputs();
    return self(this);
}

void PadView::show(std::uint32_t inputs, Parts parts) {
    if (inputs == m_inputs && parts == m_parts) return;
    m_inputs = inputs;
    const bool isAsHigh = std::exchange(m_parts, parts) == parts;
    nameInputs();
    setNeedsDisplay();
    if (isAsHigh) return;
    setNeedsLayout();
    if (const auto around = superview()) around->setNeedsLayout();
}

void PadView::nameInputs() {
    for (const auto& name : m_names) {
        name.label->setHidden(!isShown(name.code));
        name.label->setTextColor(isDown(name.code) ? cardColor() : secondaryTextColor());
    }
}

bool PadView::isShown(int code) const { return m_parts == Parts::Extended || (code != L2 && code != R2); }

CGSize PadView::sizeThatFits(CGSize size) const {
    const double height = drawing.height - (m_parts == Parts::Plain ? triggers : 0);
    const double fitting = std::ceil(std::min(size.width, mostWidth) * height / drawing.width);
    const auto around = superview();
    if (!around) return CGSizeMake(size.width, fitting);
    return CGSizeMake(size.width, std::min(fitting, std::floor(around->bounds().size.height * m_mostHeight)));
}

double PadView::unit() const {
    const double height = drawing.height - (m_parts == Parts::Plain ? triggers : 0);
    return std::min(std::min(bounds().size.width, mostWidth) / drawing.width, bounds().size.height / height);
}

CGPoint PadView::placed(CGPoint inUnits) const {
    const double left = (bounds().size.width - drawing.width * unit()) / 2;
    const double top = m_parts == Parts::Plain ? triggers : 0;
    return {left + inUnits.x * unit(), (inUnits.y - top) * unit()};
}

CGRect PadView::placed(CGRect inUnits) const {
    return {placed(inUnits.origin), {inUnits.size.width * unit(), inUnits.size.height * unit()}};
}

void PadView::layoutSubviews() {
    UIView::layoutSubviews();
    for (const auto& name : m_names) {
        name.label->setFont(UIFont::boldSystemFontOfSize(12 * unit()));
        name.label->setFrame(placed(name.place));
    }
}

void PadView::drawRect(CGRect) {
    for (const auto& part : namedParts)
        if (part.place.size.height < buttonSize && isShown(part.code))
            drawPart(*rounded(placed(part.place), 11 * unit()), isDown(part.code));
    drawBody();
    drawDirections();
    for (const auto& part : namedParts)
        if (part.place.size.height == buttonSize)
            drawPart(*UIBezierPath::bezierPathWithOvalInRect(placed(part.place)), isDown(part.code));
    drawPart(*rounded(placed(pause), 7 * unit()), isDown(Pause));
    if (m_parts == Parts::Plain) return;
    drawStick(mainStick, MainRight);
    drawStick(secondStick, SecondRight);
}

// The outline is what a slightly larger body leaves of itself.
void PadView::drawBody() const {
    for (const double edge : {1.5, 0.0}) {
        (edge > 0 ? markColor() : cardColor())->setFill();
        const auto grown = [&](CGRect rect) { return CGRectInset(placed(rect), -edge, -edge); };
        UIBezierPath::bezierPathWithOvalInRect(grown({{18, 66}, {104, 122}}))->fill();
        UIBezierPath::bezierPathWithOvalInRect(grown({{198, 66}, {104, 122}}))->fill();
        // Down to where the grips are widest, and between them.
        const double radius = 54 * unit() + edge;
        UIBezierPath::bezierPathWithRoundedRect_byRoundingCorners_cornerRadii(
            grown({{18, 48}, {284, 79}}), UIRectCornerTopLeft | UIRectCornerTopRight, {radius, radius})
            ->fill();
        rounded(grown({{80, 100}, {160, 64}}), 0)->fill();
    }
}

void PadView::drawPart(const UIBezierPath& outline, bool isDown) const {
    (isDown ? tintColor() : pageColor())->setFill();
    outline.fill();
    (isDown ? tintColor() : markColor())->setStroke();
    outline.stroke();
}

void PadView::drawDirections() const {
    constexpr std::array<std::pair<int, CGPoint>, 4> ways{
        {{Right, {1, 0}}, {Left, {-1, 0}}, {Up, {0, -1}}, {Down, {0, 1}}}};
    // The cross as one outline; what is down is filled over it.
    const double half = arm / 2;
    const auto cross = UIBezierPath::bezierPath();
    constexpr std::array<std::pair<double, double>, 12> corners{
        {{-1, -3}, {1, -3}, {1, -1}, {3, -1}, {3, 1}, {1, 1}, {1, 3}, {-1, 3}, {-1, 1}, {-3, 1}, {-3, -1}, {-1, -1}}};
    bool isFirst = true;
    for (const auto& [x, y] : corners) {
        const CGPoint corner = placed(CGPoint{directions.x + x * half, directions.y + y * half});
        if (isFirst)
            cross->moveToPoint(corner);
        else
            cross->addLineToPoint(corner);
        isFirst = false;
    }
    cross->closePath();
    drawPart(*cross, /*isDown=*/false);
    for (const auto& [code, way] : ways) {
        const CGPoint middle{directions.x + way.x * arm, directions.y + way.y * arm};
        if (isDown(code)) {
            tintColor()->setFill();
            rounded(placed(CGRect{{middle.x - half, middle.y - half}, {arm, arm}}), 2 * unit())->fill();
        }
        // An arrow head that points outward.
        const auto arrow = UIBezierPath::bezierPath();
        const double size = 4;
        arrow->moveToPoint(placed(CGPoint{middle.x + way.x * size, middle.y + way.y * size}));
        arrow->addLineToPoint(
            placed(CGPoint{middle.x - way.x * size / 2 + way.y * size, middle.y - way.y * size / 2 + way.x * size}));
        arrow->addLineToPoint(
            placed(CGPoint{middle.x - way.x * size / 2 - way.y * size, middle.y - way.y * size / 2 - way.x * size}));
        arrow->closePath();
        (isDown(code) ? cardColor() : secondaryTextColor())->setFill();
        arrow->fill();
    }
}

void PadView::drawStick(CGPoint middle, int rightCode) const {
    const auto circle = [&](CGPoint at, double radius) {
        return UIBezierPath::bezierPathWithOvalInRect(
            placed(CGRect{{at.x - radius, at.y - radius}, {2 * radius, 2 * radius}}));
    };
    drawPart(*circle(middle, stickRadius), /*isDown=*/false);
    // The codes follow each other: right, left, up, down.
    const double x = static_cast<double>(isDown(rightCode)) - static_cast<double>(isDown(rightCode + 1));
    const double y = static_cast<double>(isDown(rightCode + 3)) - static_cast<double>(isDown(rightCode + 2));
    drawPart(*circle({middle.x + x * stickWay, middle.y + y * stickWay}, stickRadius - 6), x != 0 || y != 0);
}

} // namespace app
