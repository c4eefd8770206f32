// A run from its data to the cycle: the simulator, the user's place, the feed.
#include <fmt/format.h>

#include <atomic>
#include <memory>

#include "core/clock.h"
#include "core/log.h"
#include "core/parameters.h"
#include "core/run_sequence.h"
#include "core/run_state.h"
#include "core/task.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "liveries/catalogue.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "panel/traffic_range.h"
#include "simlink/session.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

using std::chrono::milliseconds;

std::shared_ptr<std::atomic<bool>> simStop;
std::unique_ptr<RunningTask> simThread, qnhThread, trafficThread;

/// Looks at `arrived` every `interval`; false when a stop came first.
template <class Condition>
bool pollUntil(milliseconds interval, Condition arrived) {
    while (!gf_stopping()) {
        if (arrived()) return true;
        gf_sleepUnlessStopping(interval);
    }
    return false;
}

void openFeedLink() {
    if (g_realTrafficHere && !AEROWINX.value) {
        gf_startListener(PORT_NUMBER.get());
    } else {
        // Nothing to wait for: the streams come over UDP alone.
        g_panel.feedConnected = true;
        g_waitingForFeed = false;
        gf_invalidate(Band::status);
    }
    if (gf_stopping()) return;
    g_panel.feedLampBlack = false;
    gf_invalidate(Band::status);
    if (AEROWINX.value) {
        rtLevel2 = false;
        return;
    }
    gf_rtHandshake();
    if (rtLevel2) gf_sendSimTime(simEpoch);
}

}  // namespace

void lf_startSimThread() {
    simStop = std::make_shared<std::atomic<bool>>(false);
    simThread = gf_taskRunner().start("SimConnect", gf_simTask(simStop));
}

void lf_startReaders() {
    qnhThread = gf_taskRunner().start("QNH Reader", gf_qnhReaderTask(qnhPort));
    gf_sleepUnlessStopping(milliseconds(2000));
    trafficThread = gf_taskRunner().start("Traffic Reader", gf_trafficReaderTask(trafficPort));
}

void lf_endThreads() {
    if (simStop) *simStop = true;
    gf_stopReaders();
    gf_sleep(milliseconds(500));
    for (auto* thread : {&simThread, &qnhThread, &trafficThread}) {
        if (*thread) (*thread)->join();
        thread->reset();
    }
    simStop.reset();
}

bool lf_waitForFlight() {
    if (!pollUntil(milliseconds(100), [] { return g_flightRunning && !g_simError; })) return false;
    gf_requestUserOnGround();
    const bool placed = pollUntil(milliseconds(500), [] {
        gf_requestUser(engineUser);
        return userOnGroundKnown && positionKnown(engineUser.pos());
    });
    if (!placed) return false;
    gf_requestUserNames();
    return pollUntil(milliseconds(200), [] { return positionKnown(engineUser.pos()); });
}

void lf_connectAndCycle() {
    g_panel.feedConnected = false;
    g_panel.simConnected = false;
    gf_invalidate(Band::status);
    gf_reserveEngine();
    gf_reserveCatalogue();
    gf_reserveSimQueues();
    gf_deleteObjectList();
    lf_startSimThread();
    if (!lf_waitForFlight()) return;
    if (AUTO_RANGE.value) {
        gf_autoRange();
        gf_enableControl(RANGE, false);
    }
    openFeedLink();
    if (gf_stopping()) return;
    lf_startReaders();
    gf_sendPosition();
    gf_setFilterPos(engineUser.pos());
    const Nanos patience = gf_steadyNow() + std::chrono::seconds(15);
    gf_waitUntil(patience, [] { return gf_feedTimestamp() != 0 || gf_stopping(); });
    if (gf_stopping()) return;
    if (gf_feedTimestamp() == 0) gf_log("No traffic in this region?");
    lf_mainCycle();
}

}  // namespace skl
