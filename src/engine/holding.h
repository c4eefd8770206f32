// The wait of an aircraft on the ground whose reports have ended. Worker thread only.
#pragma once

#include "engine/live_ac.h"

namespace skl {

/// One more stopped point of 3 s; false when the aircraft is to go.
bool lf_holdingStep(LiveAc& record);

}  // namespace skl
