// What live traffic teaches about an airport: options of its stands, real where the aircraft was parked by
// the engine, soft where only a fitting stand can be named. Saved when the airport is left. Worker thread
// only.
#pragma once

#include <cstdint>
#include <string>

#include "airports/airport_file.h"
#include "core/run_state.h"
#include "engine/live_ac.h"

namespace skl {

extern bool learningAllowed;  ///< soft learning is worth it at this airport; set when its file is read

/// Writes what is known of a stay; true when something was recorded. `leaving`: the stay ends. `close`: a
/// soft stay goes up to now.
bool lt_addStandOption(uint32_t standId, const LiveAc& record, bool close, WeekSlot slot, bool leaving,
                       bool real);
/// Extends an option from `start` to `now`, which becomes the start. False: that is longer than one stay, or
/// the option is gone.
bool updateOptions(WeekSlot now, Stand& stand, int32_t optionId, WeekSlot& start, const LiveAc& record,
                   const std::string& cs, bool real);
struct NewOption {
    int32_t optionId = 0;
    bool added = false;
};
/// An option of the slot's half hour at the end of the stand's list: pointers into that become invalid.
/// Nothing is added for an aircraft without a name, or when the same is there.
NewOption lf_newOption(Stand& stand, const LiveAc& record, bool real, WeekSlot slot, const std::string& cs);

/// A stay on the stand that the aircraft holds, as the engine sees it begin or end. Counts for the rate
/// limit.
void lf_learnStay(const LiveAc& record, WeekSlot slot, bool leaving);
/// Whether its arrival and its departure teach: an airline, and a stand of its kind.
inline bool lf_teachesStay(const LiveAc& record) {
    return !record.airline.empty() && record.standCargo == record.cargo;
}
/// The story of an aircraft near the airport ends without a stand.
void lf_learnSoft(const LiveAc& record, bool onGround);
/// Ends the soft stay of the aircraft that began in another half hour; false when there is none.
bool lf_closeSoftStay(const LiveAc& record, WeekSlot now, bool onGround);
/// False within one and a half hours of the aircraft's last fact; its first one is noted.
bool lf_rateOk(WeekSlot now, uint32_t hexid);
/// The stand on which such an aircraft could have stood; 0 for none. `tryNext`: a small airport that is full
/// may answer for the next half hour.
uint32_t lf_softStand(WeekSlot slot, const LiveAc& record, bool tryNext);

/// Writes the learned file; each failure is a line, nothing is thrown.
void lf_saveLearned();
/// The start of a flight.
void gf_resetLearning();

}  // namespace skl
