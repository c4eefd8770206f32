// Requests of the user to the worker, each cleared by the one who serves it, and whether a rescan can begin
// at once.
#pragma once

#include <atomic>

namespace skl {

extern std::atomic<bool> g_parkingChanged;      ///< a setting stored per airport changed
extern std::atomic<bool> g_renewRequested;      ///< renew the static aircraft
extern std::atomic<bool> g_blockChanged;        ///< BLOCK_CALLSIGN changed
extern std::atomic<bool> g_callsignQuery;       ///< CALLSIGN_2_OBJECTID holds a new callsign
extern std::atomic<bool> g_flushStatic;         ///< remove all static aircraft
extern std::atomic<bool> g_rereadParkAirports;  ///< read my_park_airports.txt again
extern std::atomic<bool> g_destinationChanged;  ///< DESTINATION holds a new airport
extern std::atomic<bool> g_navLightsChanged;    ///< NAV_LIGHTS_WHILE_PARKED changed
extern std::atomic<bool> g_liveLimitChanged;    ///< MAX_LIVE_SEL changed
extern std::atomic<bool> g_autoRangeRequested;  ///< AUTO_RANGE was switched on
extern std::atomic<bool> g_simulatorSwitched;  ///< what was scanned is of the other simulator; outlives a run
extern std::atomic<bool> g_waitingForFeed;     ///< true from a run's start until the feed's lamp is lit

/// All flags of a run cleared, g_waitingForFeed set.
void gf_resetRequests();
/// Serves destination, lights, live limit and range: worker, at each heartbeat.
void lf_servePanelRequests();

}  // namespace skl
