#include "tests/support/flown_aircraft.h"

#include <algorithm>
#include <cmath>

#include "engine/category_constants.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "engine/update_cycle.h"
#include "feed/feed.h"
#include "panel/traffic_range.h"
#include "parking/park_airport.h"
#include "simlink/user_aircraft.h"

namespace skl::test {

namespace {

constexpr double feedStart = 1764000000;

void resetWorld() {
    gf_resetEngine();
    liveAcs.reserve(64);
    posWriteSide.clear();
    parkAirport = {};
    engineUser = {};
    qnh = 1013;
    rangeNm = 40;
    engineTick = 0;
}

double feedTimeNow() {
    return feedStart + engineTick / 100.0;
}

}  // namespace

void MotionTest::SetUp() {
    TempFolderTest::SetUp();
    resetWorld();
}

void MotionTest::TearDown() {
    resetWorld();
    TempFolderTest::TearDown();
}

LivePos airReport(LaLo place, double speed, double track, double alt) {
    LivePos pos;
    pos.lat = place.lat;
    pos.lon = place.lon;
    pos.alt = alt;
    pos.speed = speed;
    pos.tas = speed;
    pos.track = track;
    pos.airborne = true;
    return pos;
}

LivePos groundReport(LaLo place, double speed, double track) {
    LivePos pos = airReport(place, speed, track, 0);
    pos.airborne = false;
    return pos;
}

LaLo away(LaLo from, double bearing, double meters) {
    return destinationPoint(from, toRad(bearing), meters / metersPerNm * feetPerNm);
}

LiveAc& addFlying(LivePos first, AcCategory category, uint32_t hexid) {
    LiveAc record;
    record.hexid = hexid;
    record.callsign = "SWR" + std::to_string(hexid % 1000);
    record.airline = "SWR";
    record.model = "A320";
    record.category = category;
    record.maxClimbPerTick = gf_categoryConstants(category).maxClimbPerTick;
    record.turnRate = record.groundTurnRate = gf_categoryConstants(category).groundTurnRate;
    record.simState = SimObjectState::active;
    record.stage = FlightStage::flying;
    record.objectId = hexid % 100000 + 1;
    record.simLat = first.lat;
    record.simLon = first.lon;
    record.simAlt = first.alt;
    record.simHeading = toRad(first.track);
    record.lastFeedTime = feedTimeNow();
    first.time = engineTick + 3000;
    record.stream().push_back(first);
    return lf_addLive(record);
}

bool report(LivePos pos, uint32_t hexid) {
    const LiveAc* before = lf_findLive(hexid);
    const size_t size = before ? before->stream().size() : 0;
    const int32_t end = size > 0 ? before->stream().back().time : 0;
    TrafficUpdate update;
    update.hexid = hexid;
    if (before) {
        update.callsign = before->callsign;
        update.model = before->model;
    }
    update.pos = pos;
    update.pos.time = engineTick + 3000;
    update.feedTime = feedTimeNow();
    lf_decodeUpdate(update);
    const LiveAc* after = lf_findLive(hexid);
    return after && (after->stream().size() != size || (size > 0 && after->stream().back().time != end));
}

std::vector<PosEntry> tick() {
    posWriteSide.clear();
    for (LiveAc& record : liveAcs) updateLiveAc(record);
    std::vector<PosEntry> poses;
    poses.swap(posWriteSide);
    engineTick = engineTick + 1;
    return poses;
}

FlightLog fly(const Path& path, double seconds, double interval, const std::function<bool(double)>& hears) {
    FlightLog log;
    const int32_t end = engineTick + static_cast<int32_t>(seconds * 100);
    const int32_t pace = static_cast<int32_t>(interval * 100);
    int32_t lastSetUp = -1;
    while (engineTick < end) {
        LiveAc* record = lf_findLive(flownHexid);
        if (!record || record->simState != SimObjectState::active) break;
        const int32_t now = engineTick;
        if (now >= record->stream().front().time) {
            if (lastSetUp >= 0) log.shortestSegment = std::min(log.shortestSegment, now - lastSetUp);
            lastSetUp = now;
            ++log.segments;
        }
        for (const PosEntry& pose : tick()) {
            if (pose.objectId != record->objectId) continue;
            if (!log.poses.empty()) {
                const PosEntry& before = log.poses.back();
                const double speed = std::max({record->stream().front().speed, pose.tas, 1.0});
                const double way = gf_distanceNm({before.lat, before.lon}, {pose.lat, pose.lon});
                log.worstStep = std::max(log.worstStep, way / (speed / 360000));
                log.worstLonStep = std::max(log.worstLonStep, std::abs(wrapLon(pose.lon - before.lon)));
                log.worstTurn =
                    std::max(log.worstTurn, std::abs(toDeg(angleDiff(pose.heading, before.heading))) * 100);
                log.worstPitchRate =
                    std::max(log.worstPitchRate, std::abs(toDeg(pose.pitch - before.pitch)) * 100);
            }
            log.poses.push_back(pose);
        }
        const double t = engineTick / 100.0;
        if (engineTick % pace == 0 && hears(t)) report(path(t));
    }
    return log;
}

double crossTrackMeters(LaLo start, double bearing, LaLo point) {
    constexpr double earthNm = 6875.493541569878 / 2;
    const double along = gf_distanceNm(start, point) / earthNm;
    const double off = bearingRad(start, point) - toRad(bearing);
    return std::abs(std::asin(std::sin(along) * std::sin(off))) * earthNm * metersPerNm;
}

}  // namespace skl::test
