// How an aircraft goes, whatever it is doing, and how the creation of one is called back.
#include <fmt/format.h>

#include <algorithm>

#include "core/locks.h"
#include "core/log.h"
#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "panel/panel_state.h"
#include "parking/stands.h"

namespace skl {

bool lf_withdrawCreation(uint32_t hexid) {
    // By hexid: two aircraft may share the callsign that becomes the tail number.
    const auto isIts = [hexid](const CreateRequest& request) { return request.hexid == hexid; };
    return std::erase(addingStack, hexid) + std::erase_if(creationQueueLive, isIts) +
               std::erase_if(creationQueueStatic, isIts) >
           0;
}

void lf_queueRemoval(uint32_t objectId) {
    // A second removal of one object fails, and a failed request ends the run.
    if (std::find(removalQueue.begin(), removalQueue.end(), objectId) == removalQueue.end())
        removalQueue.push_back(objectId);
}

bool lf_forgetWatched(uint32_t objectId) {
    if (objectId == 0 || objectId != watchedObjectId) return false;
    watchedObjectId = 0;
    gf_setPanelText(&PanelState::objectIdText, "", Band::options);
    return true;
}

namespace {

/// A static aircraft never takes a stand from the live ones.
void freeStand(const AcBase& record) {
    if (record.hexid <= highestStaticId || record.standId == 0) return;
    if (Stand* stand = lf_findStand(record.standId)) stand->occupied = false;
}

}  // namespace

void removeAircraftFromSim(AcBase& record) {
    if (record.simState == SimObjectState::buffer) {
        record.eraseNow = true;
        return;
    }
    if (record.removeWhenCreated || record.simState == SimObjectState::removingfromsim) return;
    if (record.simState == SimObjectState::adding2sim) {
        (lf_withdrawCreation(record.hexid) ? record.eraseFromQueue : record.removeWhenCreated) = true;
        return;
    }
    if (record.simState == SimObjectState::liveryrespawn) {
        // Its object is on the way out already.
        record.simState = SimObjectState::removingfromsim;
        freeStand(record);
        return;
    }
    record.simState = SimObjectState::removingfromsim;
    freeStand(record);
    if (lf_forgetWatched(record.objectId)) CALLSIGN_2_OBJECTID.set("");
    if (record.objectId != 0) {
        lf_queueRemoval(record.objectId);
        return;
    }
    gf_log(fmt::format("{} removing act {}, with objectid=0 ?", "removeAircraftFromSim",
                       gf_description(record)));
    record.eraseNow = true;  // no object, so no message that it has gone
}

void gf_clearSky() {
    for (LiveAc& record : liveAcs) removeAircraftFromSim(record);
    lf_sweepLive();
    LockGuard guard(g_trafficLock);
    trafficInbox.clear();
}

}  // namespace skl
