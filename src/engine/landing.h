// From the flare to the turn off the runway. Worker thread only; lf_touchdown under g_eventLock.
#pragma once

#include "engine/live_ac.h"

namespace skl {

/// Feet per minute; a report that climbs faster gives an approach up.
inline constexpr double goAroundFpm = 600;

/// Every tick of a landing aircraft at 400 ft above ground or less.
void lf_flareStep(LiveAc& record);
/// The simulator has told that the wheels are down.
void lf_touchdown(LiveAc& record);
/// Every tick while the nose comes down.
void lf_derotate(LiveAc& record);
/// Every ground segment of the roll-out.
void lf_rolloutStep(LiveAc& record);
/// Whether a report of an approach or roll-out may join the stream; may drop points that would lead back.
bool checkNewPosDuringLanding(LiveAc& record, LivePos& pos);

}  // namespace skl
