#pragma once

// Says when the next frame is due: when the last one is long ago, as soon as the events that wait are delivered, else
// one refresh of the screen after it.

#include <QTimer>

#include <functional>

namespace seat {

class FramePacer {
public:
    explicit FramePacer(std::function<void()> frameIsDue);

    // However often it is asked, one frame comes of it.
    void request();
    void cancel();
    // A frame begins now.
    void frameBegins();
    // Of the screen that the window is on.
    void setRefreshRate(double hertz);

private:
    double wait() const; // seconds; 0 and less: none
    void runIfDue();

    std::function<void()> m_frameIsDue;
    QTimer m_timer;
    double m_interval = 1.0 / 60; // seconds
    double m_lastFrame = -1;      // on a clock of its own: frames are for the eye, whatever the host clock says
};

} // namespace seat
