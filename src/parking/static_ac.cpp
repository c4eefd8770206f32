// See the header.
#include "parking/static_ac.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/log.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "core/time_text.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_parking.h"
#include "panel/panel_state.h"
#include "parking/stands.h"
#include "parking/week_slots.h"

namespace skl {

std::vector<StaticAc> staticAcs;

namespace {

constexpr int32_t answerTicks = 60 * ticksPerSecond;

/// From the first time that it is seen leaving.
int32_t leavingTicks(StaticAc& record) {
    if (record.leavingSince == 0) record.leavingSince = std::max(1, engineTick.load());
    return engineTick - record.leavingSince;
}

bool unanswered(const StaticAc& record) {
    return record.simState == SimObjectState::adding2sim && record.objectId == 0 && record.addingSince != 0 &&
           engineTick - record.addingSince >= answerTicks;
}

/// Its removal went out and the simulator has never told that it is done.
bool neverGone(StaticAc& record) {
    return record.simState == SimObjectState::removingfromsim && leavingTicks(record) >= answerTicks &&
           std::find(removalQueue.begin(), removalQueue.end(), record.objectId) == removalQueue.end();
}

}  // namespace

void lf_sweepStatics() {
    std::erase_if(staticAcs, [](const StaticAc& record) { return record.eraseNow || record.eraseFromQueue; });
}

StaticAc* lf_addingStatic(uint32_t hexid) {
    const auto found = std::find_if(staticAcs.begin(), staticAcs.end(), [hexid](const StaticAc& record) {
        return record.hexid == hexid && record.simState == SimObjectState::adding2sim && record.objectId == 0;
    });
    return found == staticAcs.end() ? nullptr : &*found;
}

void lf_activateStatic(uint32_t hexid, uint32_t objectId) {
    const auto found = std::find_if(staticAcs.begin(), staticAcs.end(), [&](const StaticAc& record) {
        return record.hexid == hexid && record.objectId == objectId &&
               record.simState == SimObjectState::adding2sim;
    });
    if (found == staticAcs.end()) return;
    found->simState = SimObjectState::active;
    lf_parkedConfiguration(*found);
    if (LOG.value) gf_log(fmt::format("{:8}: {:8} parked", lf_standName(found->standId), found->callsign));
    engineCounters.staticsPlaced.fetch_add(1, std::memory_order_relaxed);
    if (!found->removeWhenCreated) return;
    found->removeWhenCreated = false;  // it would hold back the removal that it asks for
    removeAircraftFromSim(*found);
}

bool lf_staticLeaving(int32_t ticks) {
    bool leaving = false;
    for (StaticAc& record : staticAcs)
        if (record.simState == SimObjectState::removingfromsim && leavingTicks(record) < ticks)
            leaving = true;
    return leaving;
}

void lf_dropLostStatics() {
    bool sweep = false;
    for (StaticAc& record : staticAcs) {
        const bool noAnswer = unanswered(record);
        if (!noAnswer && !neverGone(record)) continue;
        gf_log(fmt::format("{} no {} of the simulator for 60 seconds, {}", gf_timeOfDay(),
                           noAnswer ? "answer" : "removal", gf_description(record)));
        record.eraseNow = true;
        sweep = true;
    }
    if (sweep) lf_sweepStatics();
}

size_t lf_countStatics(bool updateFit) {
    const WeekSlot now = gf_weekSlotNow();
    size_t count = 0;
    int64_t halfHours = 0;
    for (const StaticAc& record : staticAcs) {
        if (!lf_standsInSim(record)) continue;
        ++count;
        halfHours += lf_slotAge(record.parkedAt, now);
    }
    if (updateFit && !WEEK.value) lf_showMeanAge(g_panel.averageFitStatic, count, halfHours);
    return count;
}

void lf_showMeanAge(std::atomic<float>& field, size_t count, int64_t halfHours) {
    float hours = 0;
    if (count != 0)
        hours = static_cast<float>(static_cast<double>(halfHours) / (2.0 * static_cast<double>(count)) + 0.5);
    if (field.exchange(hours) != hours) gf_invalidate(Band::parking);
}

void lf_removeForLive(StaticAc& record) {
    engineCounters.staticsMadeWay.fetch_add(1, std::memory_order_relaxed);
    removeAircraftFromSim(record);
}

}  // namespace skl
