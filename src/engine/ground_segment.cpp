// What becomes of the stream before a ground segment begins: corners turn into curves, changes of speed are
// spread over two segments, an end near a stand leads onto it, and a parked aircraft leaves its stand.
#include "engine/ground_segment.h"

#include <algorithm>
#include <cmath>

#include "engine/air_segment.h"
#include "engine/ground_curve.h"
#include "engine/leave_stand.h"
#include "engine/live_parking.h"
#include "engine/slack.h"
#include "engine/update_cycle.h"
#include "parking/stands.h"

namespace skl {

namespace {

constexpr double speedStep = 5, speedStepNm = 100 / metersPerNm;  // knots, over at least this way
constexpr double straight = 3;                                    // degrees; no turn up to here
// A sharp turn at a corner as far as this, in distance and in time, is left until the aircraft is nearer.
constexpr double sharp = 45, farCornerNm = 50 / metersPerNm, taxiSpeed = 43;  // degrees, knots
constexpr int32_t farCornerTicks = 6 * ticksPerSecond;
constexpr double reversal = 160;                                 // degrees; no curve beyond
constexpr double parkSpeed = 5, parkReachNm = 35 / metersPerNm;  // knots
constexpr double noseDeadBand = 0.5;                             // degrees
constexpr double forwards = 90;                                  // degrees off the nose

double degreesBetween(double a, double b) {
    return std::abs(toDeg(angleDiff(normalizeRad(a), normalizeRad(b))));
}

double toNextNm(const LiveAc& record) {
    return gf_distanceNm(record.stream()[0].pos(), record.stream()[1].pos());
}

void leaveStand(LiveAc& record) {
    const double bearing = bearingRad(record.standPos, record.stream().back().pos());
    if (std::round(degreesBetween(bearing, record.standHeading)) < forwards)
        lf_pullOut(record);
    else
        lf_startPushback(record);
}

/// The corner at stream[1], from where the aircraft goes on to stream[2].
void shapeCorner(LiveAc& record) {
    const LivePos& from = record.stream()[0];
    const double turn = std::abs(toDeg(lf_nextTurn(record)));
    if (turn <= straight) {
        lf_speedChange(record);
    } else if (turn > sharp && toNextNm(record) > farCornerNm && from.speed <= taxiSpeed &&
               int64_t{record.stream()[1].time} - from.time >= farCornerTicks) {
        lf_insertMidpoint(record);
    } else if (turn > reversal || lf_samePlace(from.pos(), record.stream()[2].pos())) {
        lf_speedChange(record);
    } else {
        lf_makeCurve(record);
        record.curveAngle = turn;
    }
}

void aimNose(LiveAc& record, double heading) {
    record.targetHeading = heading;
    record.headingError = degreesBetween(heading, record.simHeading);
    record.turningOnGround = record.headingError > straight;
}

void shapeWay(LiveAc& record) {
    if (record.stream()[1].stopped) return;
    if (record.stream().size() > 2 && !record.stream()[2].stopped)
        shapeCorner(record);
    else if (record.stream().size() > 2 || record.predictLeft < 1)
        lf_speedChange(record);
    if (record.curve.set())
        record.turningOnGround = false;
    else
        aimNose(record, record.targetHeading);
}

/// An aircraft that has just left its stand does not go back to one.
bool comesFromStand(const LiveAc& record) {
    return !record.towed &&
           (record.prevStage == FlightStage::parked || record.prevStage == FlightStage::pushing_back ||
            record.prevStage == FlightStage::pushed_back);
}

void testParking(LiveAc& record) {
    const LivePos& last = record.stream().back();
    if (!last.stopped || record.stage != FlightStage::taxi || !g_apfLoaded || comesFromStand(record)) return;
    if (record.predictLeft >= 1)
        try2Park(record, record.landed);
    else if (record.stream()[1].speed <= parkSpeed &&
             gf_distanceNm(record.simPos(), last.pos()) <= parkReachNm)
        try2Park(record, false);
}

/// The nose turns during the whole drive. A stopped point moves nothing, so none is while the nose is off.
void turnOntoStand(LiveAc& record) {
    LivePos& next = record.stream()[1];
    if (degreesBetween(record.standHeading, record.simHeading) > noseDeadBand) next.stopped = false;
    if (!next.stopped) aimNose(record, record.standHeading);
}

void shapeStream(LiveAc& record) {
    if (record.stage == FlightStage::pushing_back) {
        lf_pushbackStep(record);
    } else if (record.stage == FlightStage::parked) {
        lf_widenSlack(record);
        if (record.leaveStand) leaveStand(record);
    } else {
        shapeWay(record);
        testParking(record);
        if (record.stage == FlightStage::parking) turnOntoStand(record);
    }
}

}  // namespace

void nextPosGround(LiveAc& record) {
    try {
        shapeStream(record);
        lf_timeGroundSegment(record);
    } catch (...) {
        lf_logTickFailure("nextPosGround", record);
        throw;
    }
}

void lf_insertMidpoint(LiveAc& record) {
    const LivePos &from = record.stream()[0], &to = record.stream()[1];
    LivePos point = from;
    point.lat = (from.lat + to.lat) / 2;
    point.lon = wrapLon(from.lon + wrapLon(to.lon - from.lon) / 2);
    point.speed = (from.speed + to.speed) / 2;
    point.time = static_cast<int32_t>(std::lround((static_cast<double>(from.time) + to.time) / 2));
    // Points that the engine makes on the ground carry the height of the ground.
    point.alt = from.airborne || to.airborne ? std::max((from.alt + to.alt) / 2, 0.0) : 0;
    point.airborne = point.alt > 0;
    point.stopped = false;
    record.stream().insert(record.stream().begin() + 1, point);
}

void lf_speedChange(LiveAc& record) {
    const double before = record.stream()[0].speed, after = record.stream()[1].speed;
    if ((before > 0 || after > 0) && std::abs(before - after) > speedStep && toNextNm(record) >= speedStepNm)
        lf_insertMidpoint(record);
}

}  // namespace skl
