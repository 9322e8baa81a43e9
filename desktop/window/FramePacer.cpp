#include "desktop/window/FramePacer.h"

#include <QAbstractEventDispatcher>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

double now() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

} // namespace

seat::FramePacer::FramePacer(std::function<void()> frameIsDue) : m_frameIsDue(std::move(frameIsDue)) {
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { m_frameIsDue(); });
    // Before the loop sleeps, rather than in a turn of its own after that.
    if (auto* const loop = QAbstractEventDispatcher::instance())
        QObject::connect(loop, &QAbstractEventDispatcher::aboutToBlock, &m_timer, [this] { runIfDue(); });
}

double seat::FramePacer::wait() const { return m_lastFrame + m_interval - now(); }

void seat::FramePacer::runIfDue() {
    if (!m_timer.isActive() || wait() > 0) return;
    m_timer.stop();
    m_frameIsDue();
}

void seat::FramePacer::request() {
    if (m_timer.isActive()) return;
    m_timer.start(static_cast<int>(std::lround(std::clamp(wait(), 0.0, m_interval) * 1000)));
}

void seat::FramePacer::cancel() { m_timer.stop(); }

void seat::FramePacer::frameBegins() { m_lastFrame = now(); }

void seat::FramePacer::setRefreshRate(double hertz) {
    m_interval = 1 / std::clamp(std::isfinite(hertz) ? hertz : 60.0, 20.0, 360.0);
}
