#include <algorithm>
#include <thread>

#include "platform/system_clock.h"

namespace skl::platform {

namespace {

/// POSIX timers are fine enough without any request for a resolution.
class PosixClock : public Clock {
  public:
    Nanos utcNow() override { return std::chrono::system_clock::now().time_since_epoch(); }
    Nanos steadyNow() override { return std::chrono::steady_clock::now().time_since_epoch(); }

    bool waitUntil(Nanos deadline, const std::function<bool()>& done) override {
        constexpr Nanos look = std::chrono::milliseconds(20);
        for (;;) {
            if (done && done()) return true;
            const Nanos now = steadyNow();
            if (now >= deadline) return false;
            const Nanos until = done ? std::min(deadline, now + look) : deadline;
            std::this_thread::sleep_until(std::chrono::steady_clock::time_point(until));
        }
    }
};

}  // namespace

Clock& systemClock() {
    static PosixClock clock;
    return clock;
}

}  // namespace skl::platform
