// One pass after the other decides which airport is populated: none, then one whose stands the next pass
// loads, then the same one until it is out of sight or another one is nearer.
#include "parking/airport_in_sight.h"

#include <fmt/format.h>

#include "airports/airport_file.h"
#include "airports/airport_index.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameters.h"
#include "core/time_text.h"
#include "feed/feed.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "parking/airport_list.h"
#include "parking/park_airport.h"
#include "parking/stand_fit.h"
#include "parking/stands.h"
#include "parking/statics.h"
#include "parking/user_stand.h"
#include "simlink/user_aircraft.h"

namespace skl {

bool loadPending = false;

namespace {

/// Whether an airport at this distance is populated while the user is in the air.
bool inSight(double nm) {
    return AIRP_RANGE.value >= nm && AIRP_HEIGHT.value >= engineUser.altitude;
}

/// The last planned aircraft has been placed: the parking controls are free again.
void endPlacing() {
    lf_lockStatics(false);
    gf_clearMessage();
    lf_updateParkedCounts();
}

void loadAirport() {
    loadPending = false;
    gf_clearMessage();
    const std::string reason = lf_readParkedFile();
    if (reason.empty()) {
        gf_setGroundReference(GroundReference{parkAirport.pos(), parkAirport.alt});
        lf_firstFill();
    } else {
        gf_showMessage(reason, true);
        lf_closeParkAirport();
    }
    gf_enableControl(DESTINATION, true);
}

void lookOnGround(bool forced) {
    const Airport* closest = gf_closestAirport(engineUser.pos());
    if (!closest) {
        gf_showMessage("User aircraft on the ground, no airport in sight", true);
        return;
    }
    const std::string text = fmt::format("User aircraft on the ground at {}", gf_airportDisplayId(*closest));
    if (!gf_airportFileKnown(closest->code)) {
        gf_showMessage(text + ", no airport file found", true);
        return;
    }
    gf_log(text);
    loadPending = lf_setParkAirport(closest->code);
    if (loadPending) lf_announceStatics(forced);
}

void lookFromAir() {
    gf_enableControl(DESTINATION, true);
    if (parkAirports.empty()) return;
    const ParkAirportNode& first = parkAirports.front();
    const double nm = gf_distanceNm(engineUser.pos(), first.pos());
    if (!inSight(nm) || !lf_setParkAirport(first.code)) return;
    gf_showMessage(fmt::format("{} in sight at {:.1F} nm", first.code, nm), true);
    loadPending = true;
    lf_announceStatics(false);
}

/// Whether the airport in sight is given up.
bool toBeLeft() {
    const double nm = gf_distanceNm(engineUser.pos(), parkAirport.pos());
    const std::string displayId = gf_airportDisplayId(parkAirport);
    if (!inSight(nm)) {
        gf_log(fmt::format("\n{} {} is out of sight ({:.1F} nm), parked aircraft will be removed",
                           gf_timeOfDay(), displayId, nm));
        return true;
    }
    if (parkAirports.empty() || parkAirports.front().code == parkAirport.code) return false;
    const ParkAirportNode& first = parkAirports.front();
    const double firstNm = gf_distanceNm(engineUser.pos(), first.pos());
    if (!inSight(firstNm) || nm < firstNm) return false;
    gf_log(fmt::format("\n{} {} is in sight ({:.1F} nm), parked aircraft at {} will be removed first",
                       gf_timeOfDay(), first.code, firstNm, displayId));
    return true;
}

}  // namespace

bool lf_setParkAirport(const std::string& code) {
    const Airport* airport = gf_findAirport(code);
    if (!airport) return false;
    parkAirport = *airport;
    gf_log(fmt::format("\nThe park airport is {}", gf_airportDisplayId(parkAirport)));
    return true;
}

void lf_airportInSight(bool forced) {
    if (staticsLock && candidates.empty()) endPlacing();
    if (loadPending) {
        loadAirport();
        return;
    }
    if (!positionKnown(engineUser.pos())) return;
    lf_sortParkAirports(engineUser.pos());
    const bool onGround = userOnGround;
    if (gf_airportInSight()) {
        // An airport once in sight stays for as long as the user is on the ground.
        if (!onGround && toBeLeft()) lf_leaveParkAirport();
    } else if (onGround) {
        lookOnGround(forced);
    } else {
        lookFromAir();
    }
}

bool lf_rereadParkAirports(std::string& message) {
    const LaLo user = engineUser.pos();
    const bool known = lf_readMyParkAirports();
    const std::string destination = DESTINATION.get();
    if (const Airport* airport = gf_findAirport(destination)) lf_setDestination(destination, airport->pos());
    if (positionKnown(user)) lf_sortParkAirports(user);
    if (!known) return false;
    const ParkAirportNode* node = gf_airportInSight() ? lf_parkAirportNode(parkAirport.code) : nullptr;
    if (positionKnown(user) && !staticsLock && node && lf_standOfUser(user).empty() && !node->stand.empty() &&
        node->stand != reservedStand) {
        message = fmt::format("reserved stand changed from '{}' to '{}'", reservedStand, node->stand);
        lf_reserveStand(node->stand);
    }
    if (message.empty()) message = "park airports and stands are okay";
    return true;
}

void gf_resetAirportInSight() {
    loadPending = false;
    parkAirport = {};
    gf_setGroundReference({});
}

}  // namespace skl
