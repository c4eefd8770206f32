// Which aircraft of the airport's history stands where at this hour: a plan of static aircraft for the
// current week slot, widened half hour by half hour into the past. Worker thread only.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "airports/airport_file.h"
#include "core/fnv.h"
#include "core/run_state.h"
#include "engine/live_ac.h"
#include "engine/live_parking.h"
#include "parking/static_ac.h"
#include "parking/week_slots.h"

namespace skl {

/// One planned static aircraft.
struct Candidate {
    uint32_t sid = 0;
    int32_t offset = 0;  ///< half hours between now and the slot of the option
    std::string airl, type, cs, cs2, reg;
    bool stayFlag = false;  ///< shows `cs`; else `cs2`
};

extern std::vector<Candidate> candidates;  ///< taken from the end; left sorted by descending offset
extern int32_t lastFitReal, lastFitSoft;   ///< offsets at which the two searches ended; -1: no soft one ran
extern StringSet seenCallsigns;            ///< callsigns of the feed at the start of this fill
extern std::vector<ParkedAge> liveParkedList;

/// A callsign without the marks of a ghost, "_" at its end.
std::string_view lf_bareCallsign(std::string_view callsign);
/// Whether a static aircraft shows this callsign of an option: bare, with "*" behind.
bool lf_showsCallsign(std::string_view shown, std::string_view callsign);
/// Whether a planned aircraft (an option or a candidate) is the one that stands there. One that has come
/// without a callsign shows a number, and is known by its registration.
template <class Planned>
bool lf_isSameAircraft(const AcBase& parked, const Planned& planned) {
    if (parked.airline != planned.airl || parked.model != planned.type) return false;
    if (lf_showsCallsign(parked.callsign, planned.cs) || lf_showsCallsign(parked.callsign, planned.cs2))
        return true;
    return planned.cs.empty() && !planned.reg.empty() && planned.reg == parked.regcode;
}

/// How many aircraft the airport is to show; sets maxParkCount and the panel's percentage.
int64_t lf_wantedStatics();
/// Marks the stands to be held free: the reserved one and the one under the user.
void lf_markReserved();
/// The stand is taken and its neighbours are blocked.
void lf_fillStand(Stand& stand);
/// The callsigns collected since the announcement become seenCallsigns.
void lf_takeCallsigns();
/// Logs the moment of a fill and gives the current slot.
WeekSlot lf_logNow();

/// A search through the options of one class, with what every pass asks of the stands and the statics.
/// Neither may change beside the search while it lives.
class StandSearch {
  public:
    StandSearch(WeekSlot searchedFrom, bool searchReal);
    const WeekSlot now;
    const bool real;
    /// False when no option of the stand can hold this slot; `index` in `stands`.
    bool mayHold(size_t index, WeekSlot slot) const;
    /// The first active static on a stand, or nullptr.
    const StaticAc* standingOn(uint32_t sid) const;

  private:
    /// The half hours of all options of a stand, and by weekday.
    struct Hours {
        uint64_t week = 0;
        std::array<uint64_t, 8> days{};
    };
    std::vector<Hours> hours_;
    std::unordered_map<uint32_t, const StaticAc*> standing_;
};

/// One pass over the stands: each free one takes at most one aircraft; appends to `found`.
void lf_searchStands(const StandSearch& search, int32_t offset, std::vector<Candidate>& found);
/// Whether this airframe or flight is around already, other than on `stand`. `found`: what the running pass
/// has planned.
bool lf_optionUsed(const StandOption& option, const Stand& stand, const std::vector<Candidate>& found);
/// Passes at rising offsets until enough stands are filled: true, and `last` holds what the last one found.
bool lf_fitStands(WeekSlot now, bool real, int64_t wanted, std::vector<Candidate>& last);
/// One class, cut to the wanted number; `keep`: what stands at the airport already and counts towards it.
void lf_fillClass(WeekSlot now, int64_t wanted, int64_t keep, bool real);
/// Real options, then soft ones if those are too few.
void lf_fillStands(WeekSlot now, int64_t wanted, int64_t keep);
/// The first plan for an airport that came into sight.
void lf_firstFill();
/// Fills coupledIn and coupledOut of a live aircraft from the options of today.
void lf_searchForCoupledCsAroundThisTime(WeekSlot now, LiveAc& record);
void gf_resetStandFit();

}  // namespace skl
