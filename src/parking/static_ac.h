// The table of static aircraft, those that only stand. Worker thread only.
#pragma once

#include <vector>

#include "engine/live_ac.h"

namespace skl {

struct StaticAc : AcBase {};

extern std::vector<StaticAc> staticAcs;

/// Erases the records with eraseNow or eraseFromQueue in one pass; the others keep their order.
void lf_sweepStatics();

}  // namespace skl
