// What resolves contradictions of a scene that is fed from three sources: one of two aircraft goes. Live
// reports beat statics, the real callsign beats its ghost (a trailing "_"), the user's aircraft beats
// everything. Worker thread only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "airports/airport_file.h"
#include "engine/live_ac.h"

namespace skl {

/// A real callsign has appeared: its ghost goes and does not come back.
void lf_ghostTest(const std::string& callsign);
/// Whether the aircraft is here that this callsign is the ghost of.
bool lf_liveCallsignExists(std::string_view callsign);

/// Whether the newcomer is allowed on the stand; what stands there may be removed for it.
bool lf_standOccupied(uint32_t standId, const std::string& callsign);
/// Whether a live aircraft on an adjacent stand leaves no room.
bool lf_adjacentLiveConflict(const Stand& stand, const LiveAc& record);
/// Statics on the stand and too near on adjacent stands go.
void lf_staticsMakeWay(const LiveAc& record, const Stand& stand);
void lf_adjacentStaticMakesWay(const LiveAc& record, uint32_t adjacentId, const Stand& stand);
void lf_adjacentLiveMakesWay(uint32_t adjacentId, const LiveAc& record, const Stand& stand);

/// The static that is the same flight or airframe as a live aircraft goes.
void lf_staticForNewLive(const LiveAc& record, bool onGround);
/// A static in the way of a taxiing aircraft goes.
void lf_checkAgainstStatics(LiveAc& record);

// --- the steps of each second, in their order
void lf_serveNewAcList();
void lf_userInTheAir();
void lf_userOnTheGround();
void lf_taxiingAgainstStatics();
void lf_serveBlock();
/// Every 61 s.
void lf_sameFlightParked();
void lf_resetConflicts();

/// Whether two half spans, widened by `factor`, reach over `distance`; all in nautical miles.
constexpr bool lf_spansReach(double halfA, double halfB, double distance, double factor = 1.1) {
    return (halfA + halfB) * factor >= distance;
}

}  // namespace skl
