// What stands against what is planned: the same aircraft stays, the later arrival wins a stand, and an
// aircraft whose own option still holds stays as long as nobody wants its stand.
#include <algorithm>
#include <string_view>

#include "core/run_state.h"
#include "engine/engine_state.h"
#include "liveries/reference_db.h"
#include "parking/stands.h"
#include "parking/statics.h"

namespace skl {

namespace {

constexpr int32_t farthestBack = 46;  // half hours before the last one of the day before

using Planned = std::vector<Candidate>::iterator;

void keep(const StaticAc& record) {
    keptStatics.push_back({record.callsign, record.coupledIn, record.coupledOut, record.regcode,
                           record.airline, record.model, record.parkedAt, record.standId, false});
}

void letGo(const StaticAc& record) {
    removalList.push_back({record.callsign, record.standId});
}

bool isFlying(const StaticAc& record) {
    const auto seen = [](const std::string& callsign) {
        return !callsign.empty() && seenCallsigns.contains(callsign);
    };
    return seen(record.coupledIn) || seen(record.coupledOut);
}

/// Two that cannot both be there: the one that came last is the one that stands now.
void staticOrCandidate(const StaticAc& record, Planned planned, WeekSlot now) {
    if (planned->offset < lf_slotAge(record.parkedAt, now)) {
        engineCounters.staticsReplaced.fetch_add(1, std::memory_order_relaxed);
        letGo(record);
        return;
    }
    keep(record);
    candidates.erase(planned);
}

Planned plannedFor(uint32_t standId) {
    return std::find_if(candidates.begin(), candidates.end(),
                        [standId](const Candidate& planned) { return planned.sid == standId; });
}

/// A neighbour for which the aircraft that stands leaves no room.
Planned plannedTooNear(const StaticAc& record, const Stand* stand) {
    if (!stand || stand->adjacent.empty()) return candidates.end();
    return std::find_if(candidates.begin(), candidates.end(), [&](const Candidate& planned) {
        const auto& adjacent = stand->adjacent;
        if (std::find(adjacent.begin(), adjacent.end(), planned.sid) == adjacent.end()) return false;
        const Stand* other = lf_findStand(planned.sid);
        return other && gf_halfSpanNm(planned.type) + gf_halfSpanNm(record.model) >
                            gf_distanceNm(record.standPos, other->pos());
    });
}

bool holdsOneOf(const Stand& stand, const StaticAc& record, int32_t day, int32_t first, int32_t last) {
    const uint64_t hours = ((uint64_t{1} << (last - first + 1)) - 1) << first;
    return std::any_of(stand.options.begin(), stand.options.end(), [&](const StandOption& option) {
        return option.optionId != 0 && option.day == day && option.reg == record.regcode &&
               option.airl == record.airline && option.type == record.model && (option.hours & hours) != 0;
    });
}

/// Whether the option that brought the aircraft here would still bring it, as far back as the plan has gone.
bool stillDue(const StaticAc& record, const Stand* stand, WeekSlot now) {
    if (!stand) return false;
    const int32_t reach = std::min(lastHalfHour, std::max(lastFitReal, lastFitSoft));
    const int32_t beyond = reach - now.halfHour;
    if (holdsOneOf(*stand, record, now.day, std::max(0, -beyond), now.halfHour)) return true;
    if (beyond <= 0) return false;
    const int32_t before = now.day == 1 ? daysAWeek : now.day - 1;
    return holdsOneOf(*stand, record, before, lastHalfHour - std::min(beyond, farthestBack), lastHalfHour);
}

void decide(const StaticAc& record, WeekSlot now) {
    if (isFlying(record)) {
        letGo(record);
        return;
    }
    if (const Planned own = plannedFor(record.standId); own != candidates.end()) {
        if (!lf_isSameAircraft(record, *own)) {
            staticOrCandidate(record, own, now);
            return;
        }
        keep(record);
        candidates.erase(own);
        return;
    }
    const Stand* stand = lf_findStand(record.standId);
    if (const Planned near = plannedTooNear(record, stand); near != candidates.end())
        staticOrCandidate(record, near, now);
    else if (stillDue(record, stand, now))
        keep(record);
    else
        letGo(record);
}

/// The last half hour of a stay: from now on the aircraft is known by the flight that takes it away.
bool leavesSoon(const KeptStatic& entry, const Stand& stand, WeekSlot now) {
    const auto own = std::find_if(stand.options.begin(), stand.options.end(), [&](const StandOption& option) {
        return option.optionId >= 1 && option.day == now.day && lf_showsCallsign(entry.callsign, option.cs) &&
               option.airl == entry.airline && option.type == entry.model;
    });
    if (own == stand.options.end()) return false;
    const WeekSlot next = lf_slotNext(now);
    if (next.day == now.day) return !lf_holds(own->hours, next.halfHour);
    return std::none_of(stand.options.begin(), stand.options.end(), [&](const StandOption& option) {
        return option.optionId >= 1 && option.day == next.day && option.airl == own->airl &&
               option.type == own->type && lf_holds(option.hours, next.halfHour);
    });
}

/// Whether it still shows its first callsign, and has another one to show.
bool mayChange(const KeptStatic& entry) {
    return !lf_bareCallsign(entry.coupledOut).empty() &&
           !lf_showsCallsign(entry.callsign, entry.coupledOut) &&
           entry.callsign.find(lf_bareCallsign(entry.coupledIn)) != std::string::npos;
}

}  // namespace

void lf_sortStatics(WeekSlot now) {
    for (const StaticAc& record : staticAcs)
        if (record.simState == SimObjectState::active) decide(record, now);
    // The oldest come last: they are the first to go when there are too many.
    std::stable_sort(keptStatics.begin(), keptStatics.end(), [now](const KeptStatic& a, const KeptStatic& b) {
        return lf_slotAge(a.parkedAt, now) < lf_slotAge(b.parkedAt, now);
    });
    for (KeptStatic& entry : keptStatics) {
        const Stand* stand = lf_findStand(entry.standId);
        entry.switchCallsign = stand && mayChange(entry) && leavesSoon(entry, *stand, now);
    }
}

}  // namespace skl
