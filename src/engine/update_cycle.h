// The motion core. The report half takes a record of the feed, thins it and appends it to an aircraft's
// stream; the tick half flies each aircraft from point to point by per-tick deltas, 100 times a second.
// Worker thread only.
#pragma once

#include <string_view>
#include <vector>

#include "engine/live_ac.h"
#include "feed/traffic_update.h"
#include "simlink/ai_commands.h"

namespace skl {

/// The poses of the present tick, filled by updateLiveAc and handed over after all aircraft have moved.
extern std::vector<PosEntry> posWriteSide;

// --- the report half
/// Decides the fate of one report; passes exceptions on.
void lf_decodeUpdate(TrafficUpdate& update);
/// Appends a report of a known aircraft. Exceptions are logged and passed on.
void decodeExisting(LiveAc& record, LivePos pos);
/// Whether the report may join the stream, by the aircraft's stage. May change the report.
bool checkExtendingSituations(LiveAc& record, LivePos& pos);
/// Whether the report brings anything new against the last point of the stream, which must not be empty. Sets
/// `stopped`; a jitter on the ground turns the report into a stopped copy of the last point.
bool lf_filterPoint(const LiveAc& record, LivePos& pos);

// --- the tick half
/// One tick of one aircraft; true if the record is to be swept. Never throws.
bool updateLiveAc(LiveAc& record);
/// Moves the aircraft to its next segment, or removes it at the end of its stream. An exception is logged,
/// removes the aircraft and is passed on.
void nextPosMain(LiveAc& record);
/// Sets up the segment from the front to stream[1] and pops the front. Needs two points. Throws
/// std::range_error when the motion that comes out is not finite.
void lf_nextSegment(LiveAc& record);
/// With fewer than two points left: adds a predicted point, or gives false when the aircraft is to go.
bool lf_extendStream(LiveAc& record);
/// Appends the predicted point with which `n` predicted points, itself included, are still to come.
void lf_predictPoint(LiveAc& record, int32_t n);
/// Adds the deltas of the segment to the pose.
void lf_moveOneTick(LiveAc& record);
/// Turns the nose towards `target` (radians) by at most the turn rate in force.
void lf_turnTowards(LiveAc& record, double target);

/// From a handler: the exception that is being handled, with the function's name and who the aircraft is.
void lf_logTickFailure(std::string_view where, const LiveAc& record);
/// Within `degrees` of each other in latitude and in longitude, the date line included.
bool lf_samePlace(LaLo a, LaLo b, double degrees = 1e-8);

}  // namespace skl
