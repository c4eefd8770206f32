// The airport is left: first its aircraft, then its stands, then what the panel shows of it.
#include "parking/leave_airport.h"

#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "feed/feed.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "parking/airport_in_sight.h"
#include "parking/learning.h"
#include "parking/park_airport.h"
#include "parking/stands.h"
#include "parking/statics.h"

namespace skl {

namespace {

/// Also one that still drives in, or waits for its next object: its stand is about to go.
bool isAtAirport(const LiveAc& record) {
    return record.stage <= FlightStage::take_off || record.stage == FlightStage::parking ||
           record.stage == FlightStage::parked;
}

void removeLive() {
    for (LiveAc& record : liveAcs) {
        if (!isAtAirport(record)) continue;
        record.standPos = {};
        record.standHeading = 0;
        record.standId = 0;
        record.standCargo = false;
        removeAircraftFromSim(record);
    }
    lf_sweepLive();
}

/// The next airport numbers its stands anew, and those still leaving stand on none of them.
void forgetStands() {
    for (StaticAc& record : staticAcs) record.standId = 0;
}

/// A learned file may have brought a limit of its own.
void restoreLiveLimit() {
    if (MAX_LIVE_SEL.value.exchange(liveLimit) == liveLimit) return;
    gf_invalidate(Band::options);
    lf_enforceMaxLive();
}

}  // namespace

void lf_removeAllStatics() {
    for (StaticAc& record : staticAcs)
        if (record.simState == SimObjectState::active || record.simState == SimObjectState::adding2sim)
            removeAircraftFromSim(record);
    lf_sweepStatics();
}

void lf_leaveParkAirport() {
    candidates.clear();
    lf_removeAllStatics();
    forgetStands();
    removeLive();
    lf_closeParkAirport();
}

void lf_closeParkAirport() {
    if (g_apfLoaded && (g_parkingChanged || updatesCount >= 1)) lf_saveLearned();
    loadPending = false;
    lf_dropRenewal();
    airportFile = {};
    qualityFactors = {};
    g_apfLoaded = false;
    gf_enableControl(flushStaticButton, false);
    gf_enableControl(parking_percentage, false);
    parkAirport = {};
    gf_setGroundReference({});
    updatesCount = 0;
    removalList.clear();
    candidates.clear();
    stands.clear();
    lf_standsChanged();
    for (auto text : {&PanelState::airportName, &PanelState::airportPublisher, &PanelState::qualityText})
        gf_setPanelText(text, "", Band::parking);
    // Here, since an airport whose stands prove wrong may have brought its limit already.
    restoreLiveLimit();
}

}  // namespace skl
