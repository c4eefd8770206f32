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
extern std::atomic<bool> g_waitingForFeed;      ///< true from a run's start until the feed's lamp is lit

/// All flags cleared, g_waitingForFeed set.
void gf_resetRequests();

}  // namespace skl
