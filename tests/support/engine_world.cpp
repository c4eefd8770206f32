#include "tests/support/engine_world.h"

#include <fmt/format.h>

#include "core/locks.h"
#include "engine/category_constants.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "liveries/catalogue.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "parking/park_airport.h"
#include "parking/statics.h"
#include "simlink/session.h"
#include "simlink/sim_queues.h"
#include "simlink/user_aircraft.h"

namespace skl::test {

namespace {

void clearWorld() {
    gf_resetEngine();
    gf_resetSimLink();
    gf_clearCatalogue();
    gf_clearUncreatable();
    gf_clearDbase();
    gf_resetPanel();
    gf_resetRequests();
    gf_resetStandFit();
    gf_resetStatics();
    parkAirport = {};
    engineUser = {};
    userOnGround = false;
}

}  // namespace

void EngineTest::SetUp() {
    TempFolderTest::SetUp();
    clearWorld();
    gf_reserveEngine();
    for (const char* type : {"A320", "B738", "B744", "C172", "C25A", "F16", "EC35"})
        aircraftTypes.insert(type);
    largeTypes = {"A320", "B738"};
    heavyTypes = {"B744"};
    buzjetTypes = {"C25A"};
    highPerfTypes = {"F16"};
    rotorcraftTypes = {"EC35"};
    wingspanHalfNm = {{"A320", 0.0097}, {"C172", 0.003}};
    for (const char* airline : {"BAW", "KLM"})
        titlesByAirlineType[0][airline]["A320"] = {
            LiveryRef(airline == std::string("BAW") ? "A320 BAW" : "A320 KLM")};
    titlesByAirlineType[0]["BAW"]["B738"] = {"B738 BAW"};
    engineUser.lat = simUser.lat = 51;
    engineUser.lon = simUser.lon = 0;
    engineUser.altitude = simUser.altitude = 100;
    userOnGround = true;
}

void EngineTest::TearDown() {
    clearWorld();
    TempFolderTest::TearDown();
}

LivePos airPoint(LaLo place, int32_t time) {
    LivePos point;
    point.lat = place.lat;
    point.lon = place.lon;
    point.alt = 30000;
    point.speed = point.tas = 300;
    point.track = 90;
    point.airborne = true;
    point.time = time;
    return point;
}

LivePos groundPoint(LaLo place, double speed, int32_t time) {
    LivePos point;
    point.lat = place.lat;
    point.lon = place.lon;
    point.speed = speed;
    point.time = time;
    return point;
}

TrafficUpdate firstReport(uint32_t hexid, const std::string& callsign) {
    TrafficUpdate update;
    update.hexid = hexid;
    update.callsign = callsign;
    update.model = "A320";
    update.origin = "LHR";
    update.destination = "AMS";
    update.feedTime = 1000;
    update.pos = airPoint({51, 1}, engineTick + 3000);
    return update;
}

LiveAc& EngineTest::buffered(uint32_t hexid, const std::string& callsign, LaLo place) {
    LiveAc record;
    record.hexid = hexid;
    record.callsign = callsign;
    record.model = "A320";
    gf_fillTypeValues(record);
    record.stream() = {airPoint(place, engineTick),
                       airPoint({place.lat, place.lon + 0.1}, engineTick + 5000)};
    return lf_addLive(std::move(record));
}

LiveAc& EngineTest::active(uint32_t hexid, const std::string& callsign, uint32_t objectId, LaLo place) {
    LiveAc& record = buffered(hexid, callsign, place);
    record.simState = SimObjectState::active;
    record.stage = FlightStage::flying;
    record.airline = "BAW";
    record.title = "A320 BAW";
    record.simLat = place.lat;
    record.simLon = place.lon;
    record.stream().front().time = engineTick + 4000;
    lf_setObjectId(record, objectId);
    return record;
}

LiveAc& EngineTest::record(uint32_t hexid) {
    LiveAc* found = lf_findLive(hexid);
    if (!found) throw std::runtime_error(fmt::format("no record {}", hexid));
    return *found;
}

bool EngineTest::exists(uint32_t hexid) {
    return lf_findLive(hexid) != nullptr;
}

std::vector<std::string> EngineTest::events() {
    LockGuard guard(g_simLock);
    std::vector<std::string> texts;
    for (const SimEvent& event : eventQueue) texts.push_back(fmt::format("{}={}", event.event, event.data));
    return texts;
}

void QueueSimulator::run(int ticks, const std::function<void(int)>& each) {
    for (int i = 0; i < ticks; ++i) {
        if (each) each(i);
        lf_engineTick();
        if (engineTick % 3 == 0) frame();
    }
}

void QueueSimulator::frame() {
    std::vector<CreateRequest> creations;
    std::vector<uint32_t> removed;
    {
        LockGuard guard(g_simLock);
        creations.swap(createQueue);
        removed.swap(removeQueue);
        eventQueue.clear();
    }
    for (const CreateRequest& request : creations) {
        if (full.contains(request.callsign) || refused.contains(request.callsign)) {
            gf_postSimMsg({.hexid = request.hexid,
                           .kind = full.contains(request.callsign) ? msgNotCreated : msgRefused});
            continue;
        }
        ++created;
        objects[nextId++] = {request.hexid, request.callsign, engineTick + delay};
    }
    for (auto& [id, object] : objects) {
        if (object.shown || silent || engineTick < object.shownAt) continue;
        object.shown = true;
        const bool live = object.hexid > highestStaticId;
        gf_postSimMsg({.objectId = id,
                       .hexid = object.hexid,
                       .kind = live ? msgLiveIdentified : msgStaticIdentified,
                       .b = live ? 3000.0 : 0.0});
    }
    for (const uint32_t id : removed) {
        removals.push_back(id);
        if (objects.erase(id) > 0) gf_postSimMsg({.objectId = id, .kind = msgObjectRemoved});
    }
}

}  // namespace skl::test
