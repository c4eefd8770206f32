// See the header.
#include "engine/slack.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace skl {

namespace {

constexpr int32_t wideEarly = 3000, wideLate = 3000, wideLateDeparting = 5000;
constexpr int32_t decayStep = 100;
constexpr double ticksPerHour = 3600.0 * ticksPerSecond;
constexpr double slowestMean = 0.1;  // knots; opposite or missing speeds must not divide by nothing

int32_t clampTick(int64_t tick) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(tick, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

}  // namespace

int32_t lf_travelTicks(double nm, double knots) {
    const double ticks = std::round(nm * ticksPerHour / knots);
    if (std::isnan(ticks)) throw std::range_error("tick count is not a number");
    return static_cast<int32_t>(std::clamp(ticks, double{shortestSegment}, double{ticksOfAWeek}));
}

void lf_scheduleNext(LiveAc& record, int64_t tick) {
    LivePos& next = record.stream()[1];
    if (record.predictLeft < 1) {
        tick = std::min(tick, int64_t{next.time} + record.maxLate);
        tick = std::max(tick, int64_t{next.time} - record.maxEarly);
    }
    next.time = clampTick(std::max<int64_t>(tick, engineTick));
}

void lf_timeStoppedSegment(LiveAc& record) {
    const int64_t start = record.stream().front().time;
    const int64_t span = std::max<int64_t>(int64_t{record.stream()[1].time} - start, shortestSegment);
    lf_scheduleNext(record, std::max<int64_t>(start + span, int64_t{engineTick} + shortestSegment));
}

void lf_widenSlack(LiveAc& record) {
    record.maxEarly = wideEarly;
    record.maxLate = record.departing ? wideLateDeparting : wideLate;
}

void lf_decaySlack(LiveAc& record) {
    for (int32_t* slack : {&record.maxEarly, &record.maxLate})
        if (*slack > steadySlack) *slack = std::max(*slack - decayStep, steadySlack);
}

double lf_segmentSpeed(const LiveAc& record) {
    const LivePos &from = record.stream()[0], &to = record.stream()[1];
    if (from.speed == 0 && to.speed == 0) {
        const int64_t span = std::max<int64_t>(int64_t{to.time} - from.time, shortestSegment);
        return std::max(gf_distanceNm(from.pos(), to.pos()) / static_cast<double>(span) * ticksPerHour, 1.0);
    }
    return std::max((from.speed + to.speed) / 2, slowestMean);
}

int32_t lf_segmentTicks(const LiveAc& record) {
    return clampTick(std::max<int64_t>(int64_t{record.stream()[1].time} - engineTick, shortestSegment));
}

}  // namespace skl
