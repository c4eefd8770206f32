// From the object that the simulator has made to an aircraft that moves, and the simulator's two ways of
// saying no.
#include <fmt/format.h>

#include <algorithm>

#include "core/errors.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/flight_plan.h"
#include "engine/levels.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "liveries/catalogue.h"
#include "parking/stand_fit.h"
#include "parking/stands.h"
#include "parking/static_ac.h"
#include "simlink/ai_commands.h"
#include "simlink/session.h"
#include "simlink/sim_ids.h"

namespace skl {

namespace {

constexpr int32_t settleTicks = 200;
constexpr int32_t firstToggle = 50, secondToggle = 100;
constexpr size_t refusalsThatEndARun = 20;
constexpr int32_t served = -1;

void spoilersIn(const LiveAc& record) {
    if (record.category != AcCategory::Rotorcraft) simEvent(record.objectId, ev::spoilersSet, 0);
}

void configureInAir(const LiveAc& record) {
    constexpr double lowAltitude = 10000, cabinAbove = 2000;  // feet
    const bool low = record.simAlt <= lowAltitude;
    simEvent(record.objectId, ev::engineAutoStart, 0);
    spoilersIn(record);
    simLights(record.objectId, true, true, low, false, true, low, record.agl >= cabinAbove);
}

void configureOnGround(LiveAc& record) {
    const bool parked = record.stage == FlightStage::parked;
    const bool taxi = record.stage == FlightStage::taxi;
    spoilersIn(record);
    simEvent(record.objectId, parked ? ev::engineAutoShutdown : ev::engineAutoStart, 0);
    if (parked)
        simLights(record.objectId, NAV_LIGHTS_WHILE_PARKED.value, false, false, false, false, true, true);
    else
        simLights(record.objectId, true, true, false, taxi, false, true, true);
    gf_setThrottle(record, record.category == AcCategory::Rotorcraft ? 4 : 0);
    gf_setFlaps(record, taxi ? 1 : 0);
}

void activate(const SimMsg& message) {
    LiveAc* record = lf_findLive(message.hexid);
    if (!record || record->objectId != message.objectId || record->simState != SimObjectState::adding2sim)
        return;
    record->simState = SimObjectState::active;
    const bool airborne = record->stream().empty() ? !record->onGround : record->stream().front().airborne;
    if (airborne)
        configureInAir(*record);
    else
        configureOnGround(*record);
    // Wheels would stand in the ground without the height: a reply that has got lost is asked for once more.
    if (record->staticCgFt == 0 && record->staticPitch == 0) gf_requestStaticData(record->objectId);
    if (record->removeWhenCreated) {
        record->removeWhenCreated = false;  // it would hold back the removal that it asks for
        removeAircraftFromSim(*record);
    }
}

void startStay(LiveAc& record) {
    record.parkedAt = gf_weekSlotNow();
    const std::string stand = lf_standName(record.standId);
    if (LOG.value) gf_log(fmt::format("{:8}: {:8} parks", stand, record.callsign));
    if (record.standId == 0) return;
    std::erase_if(candidates, [&](const Candidate& planned) { return planned.sid == record.standId; });
    const auto under = std::find_if(staticAcs.begin(), staticAcs.end(), [&](const StaticAc& other) {
        return other.standId == record.standId && other.simState != SimObjectState::removingfromsim;
    });
    if (under == staticAcs.end()) return;
    gf_log(fmt::format("{:8}: {:8} parks over static {}", stand, record.callsign, under->callsign));
    lf_removeForLive(*under);
    lf_sweepStatics();
}

void staticRemoved(uint32_t objectId) {
    const auto gone = std::find_if(staticAcs.begin(), staticAcs.end(), [objectId](const StaticAc& record) {
        return record.objectId == objectId;
    });
    if (gone == staticAcs.end()) return;
    engineCounters.removed.fetch_add(1, std::memory_order_relaxed);
    staticAcs.erase(gone);
}

}  // namespace

void lf_landOnSpawn(LiveAc& record) {
    record.onGround = true;
    if (record.category != AcCategory::Rotorcraft) simEvent(record.objectId, ev::gearSet, 1);
    record.dAlt = 0;
    record.groundCount = 1;
    if (record.stage == FlightStage::parked) startStay(record);
}

bool lf_objectIdentified(LiveAc& record, const SimMsg& message) {
    lf_setObjectId(record, message.objectId);
    record.agl = message.b;
    if (!record.stream().empty() && !record.stream().front().airborne) lf_landOnSpawn(record);
    lf_attachFlightPlan(record);
    gf_requestStaticData(record.objectId);
    return true;
}

void lf_activatePending() {
    for (SimMsg& message : pendingObjects) {
        const bool live = message.kind == msgLiveIdentified;
        if (message.counter < settleTicks) {
            ++message.counter;
            if (live && (message.counter == firstToggle || message.counter == secondToggle))
                gf_allLightsToggle(message.objectId);
            continue;
        }
        if (live)
            activate(message);
        else
            lf_activateStatic(message.hexid, message.objectId);
        message.counter = served;
    }
    std::erase_if(pendingObjects, [](const SimMsg& message) { return message.counter < 0; });
}

void lf_objectRemoved(uint32_t objectId) {
    // A new object may get the number: nothing that was meant for this one may reach it.
    std::erase(removalQueue, objectId);
    std::erase_if(pendingObjects, [objectId](const SimMsg& message) { return message.objectId == objectId; });
    LiveAc* record = lf_findLiveByObject(objectId);
    if (!record) {
        staticRemoved(objectId);
        return;
    }
    engineCounters.removed.fetch_add(1, std::memory_order_relaxed);
    if (record->hasFlightPlan) lf_deleteFlightPlan(objectId);
    record->hasFlightPlan = false;
    if (record->simState != SimObjectState::liveryrespawn) {
        lf_eraseLive(*record);
        return;
    }
    record->simState = SimObjectState::buffer;
    record->throttleIdx = 5;
    record->flapsIdx = 4;
    lf_setObjectId(*record, 0);
}

void lf_objectRefused(const AcBase& record) {
    if (gf_stopping()) return;
    gf_showMessage(fmt::format("{} '{}' could not be created by your Sim!", record.callsign, record.title),
                   true);
    if (gf_addUncreatable(record.title, record.model + ' ' + record.airline) < refusalsThatEndARun) return;
    const std::string text =
        fmt::format("There are too many liveries that could not be created by {}!", "MSFS");
    gf_log(fmt::format("\n{}Error 81, {}\n", "===> ", text));
    throw UserErrorException(81, fmt::format("{}, see Log.txt", text));
}

}  // namespace skl
