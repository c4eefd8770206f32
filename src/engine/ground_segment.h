// Segments on the ground: from point to point, round corners, to a stop. The front of the stream is the start
// of the segment, stream[1] its end. Worker thread only.
#pragma once

#include "engine/live_ac.h"

namespace skl {

/// Shapes the stream for the segment to come (curve, midpoint, parking, leaving a stand) and times it. An
/// exception is logged with this name and passed on.
void nextPosGround(LiveAc& record);
/// Moves the time of stream[1] to what distance, speed and turn ask for, and sets the turn rate.
void lf_timeGroundSegment(LiveAc& record);
/// Stage, throttle, curve step and the wheels' pose of the segment to stream[1]; a take-off run may rotate
/// here.
void lf_setupGroundSegment(LiveAc& record);
/// A point half-way between the front and stream[1], so that a change of speed takes two segments.
void lf_insertMidpoint(LiveAc& record);
/// The midpoint, if the two speeds differ by more than 5 kn over at least 100 m.
void lf_speedChange(LiveAc& record);

}  // namespace skl
