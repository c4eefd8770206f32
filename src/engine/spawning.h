// The road of an aircraft from its first report to an object in the simulator, and what ends or repeats it.
// Worker thread only. lf_newAircraft and the erasures end the validity of every reference into liveAcs; the
// others do not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/live_ac.h"
#include "feed/traffic_update.h"

namespace skl {

// --- into the table and out of the buffer
/// A report of an unknown transponder id: the record is made unless the type, category or height filter
/// refuses it.
void lf_newAircraft(const TrafficUpdate& update);
/// Whether the user wants aircraft of this category.
bool lf_categoryWanted(AcCategory category);
/// A report in the air at the height (feet) of the airport in sight: most likely one on its ground.
bool lf_atFieldHeight(double alt);
/// A ghost's callsign, and the aircraft that it is the ghost of is here.
bool lf_ghostOfKnown(std::string_view callsign);
/// The tests between the table and the simulator; once a tick for a record in "buffer".
void lf_handleBuffer(LiveAc& record);
/// Keeps an aircraft from appearing in front of the user. True: the front point was dropped for that.
bool lf_nearUser(LiveAc& record);
/// Livery, first stage and first pose; the record goes to the adding stack.
void spawnLiveAc(LiveAc& record);
/// One hexid from the end of the adding stack becomes a creation request.
void lf_serveAddingStack();

// --- the limit on live aircraft
size_t lf_countActive();
/// Removes the active aircraft farthest from the user if it is farther than `nm`. True: there is none.
bool lf_removeFarthest(double nm);

// --- what the simulator says
/// True: the object waits for its activation.
bool lf_objectIdentified(LiveAc& record, const SimMsg& message);
/// An object that appears on the ground: wheels down, and a parked one starts its stay.
void lf_landOnSpawn(LiveAc& record);
/// Counts the waiting objects on by a tick; under g_eventLock.
void lf_activatePending();
void lf_objectRemoved(uint32_t objectId);
/// Blames the title. Throws UserErrorException 81 when too many were refused. The caller erases the record.
void lf_objectRefused(const AcBase& record);

// --- identity
/// Replaces the object, the stream stays.
void liveryRespawn(LiveAc& record);
/// Takes over callsign, registration and route of a report. False: the report goes no further.
bool lf_refreshIdentity(LiveAc& record, const TrafficUpdate& update);
void lf_forgetLivery(LiveAc& record);
/// The three letters before the digit of a flight's callsign, in upper case.
std::optional<std::string> lf_airlineOfCallsign(std::string_view callsign);
/// Airline, type and registration as `unmatchedKeys` holds them.
std::string lf_unmatchedKey(const AcBase& record);

// --- removal
/// Takes a creation out of the adding stack and both queues; false if it is not there (any more).
bool lf_withdrawCreation(uint32_t hexid);
/// The object joins the removal queue unless it waits there already.
void lf_queueRemoval(uint32_t objectId);
/// The panel's answer to a callsign question goes if it is about this object. True: it was.
bool lf_forgetWatched(uint32_t objectId);

// --- steps of the tick
void lf_updateAll();
void lf_serveQueues();
void lf_takeReports();
void lf_requestData();
/// Erases records whose object was asked for 60 s ago and never came, and statics that never went.
void lf_dropUnanswered();

}  // namespace skl
