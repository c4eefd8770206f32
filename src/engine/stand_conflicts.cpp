// Two aircraft for one stand, or for two stands that leave no room for both.
#include <fmt/format.h>

#include <algorithm>

#include "core/log.h"
#include "core/parameters.h"
#include "engine/conflicts.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "parking/stands.h"
#include "parking/static_ac.h"

namespace skl {

namespace {

using State = SimObjectState;

bool onItsStand(const LiveAc& record) {
    return record.simState == State::active &&
           (record.stage == FlightStage::parked || record.stage == FlightStage::pushing_back);
}

/// The first live aircraft of the stand that `test` accepts.
template <class Test>
LiveAc* liveAt(uint32_t standId, const Test& test) {
    if (standId == 0) return nullptr;  // what all have that hold no stand
    const auto found = std::find_if(liveAcs.begin(), liveAcs.end(), [&](const LiveAc& record) {
        return record.standId == standId && test(record);
    });
    return found == liveAcs.end() ? nullptr : &*found;
}

std::string_view withoutLast(std::string_view text) {
    return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

/// A position that is not known is adjacent to nothing.
bool noRoom(LaLo a, LaLo b, double halfA, double halfB) {
    return positionKnown(a) && lf_spansReach(halfA, halfB, gf_distanceNm(a, b));
}

bool noRoom(uint32_t adjacentId, const Stand& stand, const LiveAc& there, const LiveAc& newcomer) {
    const Stand* adjacent = lf_findStand(adjacentId);
    return adjacent && noRoom(adjacent->pos(), stand.pos(), there.halfSpanNm, newcomer.halfSpanNm);
}

bool sameAircraft(const StaticAc& parked, const LiveAc& live) {
    return parked.coupledIn == live.callsign || (!live.regcode.empty() && parked.regcode == live.regcode);
}

/// The one whose stand becomes another's.
void makeWay(StaticAc& parked, const LiveAc& record, const Stand& stand) {
    const bool created = parked.simState == State::active;
    lf_removeForLive(parked);
    if (!LOG.value || !(created || parked.eraseFromQueue)) return;
    gf_log(fmt::format("{}{:8}: {:8} {} makes way for{} {} {}", created ? "" : "queued ", stand.id,
                       parked.callsign, parked.regcode,
                       sameAircraft(parked, record) ? " the same live version" : "", record.callsign,
                       fmt::format("{} {}", record.regcode, gf_shortForm(record))));
}

}  // namespace

bool lf_standOccupied(uint32_t standId, const std::string& callsign) {
    LiveAc* occupant = liveAt(standId, [](const LiveAc& record) {
        return onItsStand(record) ||
               (record.simState == State::active && record.stage == FlightStage::pushed_back);
    });
    if (!occupant) return true;
    const std::string& holder = occupant->callsign;
    const auto replace = [&](const std::string& why) {
        if (LOG.value) gf_log(fmt::format("{:8}: {:8} {}", lf_standName(standId), holder, why));
        removeAircraftFromSim(*occupant);
        return true;
    };
    if (callsign == holder)
        return replace(fmt::format("ac with same callsign {} wants it, remove existing ... ", callsign));
    if (withoutLast(callsign) == holder) return false;
    const bool holderIsGhost = holder.ends_with('_'), isGhost = callsign.ends_with('_');
    if (callsign == withoutLast(holder) || (holderIsGhost && !isGhost))
        return replace(fmt::format("ghost, replace by {}", callsign));
    if (!holderIsGhost && isGhost) return false;
    if (occupant->parkedMoving) return false;
    return replace(fmt::format("removed because another live {} wants the stand ...", callsign));
}

bool lf_adjacentLiveConflict(const Stand& stand, const LiveAc& record) {
    return std::any_of(stand.adjacent.begin(), stand.adjacent.end(), [&](uint32_t adjacentId) {
        const LiveAc* there = liveAt(adjacentId, [&](const LiveAc& other) {
            return onItsStand(other) && other.callsign != record.callsign;
        });
        return there && noRoom(adjacentId, stand, *there, record);
    });
}

void lf_staticsMakeWay(const LiveAc& record, const Stand& stand) {
    const auto parked = std::find_if(staticAcs.begin(), staticAcs.end(), [&](const StaticAc& other) {
        return other.standId == stand.sid &&
               (other.simState == State::active || other.simState == State::adding2sim);
    });
    if (parked != staticAcs.end()) {
        makeWay(*parked, record, stand);
        lf_sweepStatics();
    }
    for (const uint32_t adjacentId : stand.adjacent) lf_adjacentStaticMakesWay(record, adjacentId, stand);
}

void lf_adjacentStaticMakesWay(const LiveAc& record, uint32_t adjacentId, const Stand& stand) {
    const auto parked = std::find_if(staticAcs.begin(), staticAcs.end(), [&](const StaticAc& other) {
        return other.standId == adjacentId && other.simState == State::active &&
               noRoom(other.standPos, stand.pos(), gf_halfSpanNm(other.model), gf_halfSpanNm(record.model));
    });
    if (parked == staticAcs.end()) return;
    if (LOG.value)
        gf_log(fmt::format("{:8}: {:8} makes way for {} parking at excluded stand {}",
                           lf_standName(adjacentId), parked->callsign, record.callsign, stand.id));
    lf_removeForLive(*parked);
}

void lf_adjacentLiveMakesWay(uint32_t adjacentId, const LiveAc& record, const Stand& stand) {
    LiveAc* there = liveAt(
        adjacentId, [&](const LiveAc& other) { return onItsStand(other) && other.hexid != record.hexid; });
    if (!there || !noRoom(adjacentId, stand, *there, record)) return;
    if (LOG.value)
        gf_log(fmt::format("{:8}: {:8} removed by parking {} at adjacent and possibly colliding stand {}",
                           lf_standName(adjacentId), there->callsign, record.callsign, stand.id));
    removeAircraftFromSim(*there);
}

}  // namespace skl
