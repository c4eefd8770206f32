// Where the user stands now goes to the panel; where the user stood when the flight ended goes to the list,
// so that the next visit finds the stand free.
#include "parking/user_stand.h"

#include <algorithm>
#include <optional>

#include "core/locks.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_parking.h"
#include "panel/panel_state.h"
#include "parking/airport_in_sight.h"
#include "parking/airport_list.h"
#include "parking/park_airport.h"
#include "parking/stands.h"
#include "parking/static_ac.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr double standingKnots = 2;

/// False when the airport has no such stand.
bool setReserved(bool reserved) {
    Stand* stand = lf_findStand(reservedStand);
    if (stand) stand->reserved = reserved;
    return stand != nullptr;
}

/// The flight that has ended, or the present moment when it goes on.
FlightEnd flightEnd() {
    LockGuard guard(g_simLock);
    if (userFlightEnd) return *userFlightEnd;
    return {.position = simUser.pos(), .groundSpeed = engineUser.groundSpeed, .onGround = userOnGround};
}

}  // namespace

void lf_clearReservedStand() {
    const Stand* stand = lf_findStand(reservedStand);
    if (!stand) return;
    const auto standing = std::find_if(staticAcs.begin(), staticAcs.end(), [stand](const StaticAc& record) {
        return record.standId == stand->sid && record.simState == SimObjectState::active;
    });
    if (standing != staticAcs.end()) {
        removeAircraftFromSim(*standing);
        return;
    }
    const auto parked = std::find_if(liveAcs.begin(), liveAcs.end(), [stand](const LiveAc& record) {
        return record.standId == stand->sid && lf_isParked(record);
    });
    if (parked != liveAcs.end()) removeAircraftFromSim(*parked);
}

void lf_reserveStand(const std::string& standId) {
    setReserved(false);
    reservedStand = standId;
    lf_clearReservedStand();
    g_panel.reservedStandOk = setReserved(true);
    gf_invalidate(Band::parking);
}

void lf_updateUserStand() {
    const std::string text = lf_standOfUser(engineUser.pos());
    if (text != gf_panelText(&PanelState::userStandText))
        gf_setPanelText(&PanelState::userStandText, text, Band::status);
}

void lf_rememberUserStand() {
    const FlightEnd end = flightEnd();
    if (!userOnGroundKnown || !end.onGround || end.groundSpeed > standingKnots || !gf_airportInSight())
        return;
    const std::string stand = lf_standAt(end.position);
    ParkAirportNode* node = lf_parkAirportNode(parkAirport.code);
    if (stand.empty() || !node || node->stand == stand) return;
    node->stand = stand;
    lf_storeParkAirport(node->code);
}

}  // namespace skl
