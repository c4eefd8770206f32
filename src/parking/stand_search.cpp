// One pass over the stands of the airport: which of the aircraft seen at this half hour of the week stands on
// each.
#include <fmt/format.h>

#include <algorithm>

#include "core/log.h"
#include "core/parameters.h"
#include "core/random.h"
#include "liveries/reference_db.h"
#include "parking/stand_fit.h"
#include "parking/stands.h"

namespace skl {

namespace {

/// An active static on a neighbouring stand.
struct Neighbour {
    double halfSpanNm = 0, distanceNm = 0;
};

class Pass {
  public:
    Pass(const StandSearch& search, int32_t offset, std::vector<Candidate>& found)
        : search_(search), slot_(lf_slotBack(search.now, offset)), offset_(offset), found_(found) {}

    void look(size_t index) {
        Stand& stand = stands[index];
        if (stand.reserved || stand.filled || stand.blocked) return;
        if (stand.heli && !HELICOPTERS.value) return;
        if (!search_.mayHold(index, slot_)) return;
        collect(stand);
        if (ids_.empty()) return;
        if (ids_.size() > 1 && RANDOM.value) order(stand);
        StandOption* option = withId(stand, ids_.front());
        if (!option) return;
        if (lf_optionUsed(*option, stand, found_))
            option->optionId = 0;
        else
            take(stand, *option);
    }

  private:
    /// The options that can stand here in the slot of this pass.
    void collect(const Stand& stand) {
        ids_.clear();
        findNeighbours(stand);
        for (const StandOption& option : stand.options)
            if (isDue(option) && leavesRoom(option)) ids_.push_back(option.optionId);
    }

    bool isDue(const StandOption& option) const {
        return option.optionId != 0 && option.real == search_.real &&
               (WEEK.value || option.day == slot_.day) && lf_holds(option.hours, slot_.halfHour);
    }

    void findNeighbours(const Stand& stand) {
        neighbours_.clear();
        for (uint32_t sid : stand.adjacent)
            if (const StaticAc* parked = search_.standingOn(sid))
                neighbours_.push_back(
                    {gf_halfSpanNm(parked->model), gf_distanceNm(parked->standPos, stand.pos())});
    }

    bool leavesRoom(const StandOption& option) const {
        if (neighbours_.empty()) return true;
        const double halfSpan = gf_halfSpanNm(option.type);
        return std::none_of(neighbours_.begin(), neighbours_.end(), [halfSpan](const Neighbour& neighbour) {
            return neighbour.halfSpanNm + halfSpan > neighbour.distanceNm;
        });
    }

    /// The aircraft that stands here is kept if it is among those due; otherwise all have the same chance.
    void order(const Stand& stand) {
        for (const StaticAc& parked : staticAcs) {
            if (parked.standId != stand.sid) continue;
            for (const StandOption& option : stand.options) {
                if (!isCollected(option.optionId) || !lf_isSameAircraft(parked, option)) continue;
                ids_.front() = option.optionId;
                return;
            }
        }
        std::shuffle(ids_.begin(), ids_.end(), mt());
    }

    bool isCollected(int32_t optionId) const {
        return std::find(ids_.begin(), ids_.end(), optionId) != ids_.end();
    }

    static StandOption* withId(Stand& stand, int32_t optionId) {
        const auto found =
            std::find_if(stand.options.begin(), stand.options.end(),
                         [optionId](const StandOption& option) { return option.optionId == optionId; });
        return found == stand.options.end() ? nullptr : &*found;
    }

    /// In the last half hour of its stay an aircraft shows its second callsign.
    bool staysOn(const Stand& stand, const StandOption& chosen) const {
        if (chosen.cs2.empty()) return true;
        const WeekSlot next = lf_slotNext(search_.now);
        if (next.day == search_.now.day) return lf_holds(chosen.hours, next.halfHour);
        return std::any_of(stand.options.begin(), stand.options.end(), [&](const StandOption& option) {
            return option.optionId != 0 && option.day == next.day && option.airl == chosen.airl &&
                   option.type == chosen.type && lf_holds(option.hours, next.halfHour);
        });
    }

