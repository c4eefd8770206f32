// The clock of Windows. Sleep is as fine as the system's timer, which the cycle raises to 1 ms while it runs.
#include <windows.h>
// Behind windows.h.
#include <timeapi.h>

#include <algorithm>

#include "platform/system_clock.h"

namespace skl::platform {

namespace {

constexpr UINT finestMs = 1;
// A coarse timer adds up to 16 ms; the condition is still looked at often enough.
constexpr Nanos look = std::chrono::milliseconds(5);

/// Windows 11 takes the fine timer from a program whose window nobody sees, under a simulator in full screen
/// say, and may run it slowly to save power. Neither is for this one.
void keepFullSpeed() {
    constexpr ULONG all =
        PROCESS_POWER_THROTTLING_EXECUTION_SPEED | PROCESS_POWER_THROTTLING_IGNORE_TIMER_RESOLUTION;
    // The second set for a system that does not know the timer's bit.
    for (const ULONG held : {all, ULONG{PROCESS_POWER_THROTTLING_EXECUTION_SPEED}}) {
        PROCESS_POWER_THROTTLING_STATE state{PROCESS_POWER_THROTTLING_CURRENT_VERSION, held, 0};
        if (::SetProcessInformation(::GetCurrentProcess(), ProcessPowerThrottling, &state, sizeof state))
            return;
    }
}

class Win32Clock : public Clock {
  public:
    Nanos utcNow() override {
        constexpr uint64_t unitsTo1970 = 116444736000000000;  // of 100 ns, since 1601
        FILETIME time{};
        ::GetSystemTimePreciseAsFileTime(&time);
        const uint64_t units = static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
        return Nanos(static_cast<int64_t>(units - unitsTo1970) * 100);
    }

    Nanos steadyNow() override { return std::chrono::steady_clock::now().time_since_epoch(); }

    bool waitUntil(Nanos deadline, const std::function<bool()>& done) override {
        for (;;) {
            if (done && done()) return true;
            const Nanos left = deadline - steadyNow();
            if (left <= Nanos(0)) return false;
            const auto pause =
                std::chrono::ceil<std::chrono::milliseconds>(done ? std::min(left, look) : left);
            ::Sleep(static_cast<DWORD>(std::min<int64_t>(pause.count(), 1000)));
        }
    }

    void raiseTimerResolution() override {
        keepFullSpeed();
        ::timeBeginPeriod(finestMs);
    }
    void releaseTimerResolution() override { ::timeEndPeriod(finestMs); }
};

}  // namespace

Clock& systemClock() {
    static Win32Clock clock;
    return clock;
}

}  // namespace skl::platform
