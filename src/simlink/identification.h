// From a creation request to the object that the simulator made of it: found by the tail number that the
// request set. SimConnect thread only.
#pragma once

#include <cstdint>
#include <string_view>

#include "simlink/simconnect.h"

namespace skl {

/// A request that has just gone out.
void lf_rememberCreate(uint32_t packetId, uint32_t hexid, std::string_view callsign);
/// A creation that the simulator refused, or, with `titleIsToBlame` clear, had no room for.
void lf_createFailed(uint32_t packetId, bool titleIsToBlame);
/// Gives up the creations that have waited too long. To be called once a frame, without g_simLock.
void lf_expirePending();

/// Events about an aircraft of anybody.
void lf_objectAdded(uint32_t objectId);
void lf_objectGone(uint32_t objectId);
/// A reply about one of the aircraft in range.
void lf_objectReply(const SimRecv& message);

}  // namespace skl
