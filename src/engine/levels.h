// Flaps and throttle of an object in steps. A step that was sent last is not sent again.
#pragma once

#include "engine/live_ac.h"

namespace skl {

/// Index 0 (up) to 3 (full); nothing for rotorcraft.
void gf_setFlaps(AcBase& record, uint32_t index);
/// Index 0 (idle) to 4 (full).
void gf_setThrottle(AcBase& record, uint32_t index);

}  // namespace skl
