// The output of a simulator frame: everything that has been queued since the frame before, in a fixed order.
#include <fmt/format.h>

#include <mutex>

#include "core/locks.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/run_state.h"
#include "core/time_text.h"
#include "simlink/ai_commands.h"
#include "simlink/identification.h"
#include "simlink/session.h"
#include "simlink/sim_queues.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr size_t poseBytes = 64;
static_assert(offsetof(PosEntry, objectId) == poseBytes, "a pose goes out as it lies in memory");

void sendPoses() {
    // A simulator that has not taken the poses before gets no more of them: only the newest are worth
    // anything.
    if (!simHandle->backlogged()) {
        const uint32_t user = userObjectId;
        for (const PosEntry& pose : posReadSide) {
            if (pose.objectId <= user) continue;
            simHandle->setDataOnSimObject(def::aiPose, pose.objectId,
                                          std::as_bytes(std::span(&pose, 1)).first(poseBytes));
        }
    }
    posReadSide.clear();
}

void sendEvents() {
    for (const SimEvent& event : eventQueue) {
        // Flaps move only on an object that the simulator's own pilot has let go, before and behind the
        // event.
        const bool flaps = event.event == ev::flapsSet;
        if (flaps) simHandle->aiReleaseControl(event.objectId, req::releaseControl);
        if (!simHandle->transmitClientEvent(event.objectId, event.event, event.data, ev::group))
            gf_showMessage(fmt::format("SimConnect TransmitClientEvent: {} fails", event.event), true);
        else if (flaps)
            simHandle->aiReleaseControl(event.objectId, req::releaseControl);
    }
    eventQueue.clear();
}

void lf_createNow(const CreateRequest& request) {
    if (!simHandle->aiCreateNonAtcAircraft(request.title, request.callsign, request.position,
                                           req::createAircraft)) {
        gf_logError(
            fmt::format("! Simcon call to create ac in sim failed, hexid:{}, liv: '{}', callsign: {})",
                        request.hexid, request.title, request.callsign));
        gf_simFailed();
        return;
    }
    uint32_t packetId = 0;
    if (!simHandle->getLastSentPacketId(packetId)) {
        gf_logError("GetLastSentPacketID");
        packetId = 0;
    }
    lf_rememberCreate(packetId, request.hexid, request.callsign);
}

void sendCreations() {
    for (const CreateRequest& request : createQueue)
        if (!g_simError) lf_createNow(request);
    createQueue.clear();
}

void sendRemovals() {
    for (const uint32_t objectId : removeQueue) {
        if (g_simError) break;
        if (objectId <= userObjectId) {
            gf_logError(fmt::format("SimConnect call to remove ac with objectid {}", objectId));
        } else if (!simHandle->aiRemoveObject(objectId, req::removeObject)) {
            gf_logError(fmt::format("{} !SimConnect call to remove AI ac from sim failed, id {}?",
                                    gf_timeOfDay(), objectId));
            gf_simFailed();
        }
    }
    removeQueue.clear();
}

}  // namespace

void lf_frameOutput() {
    std::unique_lock lock(g_simLock, std::try_to_lock);
    if (!lock) return;
    if (g_simError || !simHandle) {
        lf_clearQueues();
        return;
    }
    sendPoses();
    sendEvents();
    sendCreations();
    sendRemovals();
}

}  // namespace skl
