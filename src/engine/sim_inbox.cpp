// What the SimConnect side tells the engine: written there by gf_postSimMsg, handled here once a tick. All
// under g_eventLock.
#include <cmath>

#include "core/locks.h"
#include "core/log.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/landing.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "parking/static_ac.h"

namespace skl {

namespace {

constexpr uint32_t lowestObjectId = 3;
constexpr double usualStaticPitch = 0.012217304763960306;  // 0.7 degrees

/// The record whose creation request has gone out and has not been answered. A late answer to a former record
/// with the same transponder id finds none.
LiveAc* waitingRecord(uint32_t hexid) {
    LiveAc* record = lf_findLive(hexid);
    const bool waits = record && record->simState == SimObjectState::adding2sim && record->addingSince != 0 &&
                       record->objectId == 0;
    return waits ? record : nullptr;
}

StaticAc* waitingStatic(uint32_t hexid) {
    StaticAc* record = lf_addingStatic(hexid);
    return record && record->addingSince != 0 ? record : nullptr;
}

void eraseStatic(StaticAc& record) {
    record.eraseNow = true;
    lf_sweepStatics();
}

/// An object that nobody waits for must not stay in the simulator.
void identified(const SimMsg& message) {
    LiveAc* record = waitingRecord(message.hexid);
    if (!record || message.objectId < lowestObjectId) {
        lf_queueRemoval(message.objectId);
        if (record) lf_eraseLive(*record);
        return;
    }
    engineCounters.identified.fetch_add(1, std::memory_order_relaxed);
    if (lf_objectIdentified(*record, message)) pendingObjects.push_back(message);
}

void staticIdentified(const SimMsg& message) {
    StaticAc* record = waitingStatic(message.hexid);
    if (!record || message.objectId < lowestObjectId) {
        lf_queueRemoval(message.objectId);
        if (record) eraseStatic(*record);
        return;
    }
    engineCounters.identified.fetch_add(1, std::memory_order_relaxed);
    record->objectId = message.objectId;
    pendingObjects.push_back(message);
}

void heightReported(const SimMsg& message) {
    LiveAc* record = lf_findLiveByObject(message.objectId);
    if (!record) return;
    const bool touches = message.hexid == 1 && !record->onGround && record->groundCount < 2 &&
                         record->simState != SimObjectState::removingfromsim &&
                         record->stage != FlightStage::take_off;
    if (touches) {
        if (record->flareState != 0 || record->landing) lf_touchdown(*record);
        record->onGround = true;
        record->dAlt = 0;
        record->vsFpm = record->simVs = 0;
        record->groundCount = 1;
    }
    record->agl = message.b;
    if (record->onGround || record->groundCount >= 2) record->simAlt = record->staticCgFt + message.a;
}

void staticDataReported(const SimMsg& message) {
    LiveAc* record = lf_findLiveByObject(message.objectId);
    if (!record) return;
    if (message.a >= 1 && message.a <= 35) record->staticCgFt = message.a;
    const bool strange = message.b <= -toRad(1) || message.b > toRad(2.5);
    record->staticPitch = strange ? usualStaticPitch : message.b;
    // Else a standing aircraft keeps the pitch of its creation until it moves, and then jumps.
    if (record->onGround && !record->derotating && record->flareState == 0 &&
        record->stage != FlightStage::take_off)
        record->simPitch = record->staticPitch;
}

void noteRefusal(const AcBase& record, bool blameTitle) {
    engineCounters.refused.fetch_add(1, std::memory_order_relaxed);
    if (blameTitle) lf_objectRefused(record);
}

/// The object will not come.
void notCreated(const SimMsg& message, bool blameTitle) {
    if (message.hexid > highestStaticId) {
        LiveAc* record = waitingRecord(message.hexid);
        if (!record) return;
        noteRefusal(*record, blameTitle);
        lf_eraseLive(*record);
    } else if (StaticAc* record = waitingStatic(message.hexid)) {
        noteRefusal(*record, blameTitle);
        eraseStatic(*record);
    }
}

void handle(const SimMsg& message) {
    if (!std::isfinite(message.a) || !std::isfinite(message.b)) return;
    switch (message.kind) {
        case msgLiveIdentified:
            identified(message);
            break;
        case msgStaticIdentified:
            staticIdentified(message);
            break;
        case msgObjectRemoved:
            lf_objectRemoved(message.objectId);
            break;
        case msgHeight:
            heightReported(message);
            break;
        case msgStaticData:
            staticDataReported(message);
            break;
        case msgRefused:
            notCreated(message, true);
            break;
        case msgNotCreated:
            notCreated(message, false);
            break;
        default:
            break;
    }
}

}  // namespace

void gf_postSimMsg(const SimMsg& message) {
    LockGuard guard(g_eventLock);
    simInbox.push_back(message);
}

void lf_processSimInbox() {
    LockGuard guard(g_eventLock);
    for (const SimMsg& message : simInbox) handle(message);
    simInbox.clear();
    if (!pendingObjects.empty()) lf_activatePending();
}

}  // namespace skl
