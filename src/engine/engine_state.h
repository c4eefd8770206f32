// The engine's tables, all owned by the worker thread but for the two inboxes, and their one reset.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/fnv.h"
#include "engine/live_ac.h"
#include "feed/traffic_update.h"
#include "simlink/ai_commands.h"

namespace skl {

extern std::vector<LiveAc> liveAcs;
extern std::vector<uint32_t> addingStack;  ///< hexids that want an object, served last in first out
extern std::deque<CreateRequest> creationQueueLive, creationQueueStatic;
extern std::deque<uint32_t> removalQueue;  ///< object ids
extern std::deque<uint32_t> newAcList;     ///< hexids whose conflicts with statics are to be checked
extern std::vector<std::string> ghostList;
extern StringSet unmatchedKeys;  ///< short form, blank, registration of aircraft without a livery
extern std::unordered_map<uint32_t, LiveryRef> liveryMemory;
extern std::deque<TrafficUpdate> trafficInbox;  ///< under g_trafficLock
extern std::vector<SimMsg> simInbox;            ///< under g_eventLock
extern std::vector<SimMsg> pendingObjects;      ///< under g_eventLock
extern uint32_t watchedObjectId;        ///< object shown as the answer to the callsign question; 0 none
extern std::atomic<int32_t> liveLimit;  ///< the user's limit on live aircraft while an airport has its own

/// The aircraft's conflicts with statics are to be checked, once.
void lf_noteNewAc(uint32_t hexid);

/// What the engine has done since the process started, for status lines and the stand-ins' comparison.
struct EngineCounters {
    std::atomic<uint64_t> created{0}, identified{0}, removed{0}, refused{0}, decoded{0};
    std::atomic<uint64_t> ticks{0}, lateTicks{0};
    std::atomic<uint64_t> longestLine{
        0};  ///< the most records that waited in trafficInbox at the begin of a tick
    /// Static aircraft that came to stand, stayed over a renewal, gave way to a planned one, or to live
    /// traffic.
    std::atomic<uint64_t> staticsPlaced{0}, staticsKept{0}, staticsReplaced{0}, staticsMadeWay{0};
    std::atomic<uint32_t> byState[5]{};
    std::atomic<uint32_t> byStage[8]{};
};
extern EngineCounters engineCounters;
/// Counts the table by state and stage into engineCounters; once a second.
void gf_countEngine();

/// Reserves the working tables at the start of a run.
void gf_reserveEngine();
/// Empties every table, that of the statics too, and sets engineTick to 0: between two runs, and in tests.
void gf_resetEngine();

}  // namespace skl
