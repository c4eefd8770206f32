// The table of live aircraft and the index behind its find functions. Worker thread only. Records are added,
// erased and renamed through the functions below, so that a look-up by transponder id, object id or callsign
// costs the same whatever the size of the table. A reference into the table is valid until a record is added
// or erased.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/live_ac.h"

namespace skl {

/// Appends a record.
LiveAc& lf_addLive(LiveAc record);
/// Moves the last record over this one; every reference into the table may be wrong afterwards.
void lf_eraseLive(LiveAc& record);
/// Erases the records with eraseNow or eraseFromQueue in one pass; the others keep their order.
void lf_sweepLive();
void lf_clearLive();

/// Object id (0: none any more) and callsign of a record are changed here only.
void lf_setObjectId(LiveAc& record, uint32_t objectId);
void lf_setCallsign(LiveAc& record, std::string callsign);

/// Whether a record has both this callsign and this type.
bool lf_liveFlightExists(std::string_view callsign, std::string_view model);

}  // namespace skl
