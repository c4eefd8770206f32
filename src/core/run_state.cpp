#include "core/run_state.h"

#include <array>
#include <ctime>
#include <mutex>

namespace skl {

std::atomic<bool> g_stopRequested{false};
std::atomic<bool> g_userClosing{false};
std::atomic<ExitReason> g_exitReason{ExitReason::notYetSet};
std::atomic<int32_t> g_restartSeconds{0};
std::atomic<bool> g_restartPending{false};
std::atomic<bool> g_cycleRunning{false};
std::atomic<bool> g_flightRunning{false};
std::atomic<bool> g_simError{false};
std::atomic<bool> g_secondTick{false};
bool g_acceptTraffic = false;
bool g_flightPaused = false;
std::atomic<int32_t> engineTick{0};
std::atomic<int32_t> g_seconds{0};
std::atomic<int32_t> g_messageAge{0};
std::atomic<uint64_t> g_now{0};

namespace {

// Reason and delay are stored before the flag, and all three under this lock, so that a thread that sees the
// flag sees them too.
std::mutex stopLock;

}  // namespace

std::string_view gf_exitReasonText(ExitReason reason) {
    static constexpr std::array<std::string_view, 8> texts{
        "NOT YET SET",     "SIM WAS CLOSED",   "NEW FLIGHT",   "NEW SETTINGS",
        "USER CLOSED SIM", "SIMCONNECT ERROR", "READER ERROR", "SYSTEM ERROR"};
    return texts.at(static_cast<size_t>(reason));
}

void gf_requestStop(ExitReason reason, int32_t seconds) {
    std::lock_guard guard(stopLock);
    const bool mendsError = g_exitReason == ExitReason::systemError && reason == ExitReason::newSettings;
    if (g_stopRequested && !mendsError) return;
    if (g_userClosing) return;
    g_exitReason = reason;
    g_restartSeconds = seconds;
    g_stopRequested = true;
}

void gf_requestClose() {
    std::lock_guard guard(stopLock);
    if (g_exitReason == ExitReason::notYetSet) g_exitReason = ExitReason::userClosedSim;
    g_userClosing = true;
    g_stopRequested = true;
}

void gf_forceSystemError() {
    std::lock_guard guard(stopLock);
    g_exitReason = ExitReason::systemError;
}

WeekSlot gf_weekSlotNow() {
    const uint64_t packed = g_now;
    return {static_cast<int32_t>(packed & 0xffffffffu), static_cast<int32_t>(packed >> 32)};
}

WeekSlot gf_weekSlotOf(int64_t epochSeconds) {
    const int64_t days = epochSeconds >= 0 ? epochSeconds / 86400 : (epochSeconds - 86399) / 86400;
    const auto second = static_cast<int32_t>(epochSeconds - days * 86400);
    // January 1, 1970 was a Thursday.
    const auto day = static_cast<int32_t>(((days + 3) % 7 + 7) % 7) + 1;
    const int32_t minute = second / 60 % 60;
    const bool laterHalf = minute > 29 || (minute == 29 && second % 60 >= 30);
    return {day, (second / 3600 * 2 + (laterHalf ? 1 : 0)) % 48};
}

void gf_storeNow(WeekSlot slot) {
    g_now =
        static_cast<uint64_t>(static_cast<uint32_t>(slot.halfHour)) << 32 | static_cast<uint32_t>(slot.day);
}

bool gf_resetRunState(bool unlessClosing) {
    std::lock_guard guard(stopLock);
    if (unlessClosing && g_userClosing) return false;
    g_stopRequested = false;
    g_userClosing = false;
    g_secondTick = false;
    g_exitReason = ExitReason::notYetSet;
    g_restartSeconds = 0;
    g_cycleRunning = false;
    g_flightRunning = false;
    g_simError = false;
    g_acceptTraffic = false;
    g_flightPaused = false;
    g_seconds = 0;
    g_messageAge = 0;
    return true;
}

}  // namespace skl
