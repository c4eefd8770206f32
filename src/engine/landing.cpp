// Flare, touch-down and roll-out. The flare has a fixed profile of sink by height, since reports near the
// ground are too coarse to land on.
#include "engine/landing.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "core/log.h"
#include "engine/engine_state.h"
#include "engine/levels.h"
#include "engine/slack.h"
#include "engine/update_cycle.h"
#include "parking/park_airport.h"
#include "simlink/ai_commands.h"
#include "simlink/sim_ids.h"

namespace skl {

namespace {

constexpr double flarePitch = toRad(-4.0);
constexpr double ticksPerMinute = 60.0 * ticksPerSecond;
constexpr double runwayLeft = toRad(15);
constexpr double spoilersInBelow = 90;  // knots
constexpr double aside = toRad(90), backwards = toRad(150);
constexpr double standingSpeed = 5, keptSpeed = 40;  // knots
constexpr size_t fewestToDropTwo = 3;                // points

struct FlareStep {
    double height;   // feet of the wheels over the ground
    double perTick;  // feet
    double reportVs;
};
constexpr std::array<FlareStep, 4> flareSteps{
    {{30, -0.1, -601}, {20, -0.075, -450}, {10, -0.05, -300}, {3, -0.025, -150}}};

bool isRotorcraft(const LiveAc& record) {
    return record.category == AcCategory::Rotorcraft;
}

void setSpoilers(const LiveAc& record, uint32_t value) {
    if (!isRotorcraft(record)) simEvent(record.objectId, ev::spoilersSet, value);
}

void setReversers(const LiveAc& record, bool on) {
    if (record.category != AcCategory::Light) simReverse(record.objectId, on, record.isFsltl);
}

/// The height that begins a flare: over the ground, or over the field where that is less.
double lowestHeight(LiveAc& record) {
    if (!record.fieldElev && gf_airportInSight()) record.fieldElev = parkAirport.alt;
    record.fieldHeight = record.fieldElev ? record.simAlt - *record.fieldElev : record.agl;
    return std::min(record.agl, record.fieldHeight);
}

double offHeading(const LiveAc& record, LaLo from, LaLo to) {
    return std::abs(angleDiff(bearingRad(from, to), record.simHeading));
}

/// The last points go that lie beyond the report.
void dropOvershoot(LiveAc& record, const LivePos& pos) {
    auto& stream = record.stream();
    const size_t before = stream.size();
    if (offHeading(record, stream.back().pos(), pos.pos()) < aside) return;
    stream.pop_back();
    // There is no bearing to a point on the same spot, whatever the sum says.
    if (before >= fewestToDropTwo && !lf_samePlace(pos.pos(), stream.back().pos()) &&
        offHeading(record, stream.back().pos(), pos.pos()) >= aside)
        stream.pop_back();
}

/// With one point left there is nothing to fly back along: whether the report may follow it.
bool followsOnlyPoint(LiveAc& record, const LivePos& pos) {
    LivePos& point = record.stream().front();
    const double off = offHeading(record, point.pos(), pos.pos());
    if (record.landing) return off < aside;
    if (off < backwards) return true;
    if (record.predictLeft > 0) return false;
    point.lat = record.simLat;
    point.lon = record.simLon;
    point.time = engineTick + 1;
    return true;
}

/// An aircraft that has come to its stop on the runway says so.
bool isStop(const LivePos& pos) {
    return !pos.airborne && pos.speed <= standingSpeed;
}

void endPrediction(LiveAc& record) {
    if (record.predictLeft < 1) return;
    record.predictLeft = 0;
    lf_widenSlack(record);
}

}  // namespace

void lf_flareStep(LiveAc& record) {
    const auto state = static_cast<size_t>(record.flareState);
    if (state >= flareSteps.size()) return;
    // On its way to a report that climbs away: a flare would sink to its end, into the runway.
    if (record.stream().front().vs > goAroundFpm) return;
    const double height = state == 0 ? lowestHeight(record) : record.agl;
    const FlareStep& step = flareSteps[state];
    if (height > record.staticCgFt + step.height) return;
    if (state == 0)
        record.dPitch = (flarePitch - record.simPitch) / std::max(record.flareTicks, 1);
    else
        record.fieldElev.reset();
    if (state == 2) gf_setThrottle(record, 0);
    record.dAlt = step.perTick;
    record.vsFpm = step.perTick * ticksPerMinute;
    record.simVs = record.vsFpm / 60;
    record.stream().front().vs = step.reportVs;
    ++record.flareState;
}

void lf_touchdown(LiveAc& record) {
    record.derotating = record.rollout = record.landed = true;
    record.landing = false;
    record.touchdownHeading = record.simHeading;
    setSpoilers(record, 16383);
    setReversers(record, true);
    if (record.touchdownTicks <= 0) {
        gf_log(fmt::format("{} ! onGround slots {:.1f}", record.callsign,
                           static_cast<double>(record.touchdownTicks)));
        record.dPitch = record.staticPitch;
        record.dBank = 0;
    } else {
        record.dPitch = (record.staticPitch - record.simPitch) / record.touchdownTicks;
        record.dBank = -record.simBank / record.touchdownTicks;
    }
    lf_noteNewAc(record.hexid);
}

void lf_derotate(LiveAc& record) {
    record.simPitch += record.dPitch;
    const double left = record.staticPitch - record.simPitch;
    const bool reached = record.dPitch > 0 ? left <= 0 : record.dPitch < 0 ? left >= 0 : true;
    if (!reached) {
        record.simBank += record.dBank;
        return;
    }
    record.simPitch = record.staticPitch;
    record.dPitch = record.simBank = record.dBank = 0;
    record.derotating = false;
    record.flareState = 0;
}

void lf_rolloutStep(LiveAc& record) {
    if (std::abs(angleDiff(record.simHeading, record.touchdownHeading)) >= runwayLeft) {
        gf_setFlaps(record, 0);
        record.rollout = false;
        record.touchdownHeading = 0;
        gf_setThrottle(record, isRotorcraft(record) ? 4 : 0);
        setSpoilers(record, 0);
        setReversers(record, false);
        simLights(record.objectId, true, true, false, true, false, true, true);
    } else if (record.stream().front().speed <= spoilersInBelow) {
        setSpoilers(record, 0);
        setReversers(record, false);
        gf_setFlaps(record, 1);
    }
}

bool checkNewPosDuringLanding(LiveAc& record, LivePos& pos) {
    auto& stream = record.stream();
    if (stream.empty()) {
        gf_log(fmt::format("{} empty sz?", "checkNewPosDuringLanding"));
        return false;
    }
    if (lf_samePlace(pos.pos(), stream.back().pos())) {
        if (!isStop(pos)) return false;
        endPrediction(record);
        pos.speed = 0;
        pos.stopped = true;
        return true;
    }
    if (stream.size() > 1)
        dropOvershoot(record, pos);
    else if (!followsOnlyPoint(record, pos))
        return false;
    endPrediction(record);
    pos.stopped = lf_samePlace(pos.pos(), stream.back().pos());
    if (pos.stopped && isStop(pos)) pos.speed = 0;
    if (!pos.stopped && pos.speed > keptSpeed) pos.speed = std::min(pos.speed, stream.back().speed);
    return true;
}

}  // namespace skl
