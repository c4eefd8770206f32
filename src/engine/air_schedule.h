// Gear, flaps, lights and throttle in flight. Worker thread only.
#pragma once

#include "engine/live_ac.h"

namespace skl {

/// Every air segment; the front of the stream is its start.
void lf_airSchedule(LiveAc& record);
void lf_highConfig(LiveAc& record);
/// Begins an approach, or cleans up a climb, which may end a flare.
void lf_lowConfig(LiveAc& record);

}  // namespace skl
