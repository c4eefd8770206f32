// One tick of motion: additions only, whatever needs trigonometry was worked out when the
// segment began, but for a curve on the ground.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/log.h"
#include "engine/ground_curve.h"
#include "engine/landing.h"
#include "engine/take_off.h"
#include "engine/update_cycle.h"

namespace skl {

namespace {

constexpr double lowestFlarePitch = toRad(-4.0);
constexpr double flareBelowAgl = 400;  // feet
constexpr double lastCurveT = 0.999999;
constexpr int32_t courseEvery = 10;  // ticks
constexpr double turnDeadBand = toRad(0.5);

bool drivesOnGround(FlightStage stage) {
    return stage == FlightStage::pushing_back || stage == FlightStage::pushed_back ||
           stage == FlightStage::taxi || stage == FlightStage::parking;
}

/// The nose follows the course of the curve, worked out at its start and every tenth tick and carried on in
/// between: the curve is the only trigonometry of a tick.
void followCurve(LiveAc& record) {
    const bool begins = record.curveT == 0;
    record.curveT = std::clamp(record.curveT + record.curveStep, 0.0, lastCurveT);
    LaLo position;
    const bool looks = begins || engineTick % courseEvery == 0;
    const bool fine = looks ? lf_curveAt(record.curve, record.curveT, position, record.targetHeading)
                            : lf_curvePosition(record.curve, record.curveT, position);
    if (!fine) {
        gf_log(fmt::format("{} error in curve at index: {:.2F}", record.callsign, record.curveT));
        return;
    }
    record.simLat = position.lat;
    record.simLon = position.lon;
    if (looks)
        // No faster than the nose can follow: at a sharp bend the course runs away until the next look.
        record.courseStep = std::clamp(lf_courseRate(record.curve, record.curveT) * record.curveStep,
                                       -record.turnRate, record.turnRate);
    else
        record.targetHeading += record.courseStep;
    const double course = record.targetHeading;
    lf_turnTowards(record, record.stage == FlightStage::pushing_back ? course + pi : course);
}

void moveLaterally(LiveAc& record) {
    if (record.onGround && record.curve.set()) {
        followCurve(record);
        return;
    }
    if (drivesOnGround(record.stage)) {
        if (record.stage == FlightStage::parking || record.turningOnGround)
            lf_turnTowards(record, record.targetHeading);
        if (record.stage == FlightStage::pushed_back) return;
    } else {
        record.simHeading = normalizeRad(record.simHeading + record.dHeading);
    }
    record.simLat += record.dLat;
    record.simLon += record.dLon;
}

void moveVertically(LiveAc& record) {
    if (record.stage == FlightStage::take_off) {
        lf_rotationStep(record);
        return;
    }
    if (record.landing && !record.onGround && record.agl <= flareBelowAgl) lf_flareStep(record);
    if (record.derotating) {
        lf_derotate(record);
    } else if (record.flareState != 0) {
        record.simBank = std::clamp(record.simBank + record.dBank, -pi, pi);
        record.simPitch = std::max(record.simPitch + record.dPitch, lowestFlarePitch);
        record.simAlt += record.dAlt;
    } else if (record.onGround) {
        // The height follows the simulator's reports of the ground.
        record.simPitch = record.staticPitch;
        record.simBank = 0;
    } else {
        record.simBank += record.dBank;
        record.simPitch += record.dPitch;
        record.simAlt += record.dAlt;
    }
}

}  // namespace

void lf_turnTowards(LiveAc& record, double target) {
    const double difference = angleDiff(normalizeRad(target), record.simHeading);
    if (std::abs(difference) <= turnDeadBand) return;
    const double step = std::clamp(difference, -record.turnRate, record.turnRate);
    record.simHeading = normalizeRad(record.simHeading + step);
}

void lf_moveOneTick(LiveAc& record) {
    moveLaterally(record);
    moveVertically(record);
    if (record.simLat > 90 || record.simLat < -90) {
        record.simLat = (record.simLat > 90 ? 180.0 : -180.0) - record.simLat;
        record.simLon += 180;
    }
    record.simLon = wrapLon(record.simLon);
}

}  // namespace skl
