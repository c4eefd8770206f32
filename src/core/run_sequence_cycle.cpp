// The cycle: a tick every 10 ms, and the work that hangs on the heartbeats of the simulator.
#include <fmt/format.h>

#include <cmath>

#include "core/clock.h"
#include "core/folders.h"
#include "core/locks.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameters.h"
#include "core/run_sequence.h"
#include "core/run_state.h"
#include "core/time_text.h"
#include "engine/conflicts.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "liveries/catalogue.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "panel/traffic_range.h"
#include "parking/airport_in_sight.h"
#include "parking/park_airport.h"
#include "parking/stands.h"
#include "parking/statics.h"
#include "simlink/ai_commands.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr Nanos tick = std::chrono::milliseconds(10);
constexpr Nanos lateness = std::chrono::milliseconds(5);
constexpr int32_t secondsOfADay = 86400;
constexpr double latestStamp = 1e11;  // seconds

int32_t pauseCountdown = 0;

/// The feed's time where it is shifted against the present, else the system's.
WeekSlot currentSlot() {
    const double feedTime = gf_feedTimestamp();
    // A damaged record may carry a stamp that no calendar holds.
    const bool sane = feedTime != 0 && std::abs(feedTime) < latestStamp;
    if (rtLevel2 && sane) return gf_weekSlotOf(static_cast<int64_t>(feedTime));
    return gf_weekSlotOf(gf_utcSeconds());
}

/// Records are taken while the flight runs and the link, where there is one, is up.
void acceptTraffic() {
    LockGuard guard(g_trafficLock);
    g_acceptTraffic = gf_linkAllowsTraffic();
}

/// The work of all seconds but each fifteenth; odd periods keep it spread out.
void everyOtherSecond(int32_t second) {
    if (second % 16 == 0 && !lf_renewalUnderWay()) lf_airportInSight(false);
    if (second % 59 == 0) gf_updateReaderLamps();
    if (second % 61 == 0) lf_sameFlightParked();
    if (second % 62 == 0 && CALLSIGN_OBJECTIDS.value && sim2020) lf_writeObjectList();
}

/// The user asked for the list of airports to be read again. It waits while statics are worked on.
void rereadParkAirports() {
    if (!g_rereadParkAirports || staticsLock) return;
    std::string message;
    gf_forgetProbes();
    lf_rereadParkAirports(message);
    if (!message.empty()) gf_showMessage(message, true);
    g_rereadParkAirports = false;
    gf_enableControl(rereadButton, DESTINATION.empty());
    gf_enableControl(DESTINATION, true);
}

}  // namespace

void lf_mainCycle() {
    lf_airportInSight(true);
    gf_updateReaderLamps();
    g_seconds = 0;
    pauseCountdown = 0;
    Nanos deadline = gf_steadyNow() + tick;
    gf_storeNow(currentSlot());
    acceptTraffic();
    gf_enableControl(CALLSIGN_2_OBJECTID, true);
    gf_clock().raiseTimerResolution();
    g_cycleRunning = true;
    while (lf_cycleTick()) {
        gf_waitUntil(deadline, {});
        const Nanos now = gf_steadyNow();
        engineCounters.ticks.fetch_add(1, std::memory_order_relaxed);
        if (now > deadline + lateness) engineCounters.lateTicks.fetch_add(1, std::memory_order_relaxed);
        // A heartbeat re-anchors the cycle: lag is dropped, ticks are never caught up.
        if (g_secondTick) deadline = now;
        deadline += tick;
    }
    g_cycleRunning = false;
    gf_clock().releaseTimerResolution();
}

bool lf_cycleTick() {
    if (!g_flightRunning || g_simError) {
        lf_notRunningTick();
        return !gf_stopping();
    }
    lf_engineTick();
    bool beat = true;
    // A simulator that hangs sends no more heartbeats: the stop must not wait for one.
    if (!g_secondTick.compare_exchange_strong(beat, false)) return !gf_stopping();
    lf_everySecond();
    if (gf_stopping()) return false;
    const int32_t second = g_seconds;
    if (second % 15 == 0)
        lf_every15Seconds();
    else
        everyOtherSecond(second);
    return true;
}

void lf_everySecond() {
    if (g_flightPaused) {
        g_flightPaused = false;
        gf_log(fmt::format("{} Flight resumed", gf_timeOfDay()));
        acceptTraffic();
    }
    gf_ageMessage();
    lf_updateCounts();
    gf_storeNow(currentSlot());
    ++g_seconds;
    lf_updateUserStand();
    lf_servePanelRequests();
    lf_serveNewAcList();
    gf_answerCallsignQuery();
    lf_serveFlush();
    lf_userInTheAir();
    lf_userOnTheGround();
    lf_taxiingAgainstStatics();
    lf_serveBlock();
}

void lf_every15Seconds() {
    const int32_t second = g_seconds;
    gf_setFilterPos(engineUser.pos());
    if (rtLevel2) gf_sendSimTime(simEpoch);
    if (!reservedStand.empty()) lf_clearReservedStand();
    rereadParkAirports();
    lf_serveRenewal();
    if (gf_anyReaderStale()) gf_updateReaderLamps();
    if (second % 30 == 0 && AUTO_RANGE.value) gf_autoRange();
    if (second % 60 == 0) {
        g_panel.minutesToRenewal = (1200 - second % 1200) / 60;
        gf_invalidate(Band::options);
    }
    if (second % 1200 == 0) {
        gf_logUnmatched();
        if (g_apfLoaded && !INITIAL_LOAD_ONLY.value) g_renewRequested = true;
    }
    if (second % secondsOfADay == 0) {
        g_seconds = 0;
        gf_logMatchSummary();
        liveryMemory.clear();
    }
}

void lf_notRunningTick() {
    if (!g_flightPaused) {
        {
            LockGuard guard(g_trafficLock);
            g_acceptTraffic = false;
        }
        g_flightPaused = true;
        pauseCountdown = 100;
        gf_dropPoses();
        gf_log(fmt::format("{} Flight not running", gf_timeOfDay()));
    }
    lf_processSimInbox();
    --pauseCountdown;
    if (pauseCountdown % 100 == 0) {
        rereadParkAirports();
        lf_servePanelRequests();
        gf_sendPosition();
    }
    if (pauseCountdown < 1) {
        pauseCountdown = 100;
        lf_updateCounts();
        gf_storeNow(currentSlot());
    }
}

}  // namespace skl
