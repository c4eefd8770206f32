// The last metres: from the end of the reports onto the stand, and what happens when the aircraft has got
// there.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/log.h"
#include "core/parameters.h"
#include "core/random.h"
#include "engine/conflicts.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/levels.h"
#include "engine/live_parking.h"
#include "engine/slack.h"
#include "engine/update_cycle.h"
#include "parking/learning.h"
#include "parking/park_airport.h"
#include "parking/stands.h"
#include "simlink/ai_commands.h"
#include "simlink/sim_ids.h"

namespace skl {

namespace {

constexpr double wideReachNm = 55 / metersPerNm, reachNm = 20 / metersPerNm;
constexpr double arrivedNm = 2 / metersPerNm;
constexpr double noseDeadBand = toRad(0.5);
constexpr int32_t shortestDrive = 100, stopTicks = 50;

bool isEmpty(const LiveAc& record, const char* where) {
    if (!record.stream().empty()) return false;
    if (LOG.value) gf_log(fmt::format("{} empty sz?", where));
    return true;
}

/// Another aircraft that stands on the record's stand, or is about to appear there.
bool standsOn(const LiveAc& other, uint32_t standId, const LiveAc& record) {
    return other.stage == FlightStage::parked && other.standId == standId && other.hexid != record.hexid &&
           other.simState != SimObjectState::removingfromsim;
}

void clearStand(const LiveAc& record, const Stand& stand) {
    for (LiveAc& other : liveAcs) {
        if (!standsOn(other, stand.sid, record)) continue;
        if (LOG.value)
            gf_log(fmt::format("{:8}: {:8} removed, {} wants to park there", stand.id, other.callsign,
                               record.callsign));
        removeAircraftFromSim(other);
    }
    for (const uint32_t id : stand.adjacent) lf_adjacentLiveMakesWay(id, record, stand);
    lf_staticsMakeWay(record, stand);
}

/// The point at the stand, to which the aircraft still moves.
LivePos drivePoint(const LiveAc& record, LaLo pos) {
    const LivePos& last = record.stream().back();
    const int32_t ticks = lf_travelTicks(gf_distanceNm(last.pos(), pos), record.slowSpeed);
    LivePos point;
    point.lat = pos.lat;
    point.lon = pos.lon;
    point.alt = record.simAlt;
    point.speed = point.tas = record.slowSpeed;
    point.track = toDeg(record.standHeading);
    point.time = record.stream().front().time + std::max(ticks, shortestDrive);
    // A stopped point moves nothing: a nose that is off needs the drive even on the spot.
    const double off = std::abs(angleDiff(normalizeRad(record.standHeading), record.simHeading));
    point.stopped = lf_samePlace(last.pos(), pos) && off <= noseDeadBand;
    point.roll = record.simBank;
    return point;
}

/// Two may have driven to one stand at the same time: the first one stays.
bool isTaken(const Stand& stand, const LiveAc& record) {
    return stand.occupied || std::any_of(liveAcs.begin(), liveAcs.end(), [&](const LiveAc& other) {
               return standsOn(other, stand.sid, record);
           });
}

void endWhatTheDriveReplaces(LiveAc& record) {
    record.curve = {};
    record.curveT = record.curveStep = 0;
    record.holding = false;
    record.holdStart = 0;
    if (record.predictLeft < 1) return;
    record.predictLeft = 0;
    lf_widenSlack(record);
}

}  // namespace

void try2Park(LiveAc& record, bool wide) {
    if (isEmpty(record, "try2Park")) return;
    const LaLo last = record.stream().back().pos();
    if (lf_samePlace(last, {record.lastParkLat, record.lastParkLon})) return;
    record.lastParkLat = last.lat;
    record.lastParkLon = last.lon;
    const Stand* stand = lf_closestStand(last, record, wide ? wideReachNm : reachNm, wide);
    if (!stand || lf_keptForUser(*stand)) return;
    clearStand(record, *stand);
    record.standPos = stand->pos();
    record.standHeading = stand->heading;
    record.standId = stand->sid;
    record.standCargo = stand->cargo;
    // What was measured from the stand before says nothing of this one.
    record.standDistLast = 0;
    record.awayCount = 0;
    record.stream().resize(1);
    gf_setStage(record, FlightStage::parking);
    drive2Stand(record, record.standPos);
}

void drive2Stand(LiveAc& record, LaLo pos) {
    if (isEmpty(record, "drive2Stand")) return;
    LivePos point = drivePoint(record, pos);
    record.stream().back().speed = record.slowSpeed;
    record.stream().push_back(point);
    point.speed = point.tas = 0;
    point.stopped = true;
    point.time += stopTicks;
    record.stream().push_back(point);
    record.targetHeading = record.standHeading;
    endWhatTheDriveReplaces(record);
}

void lf_arrival(LiveAc& record) {
    if (Stand* stand = lf_findStand(record.standId); stand && isTaken(*stand, record)) {
        const bool flag = stand->occupied;
        removeAircraftFromSim(record);
        record.predictLeft = 1;
        stand->occupied = flag;  // the removal has cleared it, but it is the other aircraft's
        return;
    }
    if (gf_distanceNm(record.simPos(), record.standPos) > arrivedNm) {
        gf_setStage(record, FlightStage::taxi);
        return;
    }
    gf_setStage(record, FlightStage::parked);
    record.parkedAt = gf_weekSlotNow();
    if (record.towed && LOG.value) gf_logIndented(fmt::format("towed aircraft {} parks", record.callsign));
    if (!record.stream().empty()) record.stream().front().stopped = true;
    lf_beginStay(record);
    lf_fixCargo(record);
    lf_parkedConfiguration(record);
    if (LOG.value)
        gf_log(fmt::format("{:8}: {:8} arrived at stand", lf_standName(record.standId), record.callsign));
    lf_noteNewAc(record.hexid);
    if (lf_teachesStay(record)) lf_learnStay(record, record.parkedAt, false);
    lf_enforceMaxPark(false);
}

void lf_beginStay(LiveAc& record) {
    record.parkedSince = lf_parkClock();
    record.standDistLast = 0;
    record.awayCount = 0;
}

void lf_parkedConfiguration(AcBase& record) {
    constexpr uint32_t of = 10, lit = 9;  // aircraft with cabin lights
    gf_setThrottle(record, 0);
    gf_setFlaps(record, 0);
    simEvent(record.objectId, ev::engineAutoShutdown, 0);
    const bool cabin = !record.standCargo && (!RANDOM.value || mt()() % of < lit);
    simLights(record.objectId, NAV_LIGHTS_WHILE_PARKED.value, false, false, false, false, true, cabin);
}

void lf_fixCargo(LiveAc& record) {
    Stand* stand = lf_findStand(record.standId);
    if (!stand || !stand->cargo || record.cargo) return;
    stand->cargo = false;
    stand->cargoChanged = true;
    lf_countUpdate();
    gf_log(fmt::format("{} stand: {}, cargo attribute set to false, {} parked here", parkAirport.code,
                       stand->id, gf_description(record)));
}

}  // namespace skl
