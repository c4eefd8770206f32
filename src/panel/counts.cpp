// The once-a-second counts of the panel.
#include "engine/engine_state.h"
#include "engine/live_parking.h"
#include "panel/panel_state.h"
#include "parking/park_airport.h"
#include "parking/stands.h"
#include "parking/statics.h"

namespace skl {

namespace {

template <class Value>
void show(std::atomic<Value>& field, Value value, Band band) {
    if (field.exchange(value) != value) gf_invalidate(band);
}

void show(std::string PanelState::*field, const std::string& text) {
    if (gf_panelText(field) != text) gf_setPanelText(field, text, Band::parking);
}

/// The panel's copy of what only this thread may read.
void showAirportInSight() {
    show(&PanelState::airportCode, parkAirport.code);
    show(&PanelState::reservedStand, reservedStand);
    show(g_panel.airportFileLoaded, g_apfLoaded.load(), Band::parking);
    show(g_panel.handmade, airportFile.handmade, Band::parking);
    show(g_panel.trafficWeek, airportFile.trafficWeek, Band::parking);
    show(g_panel.updateCount, updatesCount, Band::parking);
    show(g_panel.maxParkCount, maxParkCount, Band::parking);
    show(g_panel.standCount, uint64_t{stands.size()}, Band::parking);
}

}  // namespace

void lf_updateCounts() {
    gf_countEngine();
    uint64_t shown = 0;  // but for the parked ones
    for (const LiveAc& record : liveAcs)
        if (record.simState == SimObjectState::active && record.stage != FlightStage::parked) ++shown;
    show(g_panel.liveCount, shown, Band::status);
    lf_updateParkedCounts();
}

void lf_updateParkedCounts() {
    showAirportInSight();
    show(g_panel.parkedLiveCount, uint64_t{lf_countLiveParked(true)}, Band::parking);
    show(g_panel.parkedStaticCount, uint64_t{lf_countStatics(true)}, Band::parking);
}

}  // namespace skl
