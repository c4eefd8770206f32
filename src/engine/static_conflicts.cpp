// A static aircraft that has appeared live, and one that stands in the way of a live one.
#include <fmt/format.h>

#include <algorithm>

#include "core/log.h"
#include "core/parameters.h"
#include "engine/conflicts.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/update_cycle.h"
#include "parking/stand_fit.h"
#include "parking/stands.h"
#include "parking/static_ac.h"

namespace skl {

namespace {

using State = SimObjectState;

/// The first active static that `test` accepts.
template <class Test>
StaticAc* activeStatic(const Test& test) {
    const auto found = std::find_if(staticAcs.begin(), staticAcs.end(), [&](const StaticAc& parked) {
        return parked.simState == State::active && test(parked);
    });
    return found == staticAcs.end() ? nullptr : &*found;
}

StaticAc* staticOfAirframe(const LiveAc& record) {
    if (record.regcode.empty()) return nullptr;
    return activeStatic([&](const StaticAc& parked) { return parked.regcode == record.regcode; });
}

/// The static that came or will leave under this callsign.
StaticAc* staticOfFlight(std::string_view callsign) {
    if (callsign.empty()) return nullptr;
    return activeStatic([&](const StaticAc& parked) {
        return parked.coupledIn == callsign || parked.coupledOut == callsign;
    });
}

StaticAc* staticOfAnyFlight(const LiveAc& record) {
    std::string_view callsign = record.callsign;
    if (StaticAc* own = staticOfFlight(callsign)) return own;
    if (StaticAc* next = staticOfFlight(record.coupledOut)) return next;
    if (!callsign.ends_with('_')) return nullptr;
    callsign.remove_suffix(1);
    return staticOfFlight(callsign);
}

/// "KLM4*" is the static version of "KLM4".
bool staticVersion(std::string_view parked, std::string_view live) {
    return parked.size() == live.size() + 1 && parked.starts_with(live) && parked.ends_with('*');
}

/// Whatever state it is in, as long as the simulator shows it.
StaticAc* shownTwice(const LiveAc& record) {
    const auto found = std::find_if(staticAcs.begin(), staticAcs.end(), [&](const StaticAc& parked) {
        return parked.objectId != 0 && (staticVersion(parked.callsign, record.callsign) ||
                                        (!record.regcode.empty() && parked.regcode == record.regcode));
    });
    return found == staticAcs.end() ? nullptr : &*found;
}

}  // namespace

void lf_staticForNewLive(const LiveAc& record, bool onGround) {
    if (record.callsign.empty()) return;
    const char* where = onGround ? "on ground" : "airborne";
    if (StaticAc* parked = staticOfAirframe(record)) {
        if (LOG.value)
            gf_log(fmt::format("{:8}: {:8} {} removed, new {} '{}' has same regcode {}",
                               lf_standName(parked->standId), parked->callsign, gf_shortForm(*parked), where,
                               record.callsign, record.regcode));
        lf_removeForLive(*parked);
        return;
    }
    StaticAc* parked = staticOfAnyFlight(record);
    if (!parked) return;
    if (LOG.value)
        gf_log(fmt::format("{:8}: {:8} '{} {}' removed, new {} {} '{}' '{}' has {} callsign",
                           lf_standName(parked->standId), parked->callsign, parked->coupledIn,
                           parked->coupledOut, where, record.callsign, record.coupledIn, record.coupledOut,
                           record.callsign == parked->coupledIn ? "same" : "coupled"));
    lf_removeForLive(*parked);
}

void lf_checkAgainstStatics(LiveAc& record) {
    if (record.rollout || record.departing) return;
    record.checkedLat = record.simLat;
    record.checkedLon = record.simLon;
    StaticAc* parked = activeStatic([&](const StaticAc& other) {
        return other.callsign != record.callsign &&
               lf_spansReach(record.halfSpanNm, other.halfSpanNm,
                             gf_distanceNm(record.simPos(), other.standPos));
    });
    if (!parked) return;
    if (LOG.value)
        gf_log(fmt::format("{:8}: {:8} removed for collision avoidance with static {}",
                           lf_standName(parked->standId), parked->callsign, record.callsign));
    lf_removeForLive(*parked);
}

void lf_serveNewAcList() {
    if (newAcList.empty()) return;
    LiveAc* record = lf_findLive(newAcList.front());
    newAcList.pop_front();
    if (!record) return;
    if (!record->coupledSearched) lf_searchForCoupledCsAroundThisTime(gf_weekSlotNow(), *record);
    record->coupledSearched = true;
    // Just spawned, its object may not have told yet where it is: its reports have.
    const bool onGround =
        record->onGround || (!record->stream().empty() && !record->stream().front().airborne);
    lf_staticForNewLive(*record, onGround);
}

void lf_taxiingAgainstStatics() {
    if (!COLLISION_LIVE_PARKED_GND.value || staticAcs.empty()) return;
    for (LiveAc& record : liveAcs) {
        const bool taxis = record.stage == FlightStage::taxi || record.stage == FlightStage::parking;
        if (record.simState == State::active && record.onGround && taxis &&
            !lf_samePlace(record.simPos(), {record.checkedLat, record.checkedLon}))
            lf_checkAgainstStatics(record);
    }
}

void lf_sameFlightParked() {
    if (staticAcs.empty()) return;
    for (const LiveAc& record : liveAcs) {
        if (record.simState != State::active || !record.onGround) continue;
        StaticAc* parked = shownTwice(record);
        if (!parked || parked->simState != State::active) continue;
        lf_removeForLive(*parked);
        return;
    }
}

}  // namespace skl
