// The tick half of the motion core: what one aircraft does in one tick, and how its segments follow each
// other.
#include <fmt/format.h>

#include <cmath>
#include <stdexcept>

#include "core/log.h"
#include "engine/air_segment.h"
#include "engine/engine.h"
#include "engine/ground_segment.h"
#include "engine/slack.h"
#include "engine/spawning.h"
#include "engine/update_cycle.h"
#include "parking/learning.h"

namespace skl {

std::vector<PosEntry> posWriteSide;

namespace {

constexpr double settlingPerTick = -0.1;  // feet: 600 feet a minute

/// A helicopter whose reports stand on the ground while it still flies comes straight down.
bool settles(const LiveAc& record, const LivePos& point) {
    return record.category == AcCategory::Rotorcraft && !record.onGround && point.stopped && !point.airborne;
}

void standStill(LiveAc& record, const LivePos& next) {
    record.dLat = 0;
    record.dLon = 0;
    if (settles(record, next)) {
        record.dAlt = settlingPerTick;
        record.vsFpm = settlingPerTick * 60 * ticksPerSecond;
        record.dPitch = 0;
        record.dBank = 0;
    }
    if (!record.rollout && !record.departing) lf_decaySlack(record);
}

/// Where the leg leads; an aircraft that is pushed keeps its nose.
double legHeading(const LiveAc& record) {
    if (record.stage == FlightStage::pushing_back) return record.simHeading;
    return bearingRad(record.stream()[0].pos(), record.stream()[1].pos());
}

void requireFiniteMotion(const LiveAc& record) {
    // A sum is finite only if all its terms are.
    const double sum = record.dLat + record.dLon + record.dAlt + record.dPitch + record.dBank +
                       record.dHeading + record.vsFpm + record.tasKn + record.targetHeading +
                       record.turnRate + record.curveStep;
    if (!std::isfinite(sum)) throw std::range_error("motion is not finite");
}

void nextSegmentOrRemoval(LiveAc& record) {
    for (;;) {
        if (record.stream().size() >= 2) {
            if (record.onGround || !record.stream()[1].stopped || record.category == AcCategory::Rotorcraft) {
                lf_nextSegment(record);
                return;
            }
            record.stream().erase(record.stream().begin() + 1);
        } else if (!lf_extendStream(record)) {
            if (record.stage != FlightStage::parked)
                lf_learnSoft(record, record.stage != FlightStage::flying);
            removeAircraftFromSim(record);
            return;
        }
    }
}

void queuePose(LiveAc& record) {
    if (record.objectId == 0) {
        gf_log(fmt::format("{} objectid=0? hexid: {},cs:{}, reg:{}, aimo:{} sz:{}", "updateLiveAc",
                           record.hexid, record.callsign, record.regcode, gf_shortForm(record),
                           record.stream().size()));
        removeAircraftFromSim(record);
        return;
    }
    posWriteSide.push_back({record.simLat, record.simLon, record.simPitch, record.simBank, record.simHeading,
                            record.simAlt, record.simVs, record.simTas, record.objectId});
}

/// The point that is flown to: at its time the next segment begins. Whether the aircraft moves towards it.
bool lookAtStream(LiveAc& record) {
    const LiveAc& seen = record;
    if (seen.stream().empty()) {
        gf_log(fmt::format(
            "{} stream empty ? {}, hexid:{}, objectid:{}, alt:{:.0f} ft, lalo:{:.6f},{:.6f}, TAS:{:.0f}",
            "updateLiveAc", gf_description(record), record.hexid, record.objectId, record.simAlt,
            record.simLat, record.simLon, record.simTas));
        removeAircraftFromSim(record);
        return false;
    }
    if (engineTick >= seen.stream().front().time) {
        try {
            nextPosMain(record);
        } catch (...) {
            return false;  // it has told and removed already
        }
        record.simVs = record.vsFpm / 60;
        record.simTas = seen.stream().front().stopped ? 0 : record.tasKn;
    }
    if (record.simState != SimObjectState::active) return false;
    const LivePos& target = seen.stream().front();
    if (target.stopped) return settles(record, target);
    record.lookAt = target.time;
    return true;
}

void tickActive(LiveAc& record) {
    const bool moves = engineTick < record.lookAt || lookAtStream(record);
    if (record.simState != SimObjectState::active) return;
    if (moves) lf_moveOneTick(record);
    queuePose(record);
}

}  // namespace

void lf_logTickFailure(std::string_view where, const LiveAc& record) {
    std::string text;
    try {
        throw;
    } catch (const std::exception& e) {
        text = e.what();
    } catch (...) {
        text = "unknown exception";
    }
    gf_logError(fmt::format("{}: {} {}, sz:{}, fs:{}, st:{}", where, text, gf_description(record),
                            record.stream().size(), gf_stageWord(record.stage),
                            gf_stateWord(record.simState)));
}

bool lf_samePlace(LaLo a, LaLo b, double degrees) {
    return std::abs(a.lat - b.lat) <= degrees && std::abs(wrapLon(a.lon - b.lon)) <= degrees;
}

bool updateLiveAc(LiveAc& record) {
    try {
        if (record.simState == SimObjectState::buffer)
            lf_handleBuffer(record);
        else if (record.simState == SimObjectState::active)
            tickActive(record);
    } catch (...) {
        lf_logTickFailure("updateLiveAc", record);
    }
    return record.eraseNow || record.eraseFromQueue;
}

void nextPosMain(LiveAc& record) {
    try {
        nextSegmentOrRemoval(record);
    } catch (...) {
        lf_logTickFailure("nextPosMain", record);
        // The same stream would fail the same way at each tick.
        removeAircraftFromSim(record);
        throw;
    }
}

void lf_nextSegment(LiveAc& record) {
    record.curve = {};
    record.curveT = 0;
    record.curveStep = 0;
    record.dHeading = 0;
    if (LivePos& next = record.stream()[1]; !next.stopped) {
        next.stopped = lf_samePlace(next.pos(), record.stream().front().pos());
        if (!next.stopped) record.targetHeading = legHeading(record);
    }
    if (record.onGround)
        nextPosGround(record);
    else
        lf_timeAirSegment(record);
    if (LivePos& next = record.stream()[1]; next.stopped) {
        standStill(record, next);
    } else {
        lf_aimAtNext(record);
        if (record.onGround)
            lf_setupGroundSegment(record);
        else
            lf_setupAirSegment(record, next);
    }
    requireFiniteMotion(record);
    // The shortest segment is flown to its end too.
    record.stream()[1].time = engineTick + lf_segmentTicks(record);
    record.stream().pop_front();
}

}  // namespace skl
