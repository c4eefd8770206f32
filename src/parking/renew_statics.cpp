// A renewal: a new plan is held against what stands, so that most aircraft stay untouched, and the difference
// goes and comes. Also the flush.
#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "core/messages.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_parking.h"
#include "feed/feed.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "parking/airport_in_sight.h"
#include "parking/leave_airport.h"
#include "parking/park_airport.h"
#include "parking/stands.h"
#include "parking/statics.h"

namespace skl {

std::vector<KeptStatic> keptStatics;
std::vector<StaticToRemove> removalList;

namespace {

bool underWay = false;

/// Flags of the last plan go, and the options that it has spent come back.
void refreshStands() {
    for (Stand& stand : stands) {
        stand.filled = stand.occupied = stand.reserved = stand.blocked = false;
        int32_t optionId = 0;
        for (StandOption& option : stand.options) option.optionId = ++optionId;
    }
}

/// Parked live aircraft count first, but not beyond what is wanted in all.
void cutLive(int64_t wanted) {
    const int64_t surplus = std::ssize(liveParkedList) - wanted;
    if (wanted < 1 || surplus < 1) return;
    gf_showMessage(fmt::format("Parking adjustments: {} more live ac than wanted", surplus), true);
    lf_removeOldestParked(static_cast<size_t>(surplus));
    liveParkedList = lf_liveParkedAges();
}

void fillLiveStands() {
    for (const ParkedAge& parked : liveParkedList)
        if (Stand* stand = lf_findStand(parked.standId)) lf_fillStand(*stand);
}

Candidate again(const KeptStatic& entry, WeekSlot now) {
    return {.sid = entry.standId,
            .offset = std::min(lastHalfHour, lf_slotAge(entry.parkedAt, now)),
            .airl = entry.airline,
            .type = entry.model,
            .cs = entry.coupledIn,
            .cs2 = entry.coupledOut,
            .reg = entry.regcode,
            .stayFlag = false};
}

/// Those that change to their second callsign are replaced. In front of the plan: its end is what a plan too
/// long loses.
void replaceSwitching(WeekSlot now) {
    std::vector<Candidate> replaced;
    for (const KeptStatic& entry : keptStatics) {
        if (!entry.switchCallsign) continue;
        replaced.push_back(again(entry, now));
        removalList.push_back({entry.callsign, entry.standId});
    }
    std::erase_if(keptStatics, [](const KeptStatic& entry) { return entry.switchCallsign; });
    engineCounters.staticsReplaced.fetch_add(replaced.size(), std::memory_order_relaxed);
    candidates.insert(candidates.begin(), std::make_move_iterator(replaced.begin()),
                      std::make_move_iterator(replaced.end()));
}

void removeListed() {
    for (const StaticToRemove& entry : removalList) {
        const auto found = std::find_if(staticAcs.begin(), staticAcs.end(), [&](const StaticAc& record) {
            return record.standId == entry.standId;
        });
        if (found == staticAcs.end()) continue;
        if (lf_standsInSim(*found)) removeAircraftFromSim(*found);
    }
    removalList.clear();
    lf_sweepStatics();
}

void removeLiveOn(uint32_t standId) {
    const auto found = std::find_if(liveAcs.begin(), liveAcs.end(), [standId](const LiveAc& record) {
        return record.standId == standId && lf_isParked(record);
    });
    if (found != liveAcs.end()) removeAircraftFromSim(*found);
}

}  // namespace

void lf_serveRenewal() {
    if (!g_renewRequested) return;
    if (!underWay) {
        underWay = true;
        lf_announceStatics(false);
        return;
    }
    underWay = false;
    g_renewRequested = false;
    gf_clearMessage();
    if (gf_airportInSight() && !stands.empty())
        lf_renewParking();
    else if (!loadPending)
        gf_stopCollectingCallsigns();
}

bool lf_renewalUnderWay() {
    return underWay;
}

void lf_dropRenewal() {
    underWay = false;
    g_renewRequested = false;
    if (!loadPending) gf_stopCollectingCallsigns();
}

void lf_renewParking() {
    lf_takeCallsigns();
    lf_lockStatics(true);
    g_panel.softMark = false;
    removalList.clear();
    keptStatics.clear();
    candidates.clear();
    refreshStands();
    lf_markReserved();
    liveParkedList = lf_liveParkedAges();
    const int64_t wanted = lf_wantedStatics();
    cutLive(wanted);
    fillLiveStands();
    const WeekSlot now = lf_logNow();
    const int64_t live = std::ssize(liveParkedList);
    if (wanted != live) lf_fillStands(now, wanted, live);
    lf_sortStatics(now);
    replaceSwitching(now);
    lf_trimToWanted(wanted);
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.offset > b.offset; });
    engineCounters.staticsKept.fetch_add(keptStatics.size(), std::memory_order_relaxed);
    gf_showMessage(fmt::format("Parking adjustments: {} to be removed, {} to be added", removalList.size(),
                               candidates.size()),
                   true);
    removeListed();
}

void lf_trimToWanted(int64_t wanted) {
    int64_t surplus = std::ssize(candidates) + std::ssize(keptStatics) + std::ssize(liveParkedList) - wanted;
    for (; surplus > 0 && !candidates.empty(); --surplus) candidates.pop_back();
    for (; surplus > 0 && !keptStatics.empty(); --surplus) {
        removalList.push_back({keptStatics.back().callsign, keptStatics.back().standId});
        keptStatics.pop_back();
    }
    if (wanted < 1) return;  // without a limit the live ones stay
    for (; surplus > 0 && !liveParkedList.empty(); --surplus) {
        removeLiveOn(liveParkedList.back().standId);
        liveParkedList.pop_back();
    }
}

void lf_serveFlush() {
    if (!g_flushStatic.exchange(false)) return;
    candidates.clear();
    lf_dropRenewal();
    lf_removeAllStatics();
    if (!INITIAL_LOAD_ONLY.value.exchange(true)) gf_invalidate(Band::options);
}

void gf_resetStatics() {
    keptStatics.clear();
    removalList.clear();
    staticsLock = false;
    staticCounter = 0;
    underWay = false;
}

}  // namespace skl
