// The spawn itself: which livery, which first stage, which first pose.
#include <fmt/format.h>

#include <algorithm>

#include "core/log.h"
#include "engine/air_segment.h"
#include "engine/conflicts.h"
#include "engine/engine_state.h"
#include "engine/live_parking.h"
#include "engine/spawning.h"
#include "liveries/catalogue.h"
#include "parking/learning.h"

namespace skl {

namespace {

constexpr double groundPitch = 0.010471975511965976;  // 0.6 degrees nose down

void normaliseStops(std::deque<LivePos>& stream) {
    LivePos& front = stream[0];
    LivePos& next = stream[1];
    front.stopped = next.stopped;
    if (!next.stopped) return;
    front.speed = next.speed = 0;
    if (stream.size() > 2 && stream[2].stopped) stream[2].speed = 0;
}

/// An aircraft that comes back has the livery that it had.
bool remembered(LiveAc& record) {
    const auto found = liveryMemory.find(record.hexid);
    if (found == liveryMemory.end()) return false;
    if (gf_isUncreatable(found->second)) {
        liveryMemory.erase(found);
        return false;
    }
    record.title = found->second;
    record.isFsltl = record.title.find("FSLTL_") != LiveryRef::npos;
    return true;
}

bool chooseLivery(LiveAc& record) {
    if (!record.title.empty() || remembered(record)) return true;
    gf_matchLiveLivery(record);
    if (record.title.empty()) {
        if (!record.regcode.empty()) unmatchedKeys.insert(lf_unmatchedKey(record));
        record.eraseNow = true;
        return false;
    }
    liveryMemory[record.hexid] = record.title;
    return true;
}

void standOn(LiveAc& record, const Stand& stand) {
    record.standPos = stand.pos();
    record.standHeading = stand.heading;
    record.standId = stand.sid;
    record.standCargo = stand.cargo;
    gf_setStage(record, FlightStage::parked);
    lf_beginStay(record);
    lf_fixCargo(record);
    record.stream().resize(1);
    LivePos& front = record.stream().front();
    front.lat = stand.lat;
    front.lon = stand.lon;
    front.track = toDeg(stand.heading);
    lf_learnStay(record, gf_weekSlotNow(), false);
    lf_enforceMaxPark(true);
}

void chooseFirstStage(LiveAc& record) {
    if (record.stream().front().airborne) {
        gf_setStage(record, FlightStage::flying);
        return;
    }
    const Stand* stand = lf_findSpawnStand(record);
    if (record.eraseNow) return;
    if (stand)
        standOn(record, *stand);
    else
        gf_setStage(record, FlightStage::taxi);
}

double firstHeading(const LiveAc& record) {
    if (record.respawnHeading) return *record.respawnHeading;
    if (record.stage == FlightStage::parked) return record.standHeading;
    const LivePos& front = record.stream()[0];
    return record.stream()[1].stopped ? toRad(front.track)
                                      : bearingRad(front.pos(), record.stream()[1].pos());
}

void takeFirstPose(LiveAc& record) {
    const LivePos& front = record.stream().front();
    record.simLat = front.lat;
    record.simLon = front.lon;
    record.simAlt = front.alt;
    record.simVs = front.vs / 60;
    record.simTas = front.tas;
    record.simPitch = front.airborne ? lf_pitchFor(front.vs) : groundPitch;
    record.simBank = front.roll.value_or(0);
    record.simHeading = normalizeRad(firstHeading(record));
}

}  // namespace

void spawnLiveAc(LiveAc& record) {
    if (record.stream().size() < 2) {
        gf_log(fmt::format("{} sz:{}", "spawnLiveAc", record.stream().size()));
        return;
    }
    normaliseStops(record.stream());
    if (record.stage == FlightStage::birth) {
        if (!chooseLivery(record)) return;
        chooseFirstStage(record);
    }
    if (record.eraseNow) return;
    lf_noteNewAc(record.hexid);
    takeFirstPose(record);
    record.nearUser = false;
    record.simState = SimObjectState::adding2sim;
    record.addingSince = 0;
    addingStack.push_back(record.hexid);
    if (!record.callsign.ends_with('_')) lf_ghostTest(record.callsign);
}

}  // namespace skl
