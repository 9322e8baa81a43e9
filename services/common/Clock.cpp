#include "services/common/Clock.h"

namespace services {
namespace {

class SystemClock final : public Clock {
public:
    Moment now() const override {
        return std::chrono::duration_cast<Moment>(std::chrono::steady_clock::now().time_since_epoch());
    }
    bool runsByItself() const override { return true; }
};

} // namespace

const Clock& Clock::system() {
    static const SystemClock clock;
    return clock;
}

} // namespace services
