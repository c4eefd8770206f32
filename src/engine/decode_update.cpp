// The first look at a report in the engine: whose it is, whether it can be true, and whether it says anything
// new.
#include <algorithm>
#include <cmath>

#include "core/geodesy.h"
#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/live_table.h"
#include "engine/slack.h"
#include "engine/spawning.h"
#include "engine/update_cycle.h"

namespace skl {

namespace {

constexpr double metersPerSecondPerKnot = 0.514444;
constexpr double shortestGap = 1.0;  // seconds of feed time
constexpr int32_t implausibleLimit = 3;
constexpr double leftStandNm = 200 / metersPerNm;

double degreesApart(double a, double b) {
    return std::abs(wrapLon(a - b));
}

double secondsFor(double meters, double knots) {
    return meters / (knots * metersPerSecondPerKnot);
}

bool speedJumps(double before, double now) {
    return (before > 5 && now >= 10 * before) || (now > 5 && before >= 10 * now) ||
           (before <= 5 && now >= 80) || (now <= 5 && before >= 80);
}

/// A steady motion needs no more points than these.
bool addsNothing(const LivePos& last, const LivePos& pos, double gap) {
    const double turn = degreesApart(pos.track, last.track);
    if (pos.airborne) return pos.speed > 120 && turn <= 1.0 && gap <= secondsFor(450, pos.speed);
    if (pos.speed > 30 || turn > 2.0) return false;
    return gap <= (pos.speed > 0 ? std::min(secondsFor(20, pos.speed), 15.0) : 15.0);
}

/// No flight could have come this far: the feed was silent while the aircraft went on, or the report is
/// wrong.
bool isImplausible(const LiveAc& record, const LivePos& pos) {
    if (record.stage == FlightStage::parked || record.stage == FlightStage::parking ||
        record.stage == FlightStage::pushed_back || record.holding || record.predictLeft >= 1)
        return false;
    const LivePos& last = record.stream().back();
    const double nm = gf_distanceNm(last.pos(), pos.pos());
    if (nm <= 0.5) return false;
    const int64_t ticks = std::max<int64_t>(int64_t{pos.time} - last.time + record.maxLate, shortestSegment);
    const double needed = nm / static_cast<double>(ticks) * 3600 * ticksPerSecond;
    return needed > 2 * std::max({last.speed, pos.speed, 60.0});
}

/// The reports of an aircraft that stands go on elsewhere: it has left while nothing was heard of it, and no
/// report from there could join its stream.
bool hasLeftUnheard(const LiveAc& record, const LivePos& pos) {
    if (record.simState != SimObjectState::active) return false;
    if (record.stage == FlightStage::parked) return gf_distanceNm(record.standPos, pos.pos()) > leftStandNm;
    if (!record.holding && record.stage != FlightStage::pushed_back) return false;
    return gf_distanceNm(record.stream().front().pos(), pos.pos()) >
           HOLDING_THRESHOLD_METERS.value / metersPerNm;
}

bool isDropped(LiveAc& record, const TrafficUpdate& update) {
    const LivePos& last = record.stream().back();
    const double gap = update.feedTime - record.lastFeedTime;
    if (!(gap > shortestGap)) return true;
    if (hasLeftUnheard(record, update.pos)) {
        removeAircraftFromSim(record);
        return true;
    }
    if (speedJumps(last.speed, update.pos.speed)) return true;
    if (record.predictLeft < 1 && addsNothing(last, update.pos, gap)) return true;
    if (!isImplausible(record, update.pos)) {
        record.implausibleReports = 0;
        return false;
    }
    if (++record.implausibleReports >= implausibleLimit) removeAircraftFromSim(record);
    return true;
}

}  // namespace

void lf_decodeUpdate(TrafficUpdate& update) {
    LiveAc* record = lf_findLive(update.hexid);
    if (!record) {
        const bool knownOtherwise =
            !update.callsign.empty() && lf_liveFlightExists(update.callsign, update.model);
        if (!knownOtherwise) lf_newAircraft(update);
        return;
    }
    if (record->simState == SimObjectState::liveryrespawn ||
        record->simState == SimObjectState::removingfromsim)
        return;
    if (!record->stream().empty() && isDropped(*record, update)) return;
    if (record->simState == SimObjectState::buffer && lf_atFieldHeight(update.pos.alt)) return;
    if (!lf_refreshIdentity(*record, update)) return;
    record->lastFeedTime = update.feedTime;
    decodeExisting(*record, update.pos);
}

}  // namespace skl
