#include "kit/alerts/Spinner.h"

#include "kit/quartz/geometry.h"
#include "platform/uikit/UIBezierPath.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace seat {

NS_CLASS_IMPLEMENTATION(Spinner, UIView)

namespace {

constexpr int spokes = 12;
constexpr double turnsPerSecond = 1;

bool isHeldStill = false;

} // namespace

Spinner::~Spinner() { removeSource(m_timer); }

std::shared_ptr<Spinner> Spinner::initWithSize(double size) {
    return UIView::initWithFrame(CGRectMake(0, 0, size, size)) ? self(this) : nullptr;
}

void Spinner::holdStill() { isHeldStill = true; }

void Spinner::setTurning(bool turning) {
    turning = turning && !isHeldStill;
    if (turning == (m_timer != 0)) return;
    if (turning)
        turnLater();
    else
        removeSource(std::exchange(m_timer, 0));
}

void Spinner::turnLater() {
    const std::weak_ptr<Spinner> weak = self(this);
    m_timer = addTimer(1 / (turnsPerSecond * spokes), [weak] {
        const auto spinner = weak.lock();
        if (!spinner) return;
        spinner->m_step = (spinner->m_step + 1) % spokes;
        spinner->setTransform(CGAffineTransformMakeRotation(2 * std::numbers::pi * spinner->m_step / spokes));
        spinner->turnLater();
    });
}

void Spinner::drawRect(CGRect) {
    const double size = bounds().size.width;
    const double outer = size / 2 - size * 0.04;
    const double inner = size * 0.24;
    for (int i = 0; i < spokes; ++i) {
        const double angle = 2 * std::numbers::pi * i / spokes;
        const double x = std::sin(angle);
        const double y = -std::cos(angle);
        const auto spoke = UIBezierPath::bezierPath();
        spoke->moveToPoint({size / 2 + inner * x, size / 2 + inner * y});
        spoke->addLineToPoint({size / 2 + outer * x, size / 2 + outer * y});
        spoke->setLineWidth(size * 0.08);
        // The spoke at the top leads; the ones behind it fade.
        const double age = (spokes - i) % spokes;
        UIColor::colorWithWhite_alpha(1, std::max(0.25, 1 - age / 8))->setStroke();
        spoke->stroke();
    }
}

} // namespace seat
