// From the take-off run to the climb. Worker thread only.
#pragma once

#include "engine/live_ac.h"

namespace skl {

void lf_startDeparture(LiveAc& record);
/// At a segment of the run: whether the nose comes up, and how steep the climb is. `ticks` of the segment.
void lf_rotationTest(LiveAc& record, int32_t ticks);
void lf_rotate(LiveAc& record);
/// Every tick in "take_off".
void lf_rotationStep(LiveAc& record);
/// A report that makes a roll-out a touch and go.
void lf_touchAndGo(LiveAc& record);

}  // namespace skl
