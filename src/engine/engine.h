// The live traffic engine as the run sequence sees it. Worker thread only, unless said otherwise.
#pragma once

#include "engine/live_ac.h"

namespace skl {

/// One tick of 10 ms of a running flight.
void lf_engineTick();
/// Handles all messages of the simulator side that have arrived.
void lf_processSimInbox();
/// The one way to make an aircraft go, live or static.
void removeAircraftFromSim(AcBase& record);
/// Records by transponder id, object id or callsign; nullptr if there is none. Valid until the table changes.
LiveAc* lf_findLive(uint32_t hexid);
LiveAc* lf_findLiveByObject(uint32_t objectId);
LiveAc* lf_findLiveByCallsign(std::string_view callsign);

/// The loss of the feed's link: every live aircraft goes, whatever its state.
void gf_clearSky();
/// Answers a pending callsign question of the panel; called once a second.
void gf_answerCallsignQuery();
/// Callsign2ObjectId.txt: written every 62 s, deleted at both ends of a flight.
void lf_writeObjectList();
void gf_deleteObjectList();
/// Removes the farthest aircraft until the limit fits.
void lf_enforceMaxLive();

/// For the SimConnect side, any thread: appends to the sim inbox under g_eventLock.
void gf_postSimMsg(const SimMsg& message);

}  // namespace skl
