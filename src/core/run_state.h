// The state of a run that every subsystem reads: why it ends, whether a flight runs, and its clocks.
// Everything here may be read on any thread; who writes is said at each name.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

namespace skl {

inline constexpr std::string_view programName = "Skylantern";

enum class ExitReason : int {
    notYetSet = 0,
    simWasClosed = 1,
    newFlight = 2,
    newSettings = 3,
    userClosedSim = 4,
    simConnectError = 5,
    readerError = 6,
    systemError = 7,
};

/// The text that the log shows for a reason.
std::string_view gf_exitReasonText(ExitReason reason);

extern std::atomic<bool> g_stopRequested;      ///< the current run must end; written by gf_requestStop
extern std::atomic<bool> g_userClosing;        ///< the close button was pressed: the process is to end
extern std::atomic<ExitReason> g_exitReason;   ///< valid once g_stopRequested is seen
extern std::atomic<int32_t> g_restartSeconds;  ///< delay of the restart countdown, likewise
extern std::atomic<bool> g_restartPending;     ///< worker: a new run follows this one
extern std::atomic<bool> g_cycleRunning;       ///< worker: inside the main cycle of this run
extern std::atomic<bool> g_flightRunning;      ///< SimConnect thread: a flight is in progress
extern std::atomic<bool> g_simError;           ///< any thread: a request failed, make no more in this run
extern std::atomic<bool> g_secondTick;         ///< SimConnect thread sets, the cycle clears: the heartbeat
extern bool g_acceptTraffic;                   ///< worker, under g_trafficLock: records may be queued
extern bool g_flightPaused;                    ///< worker only
extern std::atomic<int32_t> engineTick;        ///< worker: ticks of a running flight, 100 a second
extern std::atomic<int32_t> g_seconds;         ///< worker: heartbeats of the cycle, 0 to 86399
extern std::atomic<int32_t> g_messageAge;      ///< worker: heartbeats, for the age of messages

/// Weekday 1 (Monday) to 7 and half hour 0 to 47, both UTC.
struct WeekSlot {
    int32_t day = 0;
    int32_t halfHour = 0;
    bool operator==(const WeekSlot&) const = default;
};
extern std::atomic<uint64_t>
    g_now;  ///< worker: the current week slot, day in the low and half hour in the high half
WeekSlot gf_weekSlotNow();
/// The slot of a time in seconds since 1970 UTC. From 29 min 30 s on the later half hour counts.
WeekSlot gf_weekSlotOf(int64_t epochSeconds);
void gf_storeNow(WeekSlot slot);

/// Asks the run to end. The first caller decides reason and delay; later calls change nothing, but for
/// newSettings, which takes the place of systemError: the user has mended what the error on the panel named.
void gf_requestStop(ExitReason reason, int32_t seconds);

/// The close button: sets both stop flags, and the reason userClosedSim if none is set.
void gf_requestClose();

/// For the worker's top level after a user error: the reason becomes systemError whatever it was.
void gf_forceSystemError();

/// Whether a wait has to end.
inline bool gf_stopping() {
    return g_stopRequested || g_userClosing;
}

/// Back to the values of a run's start. With `unlessClosing` it does nothing, and gives false, once the user
/// closes.
bool gf_resetRunState(bool unlessClosing = false);

}  // namespace skl
