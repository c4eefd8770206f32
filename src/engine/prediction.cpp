// What an aircraft does when its reports have run out: on the ground it arrives at its stand or holds; else
// some predicted points follow along its heading, slower and slower in the air, then it goes.
#include <algorithm>

#include "engine/holding.h"
#include "engine/live_parking.h"
#include "engine/slack.h"
#include "engine/spawning.h"
#include "engine/update_cycle.h"
#include "panel/traffic_range.h"
#include "parking/stands.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr int32_t airPoints = 8, groundPoints = 10, parkedPoints = 1;
constexpr int32_t airSeconds = 8, groundSeconds = 3;
constexpr double rangeMarginNm = 0.5;
constexpr double slowestRollout = 20;  // knots

int32_t pointsToPredict(const LiveAc& record) {
    if (!lf_categoryWanted(record.category)) return 0;
    if (record.onGround) return record.stage == FlightStage::parked ? parkedPoints : groundPoints;
    const LaLo user = engineUser.pos();
    if (!positionKnown(user)) return airPoints;
    return gf_distanceNm(record.simPos(), user) < rangeNm - rangeMarginNm ? airPoints : 0;
}

/// The next speed of a take-off run, and the climb that comes with it.
void accelerate(LivePos& point) {
    struct Step {
        double upTo, speed, vs;
    };
    static constexpr Step steps[] = {
        {30, 40, 0}, {60, 80, 0}, {100, 110, 0}, {140, 150, 600}, {160, 170, 1200}};
    for (const Step& step : steps) {
        if (point.speed > step.upTo) continue;
        point.speed = step.speed;
        if (step.vs > 0) point.vs = step.vs;
        return;
    }
    point.speed = 180;
    point.vs = 2400;
}

/// The next speed of a roll-out.
void brake(LivePos& point) {
    static constexpr double steps[][2] = {{140, 100}, {100, 80}, {80, 60}, {60, 30}};
    point.vs = 0;
    for (const auto& [from, to] : steps) {
        if (point.speed < from) continue;
        point.speed = to;
        return;
    }
    point.speed = std::min(point.speed, slowestRollout);
}

/// Sets the speed of the coming leg; false when the aircraft stands.
bool predictSpeed(const LiveAc& record, LivePos& point, int32_t n) {
    if (!record.onGround) {
        if (!record.landing)
            point.speed = std::max(point.speed * 0.95, 1.0);
        else if (n >= 4)
            point.speed = std::max(point.speed * 0.9, 1.0);
    } else if (record.departing) {
        accelerate(point);
    } else if (record.rollout) {
        brake(point);
    } else {
        point.stopped = true;
        point.speed = 0;
        return false;
    }
    return point.speed > 0;
}

void predictPlace(const LiveAc& record, LivePos& point, int32_t seconds) {
    const LaLo from = point.pos();
    const LaLo to = destinationPoint(from, record.simHeading, point.speed * seconds / 3600.0 * feetPerNm);
    point.lat = to.lat;
    point.lon = to.lon;
    point.stopped = lf_samePlace(from, to);
    if (record.landing && record.flareState == 0) {
        point.vs = -667;
        point.alt -= seconds * 10.005;
    } else if (record.stage == FlightStage::take_off) {
        point.vs = 1500;
        point.alt += seconds * 25.0;
    }
    // A point that the engine made on the ground may carry the height of the airport.
    point.airborne = point.alt > 0 && (point.airborne || !record.onGround);
    if (!point.airborne) point.alt = 0;
}

/// Only on its wheels can an aircraft stand and wait: in the air a stopped point is no point at all.
bool holds(const LiveAc& record) {
    if (!record.onGround) return false;
    return record.stage == FlightStage::pushed_back ||
           (record.stage == FlightStage::taxi && !record.departing && !record.rollout);
}

}  // namespace

bool lf_extendStream(LiveAc& record) {
    if (record.stream().empty()) return false;
    if (record.stage == FlightStage::parking)
        lf_arrival(record);
    else if (holds(record))
        return lf_holdingStep(record);
    if (record.predictLeft < 0) return false;
    if (record.predictLeft == 1) {
        record.predictLeft = -1;
        return false;
    }
    const int32_t n = record.predictLeft > 1 ? record.predictLeft - 1 : pointsToPredict(record);
    if (n == 0) return false;
    lf_predictPoint(record, n);
    return true;
}

void lf_predictPoint(LiveAc& record, int32_t n) {
    record.predictLeft = n;
    LivePos point = record.stream().front();
    const int32_t seconds = record.onGround ? groundSeconds : airSeconds;
    const bool parked = record.stage == FlightStage::parked;
    if (point.stopped || parked) {
        point.stopped = true;
        point.speed = 0;
    } else if (predictSpeed(record, point, n)) {
        predictPlace(record, point, seconds);
    }
    point.time += parked ? ticksOfAWeek : seconds * ticksPerSecond;
    record.stream().push_back(point);
    if (!parked) return;
    record.parkedMoving = false;
    if (Stand* stand = lf_findStand(record.standId)) stand->occupied = false;
}

}  // namespace skl
