// The worker's side of the queues: entries are appended under g_simLock and carried out by frame_output.cpp.
#include "simlink/ai_commands.h"

#include <array>
#include <mutex>
#include <utility>

#include "core/locks.h"
#include "core/run_state.h"
#include "simlink/session.h"
#include "simlink/sim_queues.h"

namespace skl {

std::vector<PosEntry> posReadSide;
std::vector<SimEvent> eventQueue;
std::vector<CreateRequest> createQueue;
std::vector<uint32_t> removeQueue;
std::vector<PendingCreate> pendingCreates;
std::vector<uint32_t> newObjects;

namespace {

constexpr size_t reserved = 256;
// Up to this frame rate a frame is long enough for the next tick's poses to come in time.
constexpr float fastFrames = 50;

}  // namespace

void gf_reserveSimQueues() {
    LockGuard guard(g_simLock);
    posReadSide.reserve(reserved);
    createQueue.reserve(reserved);
    removeQueue.reserve(reserved);
    pendingCreates.reserve(reserved);
    newObjects.reserve(reserved);
}

void lf_clearQueues() {
    posReadSide.clear();
    eventQueue.clear();
    createQueue.clear();
    removeQueue.clear();
}

void simEvent(uint32_t objectId, uint32_t event, uint32_t value) {
    LockGuard guard(g_simLock);
    eventQueue.push_back({objectId, event, value});
}

void simLights(uint32_t objectId, bool nav, bool beacon, bool landing, bool taxi, bool strobe, bool logo,
               bool cabin) {
    LockGuard guard(g_simLock);
    simEvent(objectId, ev::navLights, nav);
    simEvent(objectId, ev::beaconLights, beacon);
    simEvent(objectId, ev::landingLights, landing);
    simEvent(objectId, ev::taxiLights, taxi);
    simEvent(objectId, ev::strobes, strobe);
    simEvent(objectId, ev::logoLights, logo);
    simEvent(objectId, ev::cabinLights, cabin);
}

void simCabinLight(uint32_t objectId, bool on) {
    simEvent(objectId, ev::cabinLights, on);
}

void simReverse(uint32_t objectId, bool on, bool isFsltl) {
    std::array<double, 3> data{};  // spoilers, throttles 1 and 2, percent
    if (on) data = isFsltl ? std::array{100.0, -100.0, -100.0} : std::array{100.0, 100.0, 100.0};
    LockGuard guard(g_simLock);
    if (g_simError || !simHandle) return;
    if (!simHandle->setDataOnSimObject(def::throttleData, objectId, std::as_bytes(std::span(data))))
        gf_simFailed();
}

void simCreate(CreateRequest request) {
    LockGuard guard(g_simLock);
    createQueue.push_back(std::move(request));
}

void simRemove(uint32_t objectId) {
    LockGuard guard(g_simLock);
    removeQueue.push_back(objectId);
}

void gf_handOverPoses(std::vector<PosEntry>& poses) {
    std::unique_lock lock(g_simLock, std::try_to_lock);
    if (!lock) {
        if (frameRate <= fastFrames) {
            poses.clear();
            return;
        }
        lock.lock();
    }
    posReadSide.swap(poses);
    poses.clear();
}

void gf_dropPoses() {
    LockGuard guard(g_simLock);
    posReadSide.clear();
}

}  // namespace skl
