// The once-a-second counts of the panel.
#include "engine/engine_state.h"
#include "engine/live_parking.h"
#include "panel/panel_state.h"

namespace skl {

void lf_updateCounts() {
    gf_countEngine();
    uint64_t shown = 0;  // but for the parked ones
    for (const LiveAc& record : liveAcs)
        if (record.simState == SimObjectState::active && record.stage != FlightStage::parked) ++shown;
    if (g_panel.liveCount.exchange(shown) != shown) gf_invalidate(Band::status);
    const uint64_t parked = lf_countLiveParked(true);
    if (g_panel.parkedLiveCount.exchange(parked) != parked) gf_invalidate(Band::parking);
}

}  // namespace skl
