// Segments flown in the air: their duration and their deltas. The front of the stream is the start of the
// segment, stream[1] its end. Worker thread only.
#pragma once

#include "engine/live_ac.h"

namespace skl {

/// Moves the time of stream[1] to what distance and speed ask for.
void lf_timeAirSegment(LiveAc& record);
/// The per-tick motion over ground from the present pose to stream[1].
void lf_aimAtNext(LiveAc& record);
/// Stage, climb, pitch, heading and bank of the segment to `next`, which is stream[1]. May drop points from
/// the stream and write the vertical speed of `next`.
void lf_setupAirSegment(LiveAc& record, LivePos& next);
/// The pitch that goes with a vertical speed (feet per minute), radians; negative is nose up.
double lf_pitchFor(double vs);
/// Feet per minute, negative, for an aircraft that has to come down.
double lf_sinkRate(const LiveAc& record);
/// The turn needed at stream[1] for the leg behind it, radians; 0 when there is none.
double lf_nextTurn(const LiveAc& record);

}  // namespace skl
