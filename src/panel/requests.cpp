#include "panel/requests.h"

#include "airports/airport_index.h"
#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "panel/traffic_range.h"
#include "parking/airport_list.h"
#include "parking/static_ac.h"
#include "simlink/ai_commands.h"

namespace skl {

std::atomic<bool> g_parkingChanged{false};
std::atomic<bool> g_renewRequested{false};
std::atomic<bool> g_blockChanged{false};
std::atomic<bool> g_callsignQuery{false};
std::atomic<bool> g_flushStatic{false};
std::atomic<bool> g_rereadParkAirports{false};
std::atomic<bool> g_destinationChanged{false};
std::atomic<bool> g_navLightsChanged{false};
std::atomic<bool> g_liveLimitChanged{false};
std::atomic<bool> g_autoRangeRequested{false};
std::atomic<bool> g_simulatorSwitched{false};
std::atomic<bool> g_waitingForFeed{true};

void gf_resetRequests() {
    for (auto* flag : {&g_parkingChanged, &g_renewRequested, &g_blockChanged, &g_callsignQuery,
                       &g_flushStatic, &g_rereadParkAirports, &g_destinationChanged, &g_navLightsChanged,
                       &g_liveLimitChanged, &g_autoRangeRequested})
        *flag = false;
    g_waitingForFeed = true;
}

namespace {

void showNavLights() {
    const uint32_t on = NAV_LIGHTS_WHILE_PARKED.value ? 1 : 0;
    for (const StaticAc& record : staticAcs)
        if (record.simState == SimObjectState::active) simEvent(record.objectId, ev::navLights, on);
    for (const LiveAc& record : liveAcs)
        if (record.simState == SimObjectState::active && record.stage == FlightStage::parked)
            simEvent(record.objectId, ev::navLights, on);
}

}  // namespace

void lf_servePanelRequests() {
    if (g_destinationChanged.exchange(false)) {
        const std::string code = DESTINATION.get();
        if (const Airport* airport = gf_findAirport(code)) lf_setDestination(code, airport->pos());
    }
    if (g_navLightsChanged.exchange(false)) showNavLights();
    if (g_liveLimitChanged.exchange(false)) lf_enforceMaxLive();
    if (g_autoRangeRequested.exchange(false) && AUTO_RANGE.value) gf_autoRange();
}

}  // namespace skl
