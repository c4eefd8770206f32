// How many aircraft stand, how long they have stood, and which of them go when there are too many.
#include <fmt/format.h>

#include <algorithm>

#include "core/clock.h"
#include "core/log.h"
#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_parking.h"
#include "panel/panel_state.h"
#include "parking/stands.h"
#include "parking/static_ac.h"
#include "parking/week_slots.h"

namespace skl {

namespace {

constexpr uint64_t clockPerSecond = 10'000'000;
constexpr int32_t longestStayHeavy = 180, longestStay = 90;  // minutes

uint64_t secondsParked(const LiveAc& record) {
    const uint64_t now = lf_parkClock();
    return now > record.parkedSince ? (now - record.parkedSince) / clockPerSecond : 0;
}

void removeOldestLive() {
    LiveAc* oldest = nullptr;
    for (LiveAc& record : liveAcs)
        if (lf_isParked(record) && (!oldest || record.parkedSince < oldest->parkedSince)) oldest = &record;
    if (!oldest) return;
    if (LOG.value)
        gf_log(fmt::format("{:8}: {} live max park exceeded, removed", lf_standName(oldest->standId),
                           gf_description(*oldest)));
    removeAircraftFromSim(*oldest);
}

void removeOldestStatic() {
    const WeekSlot now = gf_weekSlotNow();
    StaticAc* oldest = nullptr;
    for (StaticAc& record : staticAcs) {
        if (!lf_standsInSim(record)) continue;
        if (!oldest || lf_slotAge(record.parkedAt, now) > lf_slotAge(oldest->parkedAt, now)) oldest = &record;
    }
    // One that is on its way out already makes the room.
    if (!oldest || oldest->simState != SimObjectState::active) return;
    if (LOG.value)
        gf_log(fmt::format("{:8}: {} static max park exceeded, removed", lf_standName(oldest->standId),
                           gf_description(*oldest)));
    removeAircraftFromSim(*oldest);
}

}  // namespace

uint64_t lf_parkClock() {
    return static_cast<uint64_t>(gf_steadyNow().count()) / 100;
}

void lf_enforceMaxPark(bool oneMore) {
    if (maxParkCount < 1) return;
    const auto limit = static_cast<size_t>(maxParkCount);
    const size_t live = lf_countLiveParked(false) + (oneMore ? 1 : 0);
    if (!INITIAL_LOAD_ONLY.value && live > limit) removeOldestLive();
    const auto inSim = static_cast<size_t>(std::count_if(staticAcs.begin(), staticAcs.end(), lf_standsInSim));
    if (inSim > 0 && inSim + live > limit) removeOldestStatic();
}

size_t lf_countLiveParked(bool updateFit) {
    const WeekSlot now = gf_weekSlotNow();
    size_t count = 0;
    int64_t halfHours = 0;
    for (const LiveAc& record : liveAcs) {
        if (!lf_isParked(record)) continue;
        ++count;
        halfHours += lf_slotAge(record.parkedAt, now);
    }
    if (updateFit) lf_showMeanAge(g_panel.averageFitLive, count, halfHours);
    return count;
}

std::vector<ParkedAge> lf_liveParkedAges() {
    std::vector<ParkedAge> ages;
    for (LiveAc& record : liveAcs) {
        if (!lf_isParked(record)) continue;
        const auto minutes = record.parkedMoving ? 0 : static_cast<int32_t>(secondsParked(record) / 60);
        const int32_t longest = record.category == AcCategory::Heavy ? longestStayHeavy : longestStay;
        if (!INITIAL_LOAD_ONLY.value && minutes > longest)
            removeAircraftFromSim(record);
        else
            ages.push_back({record.callsign, minutes, record.standId});
    }
    std::stable_sort(ages.begin(), ages.end(),
                     [](const ParkedAge& a, const ParkedAge& b) { return a.minutes < b.minutes; });
    return ages;
}

std::vector<ParkedSeconds> lf_oldestParked() {
    std::vector<ParkedSeconds> list;
    for (const LiveAc& record : liveAcs)
        if (lf_isParked(record)) list.push_back({record.hexid, static_cast<int64_t>(secondsParked(record))});
    std::stable_sort(list.begin(), list.end(),
                     [](const ParkedSeconds& a, const ParkedSeconds& b) { return a.seconds > b.seconds; });
    return list;
}

void lf_removeOldestParked(size_t n) {
    std::vector<ParkedSeconds> oldest = lf_oldestParked();
    oldest.resize(std::min(n, oldest.size()));
    for (const ParkedSeconds& entry : oldest) {
        LiveAc* record = lf_findLive(entry.hexid);
        if (!record) continue;
        if (LOG.value)
            gf_log(fmt::format("live parked {} at {} removed", gf_description(*record),
                               lf_standName(record->standId)));
        removeAircraftFromSim(*record);
    }
}

}  // namespace skl
