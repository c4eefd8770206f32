// The take-off run, the rotation, the first climb. The height follows a table of ticks, so that an aircraft
// leaves the ground softly whatever its reports say.
#include "engine/take_off.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/log.h"
#include "engine/category_constants.h"
#include "engine/levels.h"
#include "engine/slack.h"
#include "parking/learning.h"
#include "simlink/ai_commands.h"
#include "simlink/sim_ids.h"

namespace skl {

namespace {

constexpr double climbingFpm = 256;  // a report above it climbs
constexpr double leastRise = 0.1;    // feet, in the segment of a rotation
constexpr double climbOutAgl = 800;  // feet
constexpr int32_t rampEnd = -300;    // of groundCount: the full climb from here on
constexpr int32_t lowestCount = -1000;
constexpr uint32_t fullThrottle = 4, climbThrottle = 3;

bool isRotorcraft(const LiveAc& record) {
    return record.category == AcCategory::Rotorcraft;
}

void setSpoilers(const LiveAc& record, uint32_t value) {
    if (!isRotorcraft(record)) simEvent(record.objectId, ev::spoilersSet, value);
}

/// Sent whatever was sent last: the simulator's own logic has been at the lever since.
void forceThrottle(LiveAc& record, uint32_t level) {
    record.throttleIdx = level + 1;
    gf_setThrottle(record, level);
}

/// The part of the climb that is flown with this many ticks to go (negative: ticks since lift-off).
double rampedClimb(const LiveAc& record, int32_t count) {
    if (count == 0) return 0;
    if (count > -100) return record.dAlt / 10;
    if (count > -200) return record.dAlt / 5;
    if (count > rampEnd) return record.dAlt / 2;
    return record.dAlt;
}

void flyOn(LiveAc& record) {
    gf_setThrottle(record, isRotorcraft(record) ? fullThrottle : climbThrottle);
    gf_setStage(record, FlightStage::flying);
    record.groundCount = 1;
}

}  // namespace

void lf_startDeparture(LiveAc& record) {
    if (record.towed) gf_log(fmt::format("towed aircraft takes-off? {}", gf_description(record)));
    record.departing = true;
    gf_setThrottle(record, 0);
    setSpoilers(record, 0);
    gf_setFlaps(record, 1);
    record.landing = record.landed = record.climbCleaned = false;
    simLights(record.objectId, true, true, true, true, true, true, false);
    lf_widenSlack(record);
    if (!record.airline.empty()) lf_learnSoft(record, true);
}

void lf_rotationTest(LiveAc& record, int32_t ticks) {
    const auto& stream = record.stream();
    const auto first = stream.begin() + 1, last = stream.end();
    const auto airborne = [](const LivePos& point) { return point.airborne; };
    const bool allAirborne = std::all_of(first, last, airborne);
    const bool allClimb =
        std::all_of(first, last, [](const LivePos& point) { return point.vs > climbingFpm; });
    if (!allClimb) {
        const double needed = gf_categoryConstants(record.category).rotateSpeed;
        const bool fast =
            std::all_of(first, last, [&](const LivePos& point) { return point.speed >= needed; });
        // A slow climber whose front is in the air too must not roll on beneath its reports.
        if (!allAirborne || !(fast || stream.front().airborne)) return;
    }
    if (allClimb && allAirborne)
        record.dAlt = std::max(stream[1].alt - record.simAlt, leastRise) / ticks;
    else
        record.dAlt = record.maxClimbPerTick;
    lf_rotate(record);
}

void lf_rotate(LiveAc& record) {
    record.groundCount = std::max(record.rotateTicks, 1);
    record.simBank = 0;
    record.dBank = 0;
    record.dPitch = (record.rotatePitch - record.simPitch) / record.groundCount;
    // A touch and go may still have its nose on the way down.
    record.derotating = false;
    record.flareState = 0;
    if (!record.departing) lf_startDeparture(record);
    gf_setStage(record, FlightStage::take_off);
    record.dHeading = 0;
    record.curve = {};
    if (!record.rollout) return;
    record.rollout = record.landing = record.landed = false;
    forceThrottle(record, fullThrottle);
    setSpoilers(record, 16383);
    gf_setFlaps(record, 1);
}

void lf_rotationStep(LiveAc& record) {
    record.groundCount = std::max(record.groundCount - 1, lowestCount);
    const int32_t count = record.groundCount;
    record.onGround = false;
    if (count >= 1) {
        if (record.simPitch > record.rotatePitch) record.simPitch += record.dPitch;
        return;
    }
    record.simBank = std::clamp(record.simBank + record.dBank, -pi, pi);
    if (record.simPitch > record.climbPitch)
        record.simPitch += (record.climbPitch - record.rotatePitch) / std::max(record.climbPitchTicks, 1);
    record.simAlt += rampedClimb(record, count);
    if (count == rampEnd && !isRotorcraft(record)) simEvent(record.objectId, ev::gearSet, 0);
    if (count >= rampEnd || record.simPitch > record.climbPitch) return;
    record.dPitch = 0;
    if (record.agl >= climbOutAgl) flyOn(record);
}

void lf_touchAndGo(LiveAc& record) {
    // The stage before stays: it is that of the landing.
    record.stage = FlightStage::taxi;
    record.departing = true;
    forceThrottle(record, climbThrottle);
    setSpoilers(record, 16383);
    gf_setFlaps(record, 1);
    record.landing = record.landed = record.climbCleaned = false;
    simLights(record.objectId, true, true, true, true, true, true, false);
    lf_widenSlack(record);
}

}  // namespace skl
