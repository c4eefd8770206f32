// See the header.
#include "engine/air_segment.h"

#include <algorithm>
#include <cmath>

#include "engine/air_schedule.h"
#include "engine/category_constants.h"
#include "engine/landing.h"
#include "engine/slack.h"
#include "engine/update_cycle.h"
#include "feed/feed.h"
#include "parking/park_airport.h"
#include "simlink/ai_commands.h"

namespace skl {

namespace {

constexpr double ticksPerMinute = 60.0 * ticksPerSecond;
constexpr int32_t standardQnh = 1013;
constexpr double approachRadiusNm = 10;
constexpr double lowAgl = 1000, lowAglLanding = 2000, veryLowAgl = 100;  // feet
constexpr double gentleSink = -601;     // feet per minute, the least that sinks
constexpr double steepestSink = -1500;  // feet per minute, down to a report on the ground
constexpr double approachSink = -250;   // feet per minute, from here on a report descends
constexpr double lowestClimb = 0.2;     // feet per tick, near the ground
constexpr double levelPitch = toRad(-3.0), pitchPer600Fpm = toRad(2.2);
constexpr double touchdownSpeed = 100;  // knots, for a landing report without a speed

void gearDown(const LiveAc& record) {
    if (record.category != AcCategory::Rotorcraft) simEvent(record.objectId, ev::gearSet, 1);
}

void sinkAt(LiveAc& record, LivePos& next, double fpm) {
    next.vs = fpm;
    record.vsFpm = fpm;
    record.dAlt = fpm / ticksPerMinute;
}

double heightPerTick(const LiveAc& record, double targetFt) {
    return (targetFt - record.simAlt) / lf_segmentTicks(record);
}

/// The climb to a height above, 0 to one below.
double cappedClimb(const LiveAc& record, double targetFt) {
    if (!(targetFt > record.simAlt)) return 0;
    return std::min(heightPerTick(record, targetFt), record.maxClimbPerTick);
}

/// The reports stay on the ground while the object flies, yet they climb: fly to the first airborne one near
/// ahead, or climb on. May replace stream[1].
void climbOverGroundReports(LiveAc& record) {
    const size_t last = std::min<size_t>(record.stream().size() - 1, 10);
    for (size_t i = 3; i <= last; ++i) {
        if (!record.stream()[i - 1].airborne) continue;
        record.stream().erase(record.stream().begin() + 1,
                              record.stream().begin() + static_cast<std::ptrdiff_t>(i - 1));
        lf_timeAirSegment(record);
        lf_aimAtNext(record);
        record.dAlt = cappedClimb(record, record.stream()[1].alt);
        return;
    }
    LivePos& next = record.stream()[1];
    next.vs = std::max(next.vs, -gentleSink);
    record.vsFpm = next.vs;
    record.dAlt = next.vs / ticksPerMinute;
}

void descendToGround(LiveAc& record, LivePos& next) {
    if (qnh > standardQnh || !gf_airportInSight()) {
        const double fpm = qnh > standardQnh ? lf_sinkRate(record) : gentleSink;
        sinkAt(record, next, std::max(fpm, steepestSink));
    } else {
        record.dAlt = std::max(heightPerTick(record, parkAirport.alt), steepestSink / ticksPerMinute);
    }
    gearDown(record);
}

/// Close to the ground an aircraft climbs, unless it is plainly on its way down to the airport, or a
/// helicopter.
bool hasLowestClimb(const LiveAc& record) {
    if (record.agl > lowAgl) return false;
    if (record.category == AcCategory::Rotorcraft) return false;
    return record.stream().front().vs > approachSink || !gf_airportInSight() ||
           gf_distanceNm(record.simPos(), parkAirport.pos()) > approachRadiusNm;
}

void flyToReportedHeight(LiveAc& record, LivePos& next) {
    const LivePos& from = record.stream().front();
    if (record.landing) {
        if (from.alt == next.alt && record.agl <= lowAgl && from.vs + next.vs <= 100)
            sinkAt(record, next, lf_sinkRate(record));
        else
            record.dAlt = heightPerTick(record, next.alt);
        return;
    }
    double climb = heightPerTick(record, next.alt);
    if (hasLowestClimb(record)) climb = std::max(climb, lowestClimb);
    record.dAlt = std::min(climb, record.maxClimbPerTick);
}

/// Sets dAlt by the kinds of the two points. May replace stream[1].
void setClimb(LiveAc& record) {
    LivePos& next = record.stream()[1];
    const bool fromAir = record.stream().front().airborne;
    if (fromAir && next.airborne) {
        flyToReportedHeight(record, next);
    } else if (fromAir) {
        descendToGround(record, next);
    } else if (next.airborne) {
        record.dAlt = cappedClimb(record, next.alt);
    } else {
        double climbing = 0;
        for (const LivePos& point : record.stream()) climbing += point.vs;
        if (!record.landing && climbing > 100)
            climbOverGroundReports(record);
        else
            sinkAt(record, next, lf_sinkRate(record));
        gearDown(record);
    }
}

/// A take-off ends by its height, and no touch-down is seen before: one that sank would go on below the
/// ground.
void keepClimbing(LiveAc& record) {
    if (record.dAlt >= lowestClimb) return;
    record.dAlt = lowestClimb;
    record.vsFpm = lowestClimb * ticksPerMinute;
}

/// May replace stream[1].
void setClimbAndPitch(LiveAc& record) {
    record.vsFpm = record.stream()[1].vs;
    setClimb(record);
    if (record.stage == FlightStage::take_off) {
        keepClimbing(record);
        return;
    }
    const double limit = gf_categoryConstants(record.category).maxPitchRate;
    const double change = lf_pitchFor(record.stream()[1].vs) - record.simPitch;
    record.dPitch = std::clamp(change / lf_segmentTicks(record), -limit, limit);
}

double headingChange(const LiveAc& record, const LivePos& next) {
    const double limit = record.landing ? lowAglLanding : lowAgl;
    if (next.hasTrueHeading && next.roll && next.trueHeading && record.agl < limit)
        return angleDiff(*next.trueHeading, record.simHeading);
    return lf_nextTurn(record);
}

}  // namespace

void lf_timeAirSegment(LiveAc& record) {
    const LivePos &from = record.stream()[0], &next = record.stream()[1];
    if (next.stopped) {
        if (record.category == AcCategory::Rotorcraft) lf_timeStoppedSegment(record);
        return;
    }
    double knots = lf_segmentSpeed(record);
    if (record.landing && !next.airborne) knots = from.speed > 0 ? from.speed : touchdownSpeed;
    lf_scheduleNext(record,
                    int64_t{engineTick} + lf_travelTicks(gf_distanceNm(from.pos(), next.pos()), knots));
}

void lf_aimAtNext(LiveAc& record) {
    const LivePos& next = record.stream()[1];
    const double ticks = lf_segmentTicks(record);
    record.dLat = (next.lat - record.simLat) / ticks;
    record.dLon = wrapLon(next.lon - record.simLon) / ticks;
}

void lf_setupAirSegment(LiveAc& record, LivePos& next) {
    if (record.stage != FlightStage::take_off) gf_setStage(record, FlightStage::flying);
    record.tasKn = next.tas;
    const bool flaring = record.flareState != 0;
    if (!flaring) setClimbAndPitch(record);

    const LivePos& target = record.stream()[1];
    const CategoryConstants& limits = gf_categoryConstants(record.category);
    const double ticks = lf_segmentTicks(record);
    const double turn = headingChange(record, target);
    record.dHeading = turn / ticks;
    if (target.roll) {
        record.dBank = (*target.roll - record.simBank) / ticks;
    } else {
        const double bank = std::clamp(-turn, -limits.maxBank, limits.maxBank);
        record.dBank = std::clamp((bank - record.simBank) / ticks, -limits.maxBankRate, limits.maxBankRate);
    }
    // The flare has written its own sink into the report at the front, which may hide a go-around.
    if (flaring && target.airborne && target.vs > goAroundFpm) record.stream()[0].vs = target.vs;
    lf_airSchedule(record);
    // A go-around: the flare's sink would go on into the runway for the whole segment.
    if (flaring && record.flareState == 0) setClimbAndPitch(record);
}

double lf_pitchFor(double vs) {
    const double v = vs < 0 ? std::max(vs, -3000.0) / 2 : std::min(vs, 2400.0);
    return levelPitch - v / 600 * pitchPer600Fpm;
}

double lf_sinkRate(const LiveAc& record) {
    if (record.agl <= veryLowAgl) return -600;
    const double mean = (record.stream()[0].vs + record.stream()[1].vs) / 2;
    return std::min(mean - (qnh - standardQnh) * 6, gentleSink);
}

double lf_nextTurn(const LiveAc& record) {
    if (record.stream().size() < 3) return 0;
    return angleDiff(bearingRad(record.stream()[1].pos(), record.stream()[2].pos()), record.simHeading);
}

}  // namespace skl
