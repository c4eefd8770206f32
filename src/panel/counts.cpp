// The once-a-second counts of the panel.
#include "engine/engine_state.h"
#include "engine/live_parking.h"
#include "panel/panel_state.h"
#include "parking/statics.h"

namespace skl {

namespace {

void show(std::atomic<uint64_t>& field, uint64_t count, Band band) {
    if (field.exchange(count) != count) gf_invalidate(band);
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
    show(g_panel.parkedLiveCount, lf_countLiveParked(true), Band::parking);
    show(g_panel.parkedStaticCount, lf_countStatics(true), Band::parking);
}

}  // namespace skl
