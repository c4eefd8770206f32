// What a session declares to the simulator before anything else.
#pragma once

#include "simlink/simconnect.h"

namespace skl {

/// System events, data definitions, client events and their group, in their fixed order. False at the first
/// request that fails. Under g_simLock.
bool lf_setUpSession(SimConnect& sim);

}  // namespace skl
