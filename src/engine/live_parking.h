// The last metres to a stand, the stay there, and the reports that end it. Worker thread only.
#pragma once

#include <string>
#include <vector>

#include "airports/airport_file.h"
#include "engine/live_ac.h"

namespace skl {

/// The stand for the aircraft within `maxNm` of `pos`, or, with `wide`, one within 85 m where it was seen
/// before; nullptr if there is none. A stand that is too small but very near grows.
Stand* lf_closestStand(LaLo pos, const LiveAc& record, double maxNm, bool wide);
/// Whether the stand is kept free for the user, or the user stands on it.
bool lf_keptForUser(const Stand& stand);
/// The stand on which an aircraft appears, or nullptr; may set eraseNow.
Stand* lf_findSpawnStand(LiveAc& record);

/// Takes an aircraft whose stream ends near a stand onto it: the stage becomes "parking". Once for each
/// stream end.
void try2Park(LiveAc& record, bool wide);
/// Appends the drive to `pos` and the stop there, nose on standHeading; ends prediction, holding and curve.
void drive2Stand(LiveAc& record, LaLo pos);
/// The end of the drive: on the stand, or back to taxiing.
void lf_arrival(LiveAc& record);
/// What begins a stay: the time, and no report of it yet.
void lf_beginStay(LiveAc& record);
/// Engines off, parking lights.
void lf_parkedConfiguration(AcBase& record);
/// A passenger aircraft has parked on a cargo stand: it is none.
void lf_fixCargo(LiveAc& record);

/// A report while "parked" or "parking": whether it joins the stream.
bool lf_parkedReport(LiveAc& record, LivePos& pos);
void lf_leavingStand(LiveAc& record);

/// An object that stands on a stand.
inline bool lf_isParked(const LiveAc& record) {
    return record.simState == SimObjectState::active && record.stage == FlightStage::parked;
}
/// The steady clock in the units of parkedSince, 100 ns.
uint64_t lf_parkClock();
/// Removes the oldest parked live aircraft, and the oldest static one, beyond the airport's limit. `oneMore`:
/// a newcomer counts that is not in the table of objects yet.
void lf_enforceMaxPark(bool oneMore);
struct ParkedAge {
    std::string callsign;
    int32_t minutes = 0;
    uint32_t standId = 0;
};
/// The parked live aircraft, youngest first; those too old are removed.
std::vector<ParkedAge> lf_liveParkedAges();
struct ParkedSeconds {
    uint32_t hexid = 0;
    int64_t seconds = 0;
};
/// The parked live aircraft, oldest first.
std::vector<ParkedSeconds> lf_oldestParked();
void lf_removeOldestParked(size_t n);
/// Counts the parked live aircraft; with `updateFit` the panel's mean age of them too.
size_t lf_countLiveParked(bool updateFit);

}  // namespace skl
