// How long a segment takes. A point's time is a target: it is moved so that the aircraft flies at its
// reported speed, within the slack of the record. Ticks of 10 ms, nautical miles, knots. Worker thread only.
#pragma once

#include "engine/live_ac.h"

namespace skl {

inline constexpr int32_t shortestSegment = 25;  ///< ticks
inline constexpr int32_t steadySlack = 1000;    ///< ticks, where the slack starts and to where it decays
inline constexpr int32_t ticksOfAWeek = 604800 * ticksPerSecond;

/// The rounded ticks that `nm` take at `knots`, from the shortest segment to a week. Throws std::range_error
/// when that is no number.
int32_t lf_travelTicks(double nm, double knots);
/// Moves the time of stream[1] to `tick` as far as the slack allows, never before the present. Needs two
/// points.
void lf_scheduleNext(LiveAc& record, int64_t tick);
/// Times a stopped stream[1]: its own time, no earlier than the shortest segment from now.
void lf_timeStoppedSegment(LiveAc& record);
/// More slack after any change of the situation.
void lf_widenSlack(LiveAc& record);
void lf_decaySlack(LiveAc& record);
/// The speed at which the segment from the front to stream[1] is flown, at least 0.1.
double lf_segmentSpeed(const LiveAc& record);
/// The ticks from now to the time of stream[1], at least the shortest segment.
int32_t lf_segmentTicks(const LiveAc& record);

}  // namespace skl
