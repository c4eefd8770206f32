// An aircraft that appears standing, or about to stop, appears on a stand where there is one.
#include <algorithm>

#include "engine/conflicts.h"
#include "engine/engine_state.h"
#include "engine/live_parking.h"
#include "parking/park_airport.h"
#include "parking/stands.h"

namespace skl {

namespace {

constexpr double airportNm = 5.0;
constexpr double reachNm = 55 / metersPerNm;
constexpr double rollOutNm = 35 / metersPerNm;
constexpr double slowKnots = 5.0;

/// It stands, or its reports end a few slow metres farther.
bool comesToRest(const LiveAc& record) {
    const LivePos& front = record.stream().front();
    if (front.stopped) return true;
    return record.stream().size() > 1 && record.stream()[1].speed <= slowKnots &&
           gf_distanceNm(front.pos(), record.stream().back().pos()) <= rollOutNm;
}

/// Another aircraft drives onto the stand, or stands there and has no object yet: it comes to a conflict that
/// can be resolved only once it is parked. The newcomer's own ghost goes at the spawn.
bool isClaimed(const LiveAc& record, const Stand& stand) {
    return std::any_of(liveAcs.begin(), liveAcs.end(), [&](const LiveAc& other) {
        if (other.standId != stand.sid || other.hexid == record.hexid ||
            other.callsign == record.callsign + '_')
            return false;
        if (other.simState == SimObjectState::active) return other.stage == FlightStage::parking;
        return other.stage == FlightStage::parked && other.simState != SimObjectState::removingfromsim;
    });
}

bool isFree(const LiveAc& record, const Stand& stand) {
    return !isClaimed(record, stand) && lf_standOccupied(stand.sid, record.callsign) &&
           !lf_adjacentLiveConflict(stand, record);
}

}  // namespace

Stand* lf_findSpawnStand(LiveAc& record) {
    LivePos& front = record.stream().front();
    if (stands.empty() || !gf_airportInSight() || gf_distanceNm(front.pos(), parkAirport.pos()) > airportNm)
        return nullptr;
    if (!comesToRest(record)) return nullptr;
    const LaLo rest = front.stopped ? front.pos() : record.stream().back().pos();
    Stand* stand = lf_closestStand(rest, record, reachNm, front.stopped);
    if (!stand || lf_keptForUser(*stand)) return nullptr;
    if (!isFree(record, *stand)) {
        record.eraseNow = true;
        return nullptr;
    }
    lf_staticsMakeWay(record, *stand);
    if (!front.stopped) {
        front.stopped = true;
        front.speed = 0;
    }
    return stand;
}

}  // namespace skl
