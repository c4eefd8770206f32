// See the header. A pushback runs straight back to half its way, and from there straight on, or in a curve to
// one side of the point B behind the stand.
#include "engine/leave_stand.h"

#include <fmt/format.h>

#include "core/log.h"
#include "core/parameters.h"
#include "engine/ground_curve.h"
#include "engine/ground_segment.h"
#include "engine/levels.h"
#include "engine/slack.h"
#include "parking/stands.h"
#include "simlink/ai_commands.h"
#include "simlink/sim_ids.h"

namespace skl {

namespace {

constexpr double pullOutSpans = 2;                // half spans, from the stand to the end of a pull-out
constexpr double pushRadii = 2.5;                 // radii of the stand, from there to B
constexpr double pushTurnAngle = 90;              // degrees
constexpr double unknownDistance = 900.0;         // nautical miles; no report is farther
constexpr double farSpans = 6, awaySpans = 2.75;  // half spans

/// A point that the aircraft is to reach at its slow speed.
LivePos drivenPoint(const LiveAc& record, LaLo place, int32_t time) {
    LivePos point;
    point.lat = place.lat;
    point.lon = place.lon;
    point.speed = point.tas = record.slowSpeed;
    point.track = toDeg(record.simHeading);
    point.time = time;
    return point;
}

int32_t slowTicks(const LiveAc& record, LaLo from, LaLo to) {
    return lf_travelTicks(gf_distanceNm(from, to), record.slowSpeed);
}

/// The stream becomes the front, which sets out slowly, and `next`.
void restartStream(LiveAc& record, const LivePos& next) {
    record.stream().resize(1);
    record.stream().front().speed = record.slowSpeed;
    record.stream().push_back(next);
}

/// What a stay on the stand and the taxi in have left behind would steer, or end, what comes now.
void forgetTheStay(LiveAc& record) {
    record.predictLeft = 0;
    record.holding = false;
    record.holdStart = 0;
    // One that came down straight onto its stand has never turned off a runway.
    record.rollout = false;
    record.touchdownHeading = 0;
    record.turningOnGround = false;
    record.headingError = 0;
    record.targetHeading = record.simHeading;
}

void lightsForMoving(const LiveAc& record) {
    simLights(record.objectId, true, true, false, true, false, true, false);
}

void startEngines(LiveAc& record) {
    simEvent(record.objectId, ev::engineAutoStart, 0);
    gf_setThrottle(record, 0);
    gf_setFlaps(record, 1);
}

void endPushback(LiveAc& record) {
    record.targetHeading = record.simHeading;
    startEngines(record);
    gf_setStage(record, FlightStage::pushed_back);
    record.pushCount = 1;
    record.pushedDistance = unknownDistance;
    record.predictLeft = 0;
    record.leaveStand = false;
}

}  // namespace

void lf_pullOut(LiveAc& record) {
    record.leaveStand = false;
    forgetTheStay(record);
    const LaLo target =
        destinationPoint(record.standPos, record.standHeading, pullOutSpans * record.halfSpanNm * feetPerNm);
    restartStream(record,
                  drivenPoint(record, target, engineTick + slowTicks(record, record.simPos(), target)));
    gf_setStage(record, FlightStage::taxi);
    lightsForMoving(record);
    startEngines(record);
    if (LOG.value)
        gf_log(fmt::format("{:8}: {:8} pulling out", lf_standName(record.standId), record.callsign));
}

void lf_startPushback(LiveAc& record) {
    const Stand* stand = lf_findStand(record.standId);
    if (!stand) {
        lf_pullOut(record);
        record.standId = 0;
        return;
    }
    forgetTheStay(record);
    record.pushTurnRight.reset();
    const double direction = normalizeRad(record.standHeading + pi);
    const LaLo b = destinationPoint(record.simPos(), direction, pushRadii * stand->radius * feetPerNm);
    const int32_t ticksToB = slowTicks(record, record.simPos(), b);
    restartStream(record, drivenPoint(record, b, engineTick + ticksToB));
    lf_insertMidpoint(record);

    const auto besideB = [&](double bearing) {
        return destinationPoint(b, normalizeRad(bearing), record.halfSpanNm * feetPerNm);
    };
    const LaLo right = besideB(direction + pi / 2);
    const int32_t endTime = engineTick + ticksToB / 2 + slowTicks(record, record.stream()[1].pos(), right);
    record.pushSidePoint = drivenPoint(record, right, endTime);
    record.stream().push_back(drivenPoint(record, besideB(direction - pi / 2), endTime));
    lightsForMoving(record);
    gf_setStage(record, FlightStage::pushing_back);
    record.pushCount = 2;
}

void lf_pushbackStep(LiveAc& record) {
    --record.pushCount;
    if (record.pushCount < 1) {
        endPushback(record);
        return;
    }
    if (record.stream().size() < 3) return;
    if (!record.pushTurnRight) {
        record.stream().pop_back();
        return;
    }
    if (*record.pushTurnRight) record.stream().back() = record.pushSidePoint;
    lf_makeCurve(record);
    record.curveAngle = pushTurnAngle;
}

bool lf_pushbackReport(LiveAc& record, const LivePos& pos) {
    if (record.pushCount != 2 || STRAIGHT_PBS_ONLY.value || record.pushTurnRight) return false;
    // A track of 0 stands for none.
    if (!pos.trueHeading && pos.track == 0) return false;
    const double heading = pos.trueHeading ? *pos.trueHeading : toRad(pos.track);
    record.pushTurnRight = angleDiff(heading, record.simHeading) > 0;
    return false;
}

bool lf_pushedBackReport(LiveAc& record, LivePos& pos) {
    const double distance = gf_distanceNm(record.simPos(), pos.pos());
    const bool away = distance > awaySpans * record.halfSpanNm && distance > record.pushedDistance;
    if (!away && !(distance > farSpans * record.halfSpanNm)) {
        if (!record.holding) record.holdStart = engineTick;
        record.holding = true;
        record.pushedDistance = distance;
        return false;
    }
    pos.stopped = false;
    if (record.predictLeft > 0) {
        record.stream().front().time = engineTick + 1;
        record.predictLeft = 0;
        lf_widenSlack(record);
    }
    record.pushTurnRight.reset();
    record.pushCount = 0;
    gf_setStage(record, FlightStage::taxi);
    record.standPos = {};
    record.standHeading = 0;
    record.standId = 0;
    record.standCargo = false;
    record.holding = false;
    record.holdStart = 0;
    return true;
}

}  // namespace skl
