// The duration of a ground segment, how fast the nose swings in it, and what else begins with it.
#include <algorithm>
#include <cmath>

#include "engine/ground_segment.h"
#include "engine/landing.h"
#include "engine/levels.h"
#include "engine/slack.h"
#include "engine/take_off.h"

namespace skl {

namespace {

constexpr double gentleTurn = 45, squareTurn = 90, turnUnit = 30, smallTurn = 10;  // degrees
constexpr double ampleTime = 1.2;                                                  // of what the turn needs
constexpr double shortWayNm = 30 / metersPerNm;
constexpr int32_t squareTurnSlack = 2000, shortestDrive = 100;  // ticks
constexpr double rotationSpeed = 43;                            // knots

/// Adapts the turn rate so that the nose arrives with the aircraft.
void adaptTurnRate(LiveAc& record, double nm, int32_t travelTicks) {
    const double angle = record.turningOnGround ? record.headingError : record.curveAngle;
    if (!(angle > 0 && nm > 0)) return;
    const double need = std::max(std::round(angle / record.turnRate / 100), 1.0);
    const double ratio = travelTicks / need;
    if (angle > gentleTurn) {
        record.turnRate *= std::min(ratio, std::min(angle, squareTurn) / turnUnit);
        if (angle >= squareTurn) {
            record.maxEarly = std::max(record.maxEarly, squareTurnSlack);
            record.maxLate = std::max(record.maxLate, squareTurnSlack);
        }
        return;
    }
    const double divisor =
        ratio < ampleTime ? ratio : std::min({ratio, ratio * smallTurn / angle, ratio * shortWayNm / nm});
    if (divisor > 0) record.turnRate /= divisor;
}

/// The drive onto a stand lasts until the nose is where it is to be: nothing turns it afterwards.
void giveNoseTime(LiveAc& record) {
    const double error = toRad(record.headingError);
    const double ticks = std::max(error / record.groundTurnRate, double{shortestDrive});
    LivePos& next = record.stream()[1];
    next.time = std::max(next.time, engineTick + static_cast<int32_t>(std::ceil(ticks)));
    record.turnRate = std::max(record.turnRate, error / (next.time - engineTick));
}

uint32_t departureThrottle(double from, double to) {
    if (from >= 25 || to >= 30) return 4;
    if (from >= 20 || to >= 25) return 2;
    return from >= 15 || to >= 20 ? 1 : 0;
}

/// The reports of a take-off came while the aircraft had no object, so that none of them could begin it.
bool takesOffUnseen(const LiveAc& record) {
    return record.stage == FlightStage::taxi && !record.departing && !record.rollout &&
           record.stream()[1].airborne && record.stream().back().airborne;
}

void setStageAndThrottle(LiveAc& record) {
    const bool rotorcraft = record.category == AcCategory::Rotorcraft;
    if (record.stage == FlightStage::parked || record.stage == FlightStage::flying)
        gf_setStage(record, FlightStage::taxi);
    else if (record.departing)
        gf_setThrottle(
            record, rotorcraft ? 4 : departureThrottle(record.stream()[0].speed, record.stream()[1].speed));
    else if (record.rollout)
        lf_rolloutStep(record);
    else
        gf_setThrottle(record, rotorcraft ? 4 : 0);
}

}  // namespace

void lf_timeGroundSegment(LiveAc& record) {
    const LivePos& next = record.stream()[1];
    if (next.stopped) {
        lf_timeStoppedSegment(record);
        return;
    }
    record.turnRate = record.groundTurnRate;
    const double nm = gf_distanceNm(record.stream()[0].pos(), next.pos());
    const int32_t ticks = lf_travelTicks(nm, lf_segmentSpeed(record));
    if (record.curve.set() || record.turningOnGround) adaptTurnRate(record, nm, ticks);
    lf_scheduleNext(record, int64_t{engineTick} + ticks);
    if (record.stage == FlightStage::parking) giveNoseTime(record);
}

void lf_setupGroundSegment(LiveAc& record) {
    record.vsFpm = 0;
    if (takesOffUnseen(record)) lf_startDeparture(record);
    setStageAndThrottle(record);
    if (!record.rollout && !record.departing) lf_decaySlack(record);
    if (record.flareState == 0 && record.stage != FlightStage::take_off) {
        record.simPitch = record.staticPitch;
        record.dPitch = record.simBank = record.dBank = 0;
    }
    const int32_t ticks = lf_segmentTicks(record);
    if (record.curve.set()) record.curveStep = 1.0 / ticks;
    const double knots = record.stream()[1].speed;
    record.tasKn = record.stage == FlightStage::pushing_back ? -knots : knots;
    if (record.departing && record.stage != FlightStage::take_off &&
        record.stream()[0].speed >= rotationSpeed)
        lf_rotationTest(record, ticks);
}

}  // namespace skl
