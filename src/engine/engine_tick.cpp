// One tick of the engine, in its fixed order: what the simulator said, motion, queues, reports, the adding
// stack, requests. Worker thread.
#include "engine/engine_tick.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>

#include "core/locks.h"
#include "core/log.h"
#include "core/time_text.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "engine/update_cycle.h"
#include "feed/feed.h"
#include "panel/traffic_range.h"
#include "parking/park_airport.h"
#include "parking/statics.h"
#include "simlink/session.h"
#include "simlink/sim_ids.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr int32_t removalEvery = 10, creationEvery = 50, requestEvery = 20, positionEvery = 100;
constexpr int reportsATick = 2;
constexpr int32_t answerTicks = 60 * ticksPerSecond;
/// What the reader adds to the tick at which a report comes.
constexpr int32_t replayDelay = 30 * ticksPerSecond;
constexpr int32_t backlogTicks = 5 * ticksPerSecond;
constexpr int32_t backlogLineEvery = 60 * ticksPerSecond;

int32_t nextBacklogLine = 0;

/// More reports come in than two a tick: said once a minute.
void tellBacklog(const TrafficUpdate& oldest) {
    const int32_t waited = engineTick + replayDelay - oldest.pos.time;
    if (waited <= backlogTicks || engineTick < nextBacklogLine) return;
    nextBacklogLine = engineTick + backlogLineEvery;
    gf_log(fmt::format("{} traffic records wait {:.1f} seconds, {} in line", gf_timeOfDay(),
                       static_cast<double>(waited) / ticksPerSecond, trafficInbox.size()));
}

void createNext(std::deque<CreateRequest>& queue) {
    CreateRequest request = std::move(queue.front());
    queue.pop_front();
    // 0 stands for a request that has not gone out.
    const int32_t now = std::max(1, engineTick.load());
    if (request.hexid > highestStaticId) {
        if (LiveAc* record = lf_findLive(request.hexid)) record->addingSince = now;
    } else if (StaticAc* record = lf_addingStatic(request.hexid)) {
        record->addingSince = now;
    }
    engineCounters.created.fetch_add(1, std::memory_order_relaxed);
    simCreate(std::move(request));
}

/// What the tick of a later aircraft will read is fetched while this one moves.
void fetchAhead(size_t place) {
    constexpr size_t ahead = 8;
    if (place + ahead >= liveAcs.size()) return;
    const LiveAc& record = liveAcs[place + ahead];
    __builtin_prefetch(&record.objectId, 1);
    __builtin_prefetch(&record.dAlt);
}

/// An object beyond the range in force would never be seen in a reply, and so never be identified.
double requestRadius() {
    constexpr double around = 1, aroundAirport = 5;  // nautical miles
    double radius = rangeMeters;
    const auto reach = [&radius](LaLo place, double beyond) {
        radius = std::max(radius, (gf_distanceNm(engineUser.pos(), place) + beyond) * metersPerNm);
    };
    for (const LiveAc& record : liveAcs)
        if (record.simState == SimObjectState::adding2sim) reach(record.simPos(), around);
    bool staticWaits = false;
    for (const StaticAc& record : staticAcs) {
        if (record.simState != SimObjectState::adding2sim) continue;
        reach(record.standPos, around);  // it may be one of an airport that has been left
        staticWaits = true;
    }
    if (staticWaits && gf_airportInSight()) reach(parkAirport.pos(), aroundAirport);
    return std::min(radius, sc::maxRadiusMeters);
}

}  // namespace

void lf_resetTick() {
    engineTick = 0;
    nextBacklogLine = 0;
}

void lf_engineTick() {
    lf_processSimInbox();
    lf_updateAll();
    lf_serveQueues();
    lf_takeReports();
    lf_serveAddingStack();
    lf_requestData();
    ++engineTick;
}

void lf_updateAll() {
    bool sweep = false;
    for (size_t i = 0; i < liveAcs.size(); ++i) {
        fetchAhead(i);
        if (updateLiveAc(liveAcs[i])) sweep = true;
    }
    if (sweep) lf_sweepLive();
    gf_handOverPoses(posWriteSide);
}

void lf_serveQueues() {
    if (engineTick % removalEvery != 0) return;
    if (!removalQueue.empty()) {
        simRemove(removalQueue.front());
        removalQueue.pop_front();
    }
    if (engineTick % creationEvery != 0) return;
    if (!creationQueueLive.empty()) {
        createNext(creationQueueLive);
        return;
    }
    if (!creationQueueStatic.empty()) createNext(creationQueueStatic);
    lf_addNextStatic();
}

void lf_takeReports() {
    LockGuard guard(g_trafficLock);
    if (trafficInbox.size() > engineCounters.longestLine.load(std::memory_order_relaxed))
        engineCounters.longestLine.store(trafficInbox.size(), std::memory_order_relaxed);
    if (!trafficInbox.empty()) tellBacklog(trafficInbox.front());
    for (int i = 0; i < reportsATick && !trafficInbox.empty(); ++i) {
        TrafficUpdate update = std::move(trafficInbox.front());
        trafficInbox.pop_front();
        engineCounters.decoded.fetch_add(1, std::memory_order_relaxed);
        try {
            lf_decodeUpdate(update);
        } catch (const std::exception&) {
            // Told by the routine that failed; the next report has its own chance.
        }
    }
}

void lf_requestData() {
    if (engineTick % requestEvery != 0) return;
    gf_requestAircraftInRange(requestRadius());
    if (engineTick % positionEvery != 0) return;
    gf_sendPosition();
    gf_requestUser(engineUser);
    lf_dropUnanswered();
}

void lf_dropUnanswered() {
    bool sweep = false;
    for (LiveAc& record : liveAcs) {
        const bool waits = record.simState == SimObjectState::adding2sim && record.objectId == 0;
        if (!waits || record.addingSince == 0 || engineTick - record.addingSince < answerTicks) continue;
        gf_log(fmt::format("{} no answer of the simulator for 60 seconds, {}", gf_timeOfDay(),
                           gf_description(record)));
        record.eraseNow = true;
        sweep = true;
    }
    if (sweep) lf_sweepLive();
    lf_dropLostStatics();
}

}  // namespace skl
