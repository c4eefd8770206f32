// Off the stand: pulling out, or pushback with its tail turn and the wait behind it. Worker thread only.
#pragma once

#include "engine/live_ac.h"

namespace skl {

void lf_pullOut(LiveAc& record);
/// Pulls out instead when the stand is not known.
void lf_startPushback(LiveAc& record);
/// Each segment of a pushback: the turn, then the end.
void lf_pushbackStep(LiveAc& record);
/// A report while the aircraft is pushed: it never joins the stream, but may tell where the nose swings.
bool lf_pushbackReport(LiveAc& record, const LivePos& pos);
/// A report behind a pushback: true, and the stage "taxi", once the aircraft moves away.
bool lf_pushedBackReport(LiveAc& record, LivePos& pos);

}  // namespace skl
