// The end of a run: threads and links closed, what does not outlive it forgotten, and what comes next.
#include <fmt/format.h>

#include "airports/airport_file.h"
#include "core/clock.h"
#include "core/locks.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_sequence.h"
#include "core/run_state.h"
#include "core/supervisor.h"
#include "core/text.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/flight_plan.h"
#include "feed/feed.h"
#include "liveries/catalogue.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "panel/traffic_range.h"
#include "parking/airport_in_sight.h"
#include "parking/airport_list.h"
#include "parking/learning.h"
#include "parking/park_airport.h"
#include "parking/stand_fit.h"
#include "parking/stands.h"
#include "parking/statics.h"
#include "simlink/session.h"

namespace skl {

namespace {

/// The error stays on the panel until the user closes the program or gives the setting that was wrong.
void holdError() {
    gf_waitUntil(Nanos::max(), [] { return g_userClosing || g_exitReason == ExitReason::newSettings; });
    if (g_userClosing) gf_log(fmt::format("User closed {}", programName));
}

void clearText(EditStringParameter& parameter) {
    parameter.set("");
    gf_saveParameter(parameter);
}

bool restartWanted() {
    if (g_userClosing) return false;
    const ExitReason reason = g_exitReason;
    return reason == ExitReason::newSettings || reason == ExitReason::simConnectError ||
           reason == ExitReason::readerError;
}

void prepareRestart() {
    gf_resetMessages();
    gf_showMessage("Prepare for a restart ...", false);
    gf_log("Prepare for a restart ...");
    if (g_exitReason == ExitReason::newSettings) return;
    // A restart after an error never scans again.
    for (auto* scan : {&SCAN_LIVERIES, &SCAN_AIRPORTS}) {
        scan->value = false;
        gf_saveParameter(*scan);
    }
}

void sayNewFlight() {
    const std::string text =
        fmt::format("New flight detected, {} will close, please restart manually ...", programName);
    gf_showMessage(text, false);
    gf_log(text);
    gf_waitUntil(gf_steadyNow() + std::chrono::seconds(10), [] { return g_userClosing.load(); });
}

/// How the process has kept its pace so far, for whoever reads a log of a slow evening.
void logPace() {
    const auto& c = engineCounters;
    if (c.ticks == 0) return;
    gf_log(fmt::format(
        "Ticks: {}, {} began more than 5 ms late; at most {} records in line; aircraft created {}, "
        "removed {}",
        c.ticks.load(), c.lateTicks.load(), c.longestLine.load(), c.created.load(), c.removed.load()));
}

/// What became of the aircraft that only stand, once an airport had any.
void logStatics() {
    const auto& c = engineCounters;
    if (c.staticsPlaced == 0) return;
    gf_log(fmt::format("Static aircraft: {} placed, {} kept and {} replaced at renewals, {} made way",
                       c.staticsPlaced.load(), c.staticsKept.load(), c.staticsReplaced.load(),
                       c.staticsMadeWay.load()));
}

void closeRun() {
    gf_log(fmt::format("Exiting: {}", gf_exitReasonText(g_exitReason)));
    {
        LockGuard guard(g_trafficLock);
        g_acceptTraffic = false;
    }
    lf_endThreads();
    gf_closeLink();
    if (g_exitReason == ExitReason::systemError) holdError();
    lf_rememberUserStand();
    if (gf_airportInSight()) lf_leaveParkAirport();
    logStatics();
    logPace();
    liveryMemory.clear();
    gf_removeFlightPlanFolder();
    clearText(DESTINATION);
    clearText(BLOCK_CALLSIGN);
    gf_deleteObjectList();
    gf_logMatchSummary();
    gf_clearUncreatable();
    g_restartPending = restartWanted();
    if (g_restartPending) {
        prepareRestart();
        lf_restartCountdown();
        g_restartPending = lf_resetForRestart();
    } else if (g_exitReason == ExitReason::newFlight) {
        sayNewFlight();
    }
}

}  // namespace

void lf_closingDown() {
    try {
        closeRun();
    } catch (...) {
        const std::string text = fmt::format("{} exception {}", "lf_closingDown", gf_currentExceptionText());
        gf_showMessage(text, false);
        gf_log(text);
        g_restartPending = false;
        gf_waitUntil(Nanos::max(), [] { return g_userClosing.load(); });
    }
    if (g_restartPending)
        gf_postStartRun();
    else
        gf_postEndProcess();
}

void lf_restartCountdown() {
    const int32_t seconds = g_restartSeconds;
    if (seconds < 1) return;
    gf_log(fmt::format("Restarting after {} seconds\n\n\n\n\n", seconds));
    for (int32_t left = seconds; left > 0; --left) {
        gf_showMessage(
            fmt::format("Restarting after {} second{}", left, gf_plural(static_cast<uint64_t>(left))), false);
        if (gf_waitUntil(gf_steadyNow() + std::chrono::seconds(1), [] { return g_userClosing.load(); }))
            return;
    }
}

bool lf_resetForRestart() {
    if (!gf_resetRunState(true)) return false;
    gf_resetFeed();
    gf_stopCollectingCallsigns();
    rtLevel2 = false;
    gf_resetSimLink();
    gf_resetEngine();
    gf_resetAirportInSight();
    gf_resetParkAirports();
    gf_resetStands();
    gf_resetStandFit();
    gf_resetStatics();
    gf_resetLearning();
    gf_resetPanel();
    gf_resetRequests();
    gf_applyRange(RANGE.value);
    return true;
}

}  // namespace skl
