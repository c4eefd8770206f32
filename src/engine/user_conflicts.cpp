// Aircraft in the user's way, and the callsign that the user does not want to see.
#include <algorithm>
#include <cmath>
#include <limits>

#include "core/parameters.h"
#include "engine/conflicts.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/update_cycle.h"
#include "panel/requests.h"
#include "parking/static_ac.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr double liveMargin = 1.15, staticMargin = 1.1;  // times the half spans
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

LaLo testedUser{nan, nan};  // where the user was at the last test against statics

/// The first active aircraft of a table that `test` accepts goes; false if there is none.
template <class Table, class Test>
bool removeFirst(Table& table, const Test& test) {
    const auto found = std::find_if(table.begin(), table.end(), [&](const auto& record) {
        return record.simState == SimObjectState::active && test(record);
    });
    if (found == table.end()) return false;
    removeAircraftFromSim(*found);
    return true;
}

/// Feet from a line of flight, `bearing` being the one from the user to the aircraft.
double offset(double heading, double bearing, double distance) {
    return std::abs(std::sin(heading - bearing)) * distance * feetPerNm;
}

/// On the ground under the user's approach or take-off.
bool beforeUser(double bearing, double distance) {
    constexpr double low = 500, wide = 50;  // feet
    return engineUser.agl < low && distance <= 1 && offset(engineUser.heading, bearing, distance) <= wide;
}

/// Flies where the user is. Who stands has no line of flight, so this is for the air alone.
bool fliesAtUser(const LiveAc& record, double bearing, double distance) {
    constexpr double level = 1000, wide = 700;  // feet
    return distance <= 4 && std::abs(record.simAlt - engineUser.altitude) < level &&
           offset(record.simHeading, bearing, distance) <= wide;
}

bool inUsersWay(const LiveAc& record) {
    const double distance = gf_distanceNm(engineUser.pos(), record.simPos());
    const double bearing = bearingRad(engineUser.pos(), record.simPos());
    return record.onGround ? beforeUser(bearing, distance) : fliesAtUser(record, bearing, distance);
}

bool touchesUser(const AcBase& record, LaLo place, double margin) {
    return lf_spansReach(userHalfSpanNm, record.halfSpanNm, gf_distanceNm(engineUser.pos(), place), margin);
}

}  // namespace

void lf_userInTheAir() {
    if (COLLISION_USER_AIR.value && !userOnGround) removeFirst(liveAcs, inUsersWay);
}

void lf_userOnTheGround() {
    if (!COLLISION_USER_GND.value || !userOnGround) return;
    const bool removed = removeFirst(liveAcs, [](const LiveAc& record) {
        return record.onGround && touchesUser(record, record.simPos(), liveMargin);
    });
    if (removed || staticAcs.empty() || lf_samePlace(engineUser.pos(), testedUser)) return;
    testedUser = engineUser.pos();
    removeFirst(staticAcs,
                [](const StaticAc& parked) { return touchesUser(parked, parked.standPos, staticMargin); });
}

void lf_serveBlock() {
    if (!g_blockChanged.exchange(false)) return;
    const std::string callsign = BLOCK_CALLSIGN.get();
    if (callsign.empty()) return;
    // One that is still being created comes past the test at spawn: the request waits for it.
    if (!removeFirst(liveAcs, [&](const LiveAc& record) { return record.callsign == callsign; }))
        g_blockChanged = true;
}

void lf_resetConflicts() {
    testedUser = {nan, nan};
}

}  // namespace skl
