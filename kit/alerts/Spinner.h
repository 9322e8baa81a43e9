#pragma once

#include "kit/dispatch/run_loop_sources.h"
#include "platform/uikit/UIView.h"

namespace seat {

// Twelve white spokes, the brightest of which goes round, a spoke's width twelve times a second. Turns only while it
// is told to; nothing wakes up otherwise.
class Spinner final : public UIView {
    NS_CLASS(Spinner)
public:
    ~Spinner() override;

    std::shared_ptr<Spinner> initWithSize(double size);
    void setTurning(bool turning);
    // From now on none turns in this process: pictures of the same moment are alike.
    static void holdStill();
    void drawRect(CGRect rect) override;

private:
    Spinner() = default;
    void turnLater();

    int m_step = 0;
    SourceToken m_timer = 0; // 0: stands still
};

} // namespace seat