    void take(Stand& stand, const StandOption& option) {
        found_.push_back({.sid = stand.sid,
                          .offset = offset_,
                          .airl = option.airl,
                          .type = option.type,
                          .cs = option.cs,
                          .cs2 = option.cs2,
                          .reg = option.reg,
                          .stayFlag = staysOn(stand, option)});
        lf_fillStand(stand);
    }

    const StandSearch& search_;
    const WeekSlot slot_;
    const int32_t offset_;
    std::vector<Candidate>& found_;
    std::vector<int32_t> ids_;
    std::vector<Neighbour> neighbours_;
};

bool isSeen(const std::string& callsign) {
    return !callsign.empty() && (seenCallsigns.contains(callsign) || seenCallsigns.contains(callsign + "_"));
}

// Equal is equal: two empty texts too. A planned aircraft that nothing is known of stands for all such.

bool isFlight(const std::string& callsign, const StandOption& option) {
    return callsign == option.cs || callsign == option.cs2;
}

bool isPlanned(const std::vector<Candidate>& plan, const StandOption& option) {
    return std::any_of(plan.begin(), plan.end(), [&](const Candidate& candidate) {
        return isFlight(candidate.cs, option) || candidate.reg == option.reg;
    });
}

bool standsElsewhere(const StandOption& option, const Stand& stand) {
    return std::any_of(staticAcs.begin(), staticAcs.end(), [&](const StaticAc& parked) {
        return parked.standId != stand.sid &&
               (isFlight(parked.coupledIn, option) || parked.regcode == option.reg);
    });
}

bool isParkedLive(const StandOption& option) {
    return std::any_of(liveParkedList.begin(), liveParkedList.end(),
                       [&](const ParkedAge& parked) { return isFlight(parked.callsign, option); });
}

}  // namespace

std::string_view lf_bareCallsign(std::string_view callsign) {
    while (callsign.ends_with('_')) callsign.remove_suffix(1);
    return callsign;
}

bool lf_showsCallsign(std::string_view shown, std::string_view callsign) {
    callsign = lf_bareCallsign(callsign);
    if (callsign.empty() || !shown.ends_with('*')) return false;
    if (!callsign.ends_with('*')) shown.remove_suffix(1);
    return shown == callsign;
}

StandSearch::StandSearch(WeekSlot searchedFrom, bool searchReal) : now(searchedFrom), real(searchReal) {
    hours_.resize(stands.size());
    for (size_t i = 0; i < stands.size(); ++i)
        for (const StandOption& option : stands[i].options) {
            if (option.optionId == 0 || option.real != real) continue;
            hours_[i].week |= option.hours;
            if (option.day >= 1 && option.day <= daysAWeek)
                hours_[i].days[static_cast<size_t>(option.day)] |= option.hours;
        }
    for (const StaticAc& parked : staticAcs)
        if (parked.simState == SimObjectState::active) standing_.emplace(parked.standId, &parked);
}

bool StandSearch::mayHold(size_t index, WeekSlot slot) const {
    const Hours& hours = hours_[index];
    if (WEEK.value) return lf_holds(hours.week, slot.halfHour);
    return slot.day >= 1 && slot.day <= daysAWeek &&
           lf_holds(hours.days[static_cast<size_t>(slot.day)], slot.halfHour);
}

const StaticAc* StandSearch::standingOn(uint32_t sid) const {
    const auto found = standing_.find(sid);
    return found == standing_.end() ? nullptr : found->second;
}

bool lf_optionUsed(const StandOption& option, const Stand& stand, const std::vector<Candidate>& found) {
    return isSeen(option.cs) || isSeen(option.cs2) || standsElsewhere(option, stand) ||
           isPlanned(candidates, option) || isPlanned(found, option) || isParkedLive(option);
}

void lf_searchStands(const StandSearch& search, int32_t offset, std::vector<Candidate>& found) {
    try {
        Pass pass(search, offset, found);
        for (size_t i = 0; i < stands.size(); ++i) pass.look(i);
    } catch (const std::exception& error) {
        const WeekSlot slot = lf_slotBack(search.now, offset);
        gf_logError(fmt::format("lf_searchStands: day: [{},{}], offset {}: {}", slot.day, slot.halfHour,
                                offset, error.what()));
    }
}

}  // namespace skl
