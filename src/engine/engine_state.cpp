// See the header.
#include "engine/engine_state.h"

#include <algorithm>
#include <array>
#include <type_traits>

#include "core/locks.h"
#include "engine/conflicts.h"
#include "engine/engine_tick.h"
#include "engine/live_table.h"
#include "engine/update_cycle.h"
#include "parking/static_ac.h"

namespace skl {

std::vector<LiveAc> liveAcs;
std::vector<uint32_t> addingStack;
std::deque<CreateRequest> creationQueueLive, creationQueueStatic;
std::deque<uint32_t> removalQueue;
std::deque<uint32_t> newAcList;
std::vector<std::string> ghostList;
StringSet unmatchedKeys;
std::unordered_map<uint32_t, LiveryRef> liveryMemory;
std::deque<TrafficUpdate> trafficInbox;
std::vector<SimMsg> simInbox;
std::vector<SimMsg> pendingObjects;
uint32_t watchedObjectId = 0;
std::atomic<int32_t> liveLimit{0};
EngineCounters engineCounters;

void lf_noteNewAc(uint32_t hexid) {
    if (std::find(newAcList.begin(), newAcList.end(), hexid) == newAcList.end()) newAcList.push_back(hexid);
}

void gf_countEngine() {
    std::array<uint32_t, std::extent_v<decltype(EngineCounters::byState)>> states{};
    std::array<uint32_t, std::extent_v<decltype(EngineCounters::byStage)>> stages{};
    for (const LiveAc& record : liveAcs) {
        ++states.at(static_cast<size_t>(record.simState));
        ++stages.at(static_cast<size_t>(record.stage));
    }
    for (size_t i = 0; i < states.size(); ++i) engineCounters.byState[i] = states[i];
    for (size_t i = 0; i < stages.size(); ++i) engineCounters.byStage[i] = stages[i];
}

void gf_reserveEngine() {
    liveAcs.reserve(2048);
    addingStack.reserve(64);
    posWriteSide.reserve(256);
    LockGuard guard(g_eventLock);
    simInbox.reserve(4096);
    pendingObjects.reserve(64);
}

void gf_resetEngine() {
    lf_clearLive();
    staticAcs.clear();
    lf_resetConflicts();
    addingStack.clear();
    creationQueueLive.clear();
    creationQueueStatic.clear();
    removalQueue.clear();
    newAcList.clear();
    ghostList.clear();
    unmatchedKeys.clear();
    liveryMemory.clear();
    posWriteSide.clear();
    watchedObjectId = 0;
    lf_resetTick();
    {
        LockGuard guard(g_trafficLock);
        trafficInbox.clear();
    }
    LockGuard guard(g_eventLock);
    simInbox.clear();
    pendingObjects.clear();
}

}  // namespace skl
