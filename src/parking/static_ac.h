// The table of static aircraft, those that only stand. Worker thread only.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/live_ac.h"

namespace skl {

struct StaticAc : AcBase {
    int32_t addingSince = 0;   ///< tick at which the creation request went out; 0 while it waits
    int32_t leavingSince = 0;  ///< tick at which its leaving was first seen; 0 before
};

extern std::vector<StaticAc> staticAcs;

/// Erases the records with eraseNow or eraseFromQueue in one pass; the others keep their order.
void lf_sweepStatics();
/// The record that wants an object and has none yet; nullptr if there is none. Valid until the table changes.
StaticAc* lf_addingStatic(uint32_t hexid);
/// The object has stood for its 200 ticks.
void lf_activateStatic(uint32_t hexid, uint32_t objectId);
/// Whether a static is on its way out for less than `ticks`.
bool lf_staticLeaving(int32_t ticks);
/// Erases records for which the simulator has left the engine without an answer for 60 s.
void lf_dropLostStatics();
/// Whether the simulator shows it.
inline bool lf_standsInSim(const StaticAc& record) {
    return record.simState == SimObjectState::active || record.simState == SimObjectState::removingfromsim;
}
/// Counts those; with `updateFit` the panel's mean age of them too.
size_t lf_countStatics(bool updateFit);
/// Sets a mean age of the panel, hours, from `count` ages that are so many half hours in all.
void lf_showMeanAge(std::atomic<float>& field, size_t count, int64_t halfHours);
/// One that makes room for live traffic, counted as such.
void lf_removeForLive(StaticAc& record);

}  // namespace skl
