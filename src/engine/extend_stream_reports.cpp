// Joins the reports of known aircraft to their streams, and keeps out those that would make them jitter or go
// back.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/log.h"
#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/landing.h"
#include "engine/leave_stand.h"
#include "engine/live_parking.h"
#include "engine/slack.h"
#include "engine/take_off.h"
#include "engine/update_cycle.h"

namespace skl {

namespace {

constexpr size_t longestStream = 200;
constexpr double jitterDegrees = 0.00015;
constexpr double resumeRadiusNm = 22 / metersPerNm;
constexpr int32_t resumeTicks = 15 * ticksPerSecond;
constexpr size_t resumeLookBack = 6;
constexpr double backwards = toRad(100);
constexpr double takeOffSpeed = 43, rejectedSpeed = 30;  // knots

bool leavesHolding(LiveAc& record, const LivePos& pos) {
    if (!record.holding || record.stream().empty()) return false;
    const double limit = HOLDING_THRESHOLD_METERS.value / metersPerNm;
    if (gf_distanceNm(record.stream().front().pos(), pos.pos()) <= limit) return false;
    record.holding = false;
    record.holdStart = 0;
    return true;
}

/// A standing aircraft keeps two points; one that goes on loses the stops between the last motion and the new
/// report when these were only a short halt.
void dropStops(LiveAc& record, const LivePos& pos) {
    auto& stream = record.stream();
    if (pos.stopped) {
        for (const LivePos& point : stream)
            if (!point.stopped) return;
        stream.resize(1);
        return;
    }
    if (stream.size() < 3) return;
    const size_t oldest = stream.size() > resumeLookBack ? stream.size() - resumeLookBack : 1;
    for (size_t i = stream.size() - 2; i >= oldest; --i) {
        if (stream[i].stopped) continue;
        if (gf_distanceNm(stream[i].pos(), pos.pos()) <= resumeRadiusNm ||
            int64_t{stream.back().time} - stream[i].time < resumeTicks)
            stream.resize(i + 1);
        return;
    }
}

void append(LiveAc& record, LivePos& pos) {
    if (record.stream().back().time >= pos.time) pos.time = record.stream().back().time + 1;
    record.stream().push_back(pos);
}

/// A report that shows a take-off, from a taxiway or out of a roll-out.
void startTakeOff(LiveAc& record, const LivePos& pos) {
    if (record.simState != SimObjectState::active || !record.onGround || record.departing) return;
    const LivePos& last = record.stream().back();
    if (record.rollout) {
        if (last.airborne && pos.airborne) lf_touchAndGo(record);
        return;
    }
    if (record.stage != FlightStage::taxi) return;
    if (pos.airborne || (pos.speed >= takeOffSpeed && last.speed >= takeOffSpeed)) lf_startDeparture(record);
}

/// A take-off that was rejected, or a fast taxi that was none: else the end of the reports would look like a
/// run.
void endRejectedTakeOff(LiveAc& record) {
    if (!record.departing || !record.onGround || record.stage != FlightStage::taxi) return;
    const auto flies = [](const LivePos& point) { return point.airborne; };
    if (record.stream().back().speed < rejectedSpeed &&
        std::none_of(record.stream().begin(), record.stream().end(), flies))
        record.departing = false;
}

void extend(LiveAc& record, LivePos& pos) {
    auto& stream = record.stream();
    if (stream.size() > longestStream || leavesHolding(record, pos)) {
        removeAircraftFromSim(record);
        return;
    }
    if (record.stage == FlightStage::birth) {
        if (!stream.empty() && lf_filterPoint(record, pos)) append(record, pos);
        return;
    }
    if (!checkExtendingSituations(record, pos)) return;
    if (!pos.airborne && stream.back().stopped) dropStops(record, pos);
    startTakeOff(record, pos);
    append(record, pos);
    endRejectedTakeOff(record);
    if (stream.size() == 2 && stream[0].stopped && stream[1].stopped) {
        stream[0].time = engineTick + 1;
        stream[0].speed = stream[1].speed;
    }
}

/// A good report while prediction runs: what was predicted counts no more. False for one that leads back.
bool endsPrediction(LiveAc& record, const LivePos& pos) {
    if (record.predictLeft < 1) return true;
    // A report on the same spot has no bearing.
    if (!record.onGround && !pos.stopped) {
        const double bearing = bearingRad(record.stream().back().pos(), pos.pos());
        if (std::abs(angleDiff(bearing, record.simHeading)) >= backwards) return false;
    }
    record.predictLeft = 0;
    lf_widenSlack(record);
    record.stream().front().time = engineTick + 1;
    record.holding = false;
    record.holdStart = 0;
    return true;
}

}  // namespace

void decodeExisting(LiveAc& record, LivePos pos) {
    try {
        extend(record, pos);
    } catch (const std::exception& e) {
        gf_logError(fmt::format("{} exception {}", "decodeExisting", e.what()));
        throw;
    }
}

bool checkExtendingSituations(LiveAc& record, LivePos& pos) {
    const bool atStand = record.stage == FlightStage::parking || record.stage == FlightStage::parked;
    if (atStand &&
        (record.simState == SimObjectState::buffer || record.simState == SimObjectState::adding2sim))
        return false;
    if (record.stream().empty()) {
        gf_log(fmt::format("{} empty sz?", "checkExtendingSituations"));
        return false;
    }
    if (atStand) return lf_parkedReport(record, pos);
    if (record.stage == FlightStage::pushing_back) return lf_pushbackReport(record, pos);
    if (record.stage == FlightStage::pushed_back) return lf_pushedBackReport(record, pos);
    if (record.landing || record.rollout) return checkNewPosDuringLanding(record, pos);
    return lf_filterPoint(record, pos) && endsPrediction(record, pos);
}

bool lf_filterPoint(const LiveAc& record, LivePos& pos) {
    const LivePos& last = record.stream().back();
    pos.stopped = lf_samePlace(pos.pos(), last.pos());
    if (record.category == AcCategory::Rotorcraft) return true;
    const bool inTheAir = pos.airborne || (record.simState == SimObjectState::active && !record.onGround);
    const bool moves = record.departing && pos.speed > 0;
    if (pos.stopped) {
        if (inTheAir || (moves && last.speed >= 30)) return false;
        pos.speed = 0;
        return true;
    }
    if (lf_samePlace(pos.pos(), last.pos(), jitterDegrees)) {
        if (inTheAir || (moves && last.speed >= 50)) return false;
        pos = last;
        pos.speed = 0;
        pos.stopped = true;
        return true;
    }
    if (pos.speed != 0) return true;
    return (!record.departing && !pos.airborne) || last.speed < 50;
}

}  // namespace skl
