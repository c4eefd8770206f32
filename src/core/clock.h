// The clock seam: every wait and every look at the time goes through it, so that a test can bring its own.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace skl {

using Nanos = std::chrono::nanoseconds;

class Clock {
  public:
    virtual ~Clock() = default;
    virtual Nanos utcNow() = 0;     ///< since 1970 UTC
    virtual Nanos steadyNow() = 0;  ///< since some fixed moment, never going back
    /// Returns true as soon as `done` gives true, false when the steady time `deadline` has come. `done` may
    /// be empty; it is called on the waiting thread, at least every 20 ms and once before any waiting.
    virtual bool waitUntil(Nanos deadline, const std::function<bool()>& done) = 0;
    virtual void raiseTimerResolution() {}  ///< to 1 ms, where the system needs that; calls nest
    virtual void releaseTimerResolution() {}
};

/// The clock in force: the system's unless a test has set its own.
Clock& gf_clock();
/// nullptr brings the system's clock back. To be called while no other thread runs.
void gf_setClock(Clock* clock);

Nanos gf_steadyNow();
int64_t gf_utcSeconds();
bool gf_waitUntil(Nanos deadline, const std::function<bool()>& done);
/// Waits, and ends early when a stop of the run or of the process is asked for. True: the stop ended it.
bool gf_sleepUnlessStopping(std::chrono::milliseconds time);
/// Waits the whole time, stop or not.
void gf_sleep(std::chrono::milliseconds time);

}  // namespace skl
