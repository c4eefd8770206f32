// From the first report to an object in the simulator: filters, the ladder of tests, livery, first pose, the
// pace of the queues.
#include "engine/spawning.h"

#include <fmt/format.h>

#include <functional>

#include "core/locks.h"
#include "core/parameters.h"
#include "engine/category_constants.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "liveries/catalogue.h"
#include "panel/traffic_range.h"
#include "parking/park_airport.h"
#include "simlink/user_aircraft.h"
#include "tests/support/engine_world.h"
#include "tests/support/fake_simconnect.h"

namespace skl {
namespace {

using test::anyHexid;
using test::EngineTest;
using Spawning = EngineTest;
using State = SimObjectState;

TEST_F(Spawning, WhichReportsMakeARecord) {
    dbaseRecords["G-ABCD"] = {"BAW", "B738", "", false};
    parkAirport.code = "EGLL";
    parkAirport.alt = 83;
    const struct {
        const char* what;
        std::function<void(TrafficUpdate&)> change;
        const char* type;  // nullptr: none is made
    } cases[] = {
        {"known type", [](auto&) {}, "A320"},
        {"type from the registration", [](auto& u) { u.model = "", u.regcode = "G-ABCD"; }, "B738"},
        {"unknown type, known registration", [](auto& u) { u.model = "ZZZZ", u.regcode = "G-ABCD"; }, "B738"},
        {"unknown type and registration", [](auto& u) { u.model = "ZZZZ", u.regcode = "G-NONE"; }, nullptr},
        {"unknown type alone", [](auto& u) { u.model = "ZZZZ"; }, nullptr},
        {"light", [](auto& u) { u.model = "C172"; }, nullptr},
        {"fighter", [](auto& u) { u.model = "F16"; }, nullptr},
        {"helicopter", [](auto& u) { u.model = "EC35"; }, nullptr},
        {"business jet", [](auto& u) { u.model = "C25A"; }, "C25A"},
        {"120 ft above the field", [](auto& u) { u.pos.alt = 203; }, nullptr},
        {"121 ft above the field", [](auto& u) { u.pos.alt = 204; }, "A320"},
        {"on the ground", [](auto& u) { u.pos.alt = 0; }, "A320"},
    };
    LIGHT_AIRCRAFT.value = HIGH_PERF_AIRCRAFT.value = HELICOPTERS.value = false;
    for (const auto& c : cases) {
        lf_clearLive();
        TrafficUpdate update = test::firstReport();
        c.change(update);
        lf_newAircraft(update);
        ASSERT_EQ(exists(anyHexid), c.type != nullptr) << c.what;
        EXPECT_EQ(c.type ? record(anyHexid).model : "", c.type ? c.type : "") << c.what;
    }
    LIGHT_AIRCRAFT.value = HIGH_PERF_AIRCRAFT.value = HELICOPTERS.value = true;
    for (const char* type : {"C172", "F16", "EC35"}) {
        lf_clearLive();
        TrafficUpdate update = test::firstReport();
        update.model = type;
        lf_newAircraft(update);
        EXPECT_TRUE(exists(anyHexid)) << type;
    }
}

// One call of the ladder on a due record of two points; what it shows afterwards.
enum class Fate { spawns, erased, pointDropped, waits };

TEST_F(Spawning, Ladder) {
    dbaseRecords["G-LONG"] = {"BAW", "A320", "", false};
    dbaseRecords["G-OPER"] = {"KLM", "A320", "BAW", true};
    const struct {
        const char* what;
        std::function<void(LiveAc&)> change;
        Fate fate;
    } cases[] = {
        {"in order", [](auto&) {}, Fate::spawns},
        {"already flagged", [](auto& r) { r.eraseNow = true; }, Fate::erased},
        {"no point", [](auto& r) { r.stream().clear(); }, Fate::erased},
        {"one point, due", [](auto& r) { r.stream().pop_back(); }, Fate::erased},
        {"one point, not due", [](auto& r) { r.stream().pop_back(), r.stream()[0].time = 1101; },
         Fate::waits},
        {"airborne, 1 s before its time", [](auto& r) { r.stream()[0].time = 1100; }, Fate::spawns},
        {"airborne, more than 1 s before", [](auto& r) { r.stream()[0].time = 1101; }, Fate::waits},
        {"rolling, 3 s before its time",
         [](auto& r) {
             r.stream() = {test::groundPoint({51, 1}, 5, 1300), test::groundPoint({51, 1.01}, 5, 1400)};
         },
         Fate::spawns},
        {"standing, 3 s before its time",
         [](auto& r) {
             r.stream() = {test::groundPoint({51, 1}, 0, 1300), test::groundPoint({51, 1.01}, 5, 1400)};
         },
         Fate::waits},
        {"a ghost that was replaced", [](auto& r) { lf_setCallsign(r, "BAW9_"), ghostList = {"BAW9_"}; },
         Fate::erased},
        {"a ghost whose aircraft is here", [](auto& r) { lf_setCallsign(r, "BAW8_"); }, Fate::erased},
        {"a ghost alone", [](auto& r) { lf_setCallsign(r, "BAW9_"); }, Fate::spawns},
        {"ground and air", [](auto& r) { r.stream()[1].airborne = false; }, Fate::pointDropped},
        {"11 in the queue and on the stack",
         [](auto&) {
             creationQueueLive.resize(5);
             addingStack.resize(6);
         },
         Fate::pointDropped},
        {"10 in the queue and on the stack",
         [](auto&) {
             creationQueueLive.resize(5);
             addingStack.resize(5);
         },
         Fate::spawns},
        {"11 waiting, but it comes back",
         [](auto& r) { r.stage = FlightStage::flying, addingStack.resize(11); }, Fate::spawns},
        {"no live aircraft wanted", [](auto&) { MAX_LIVE_SEL.value = 0; }, Fate::erased},
        {"blocked", [](auto&) { BLOCK_CALLSIGN.set("BAW12"); }, Fate::erased},
        {"no callsign", [](auto& r) { lf_setCallsign(r, ""); }, Fate::erased},
        {"no callsign, known registration", [](auto& r) { lf_setCallsign(r, ""), r.regcode = "G-LONG"; },
         Fate::spawns},
        {"callsign of nine characters", [](auto& r) { lf_setCallsign(r, "BAW123456"); }, Fate::erased},
        {"placeholder", [](auto& r) { lf_setCallsign(r, "@@@@@@@@"); }, Fate::erased},
        {"no livery", [](auto& r) { lf_setCallsign(r, "XYZ1"), r.regcode = "X-1"; }, Fate::erased},
        {"tried without livery", [](auto& r) { r.regcode = "X-2", unmatchedKeys.insert("BAW A320 X-2"); },
         Fate::erased},
    };
    for (const auto& c : cases) {
        gf_resetEngine();
        gf_resetParameters();
        engineTick = 1000;
        active(20008, "BAW8", 1008);
        LiveAc& it = buffered(anyHexid, "BAW12");
        c.change(it);
        const size_t points = it.stream().size();
        lf_handleBuffer(it);
        const Fate fate = it.eraseNow                        ? Fate::erased
                          : it.simState == State::adding2sim ? Fate::spawns
                          : it.stream().size() + 1 == points ? Fate::pointDropped
                                                             : Fate::waits;
        EXPECT_EQ(fate, c.fate) << c.what;
        EXPECT_EQ(unmatchedKeys.contains("XYZ A320 X-1"), std::string(c.what) == "no livery");
        EXPECT_EQ(fate == Fate::spawns, !addingStack.empty() && addingStack.back() == anyHexid) << c.what;
    }
}

TEST_F(Spawning, AirlineByRegistrationByCallsignOrNone) {
    dbaseRecords["G-OPER"] = {"KLM", "B738", "BAW", true};
    const struct {
        const char* callsign;
        const char* regcode;
        const char* airline;
    } cases[] = {{"klm1", "", "KLM"}, {"BAWX", "", "PVT"},       {"BA12", "", "PVT"},
                 {"B1W2", "", "PVT"}, {"KLM1", "G-OPER", "BAW"}, {"KLM1", "G-NONE", "KLM"}};
    for (const auto& c : cases) {
        gf_resetEngine();
        LiveAc& it = buffered(anyHexid, c.callsign);
        it.regcode = c.regcode;
        lf_handleBuffer(it);
        EXPECT_EQ(it.airline, c.airline) << c.callsign << c.regcode;
        EXPECT_EQ(it.cargo, std::string(c.regcode) == "G-OPER");
    }
    EXPECT_EQ(unmatchedKeys.size(), 0u);  // an aircraft without registration is tried again
}

TEST_F(Spawning, AtTheLimitTheFarthestMakesRoom) {
    const struct {
        double lon;  // of the newcomer, the user being at 0
        bool comes, farthestGoes;
    } cases[] = {{1, true, true}, {3, false, false}, {1.998, false, false}};
    for (const auto& c : cases) {
        gf_resetEngine();
        MAX_LIVE_SEL.value = 3;
        active(20001, "BAW1", 1001, {51, 0.5});
        active(20002, "BAW2", 1002, {51, 2});
        addingStack = {99};
        buffered(20009, "BAW9", {51, 5}).stream().front().time = 100000;  // does not count
        LiveAc& it = buffered(anyHexid, "BAW12", {51, c.lon});
        lf_handleBuffer(it);
        EXPECT_EQ(it.eraseNow, !c.comes) << c.lon;
        EXPECT_EQ(record(20002).simState, c.farthestGoes ? State::removingfromsim : State::active) << c.lon;
        EXPECT_EQ(record(20001).simState, State::active) << c.lon;
    }
    MAX_LIVE_SEL.value = 0;
    lf_enforceMaxLive();
    EXPECT_EQ(lf_countActive(), 0u);
    EXPECT_EQ(removalQueue, (std::deque<uint32_t>{1002, 1001}));
}

TEST_F(Spawning, FirstPose) {
    const struct {
        double vs;
        double pitch;  // degrees
    } cases[] = {{0, -3}, {600, -5.2}, {3000, -11.8}, {-1200, -0.8}, {-6000, 2.5}};
    for (const auto& c : cases) {
        lf_clearLive();
        LiveAc& it = buffered(anyHexid, "BAW12");
        it.stream()[0].vs = c.vs;
        it.stream()[0].roll = 0.2;
        lf_handleBuffer(it);
        EXPECT_NEAR(toDeg(it.simPitch), c.pitch, 1e-9) << c.vs;
        EXPECT_EQ(it.simBank, 0.2);
        EXPECT_DOUBLE_EQ(it.simVs, c.vs / 60);
        EXPECT_NEAR(toDeg(it.simHeading), 89.96, 0.01);
        EXPECT_EQ(it.stage, FlightStage::flying);
    }
    lf_clearLive();
    LiveAc& it = buffered(anyHexid, "BAW12");
    it.stream() = {test::groundPoint({51, 1}, 4), test::groundPoint({51, 1}, 3),
                   test::groundPoint({51, 1}, 2)};
    it.stream()[1].stopped = it.stream()[2].stopped = true;
    it.stream()[0].track = 370;
    lf_handleBuffer(it);
    EXPECT_EQ(it.stage, FlightStage::taxi);
    EXPECT_NEAR(toDeg(it.simPitch), 0.6, 1e-9);
    EXPECT_NEAR(toDeg(it.simHeading), 10, 1e-9);
    EXPECT_TRUE(it.stream()[0].stopped);
    EXPECT_EQ(it.stream()[0].speed + it.stream()[1].speed + it.stream()[2].speed, 0);
}

TEST_F(Spawning, AnAircraftThatComesBackHasItsLivery) {
    liveryMemory[anyHexid] = "FSLTL_A320";
    LiveAc& it = buffered(anyHexid, "BAW12");
    lf_handleBuffer(it);
    EXPECT_EQ(it.title, "FSLTL_A320");
    EXPECT_TRUE(it.isFsltl);
    gf_addUncreatable("FSLTL_A320", "A320 BAW");
    lf_clearLive();
    LiveAc& again = buffered(anyHexid, "BAW12");
    lf_handleBuffer(again);
    EXPECT_EQ(again.title, "A320 BAW");
    EXPECT_EQ(liveryMemory[anyHexid], "A320 BAW");
}

TEST_F(Spawning, QueuesAreServedAtTheirPaceAndLiveOnesFirst) {
    removalQueue = {1, 2, 3};
    creationQueueLive = {{{}, "BAW1", "t", 20001}};
    creationQueueStatic = {{{}, "S1*", "t", 1}};
    trafficInbox.resize(5);
    test::QueueSimulator simulator;
    simulator.run(1);
    EXPECT_EQ(removalQueue.size(), 2u);
    EXPECT_EQ(creationQueueLive.size(), 0u);
    EXPECT_EQ(trafficInbox.size(), 3u);
    simulator.run(10);
    EXPECT_EQ(removalQueue.size(), 1u);
    simulator.run(39);
    EXPECT_EQ(creationQueueStatic.size(), 1u);
    simulator.run(1);  // tick 50
    EXPECT_EQ(creationQueueStatic.size(), 0u);
}

// What the simulator will not create leaves the table and may come again; the others are not concerned.
TEST_F(Spawning, RefusalsAndSharedCallsignsKeepTableAndSimulatorAlike) {
    test::QueueSimulator simulator;
    simulator.full = {"BAW1"};
    simulator.refused = {"KLM2"};
    buffered(20001, "BAW1");
    buffered(20002, "KLM2");
    buffered(20003, "BAW3");
    buffered(20004, "BAW3").model = "B738";
    simulator.run(600);
    EXPECT_FALSE(exists(20001));
    EXPECT_FALSE(exists(20002));
    EXPECT_EQ(uncreatableTitles, (std::vector<LiveryRef>{"A320 KLM"}));
    for (const auto& [id, object] : simulator.objects) EXPECT_EQ(record(object.hexid).objectId, id);
    EXPECT_EQ(lf_countActive(), 2u);
    simulator.full.clear();
    buffered(20001, "BAW1");
    simulator.run(600);
    EXPECT_EQ(lf_countActive(), 3u);
    EXPECT_EQ(simulator.created, 3);
    EXPECT_TRUE(simulator.removals.empty());
}

TEST_F(Spawning, AStartWaveIsShownWithoutAQueue) {
    MAX_LIVE_SEL.value = 500;
    test::QueueSimulator simulator;
    size_t most = 0;
    double metersPerTick = 300 * 1852.0 / 360000;
    simulator.run(10000, [&](int tick) {
        most = std::max(most, addingStack.size() + creationQueueLive.size());
        if (tick % 500 > 0) return;
        LockGuard guard(g_trafficLock);
        for (uint32_t i = 0; i < 60; ++i) {
            TrafficUpdate update = test::firstReport(20000 + i, fmt::format("BAW{}", i));
            update.feedTime = 1000 + tick / 100.0;
            update.pos.lat = 50 + i * 0.01;
            update.pos.lon = 1 + tick * metersPerTick / 1852 / 60 / std::cos(toRad(update.pos.lat));
            trafficInbox.push_back(update);
        }
    });
    EXPECT_EQ(lf_countActive(), 60u);
    EXPECT_LE(most, 12u);
    EXPECT_EQ(simulator.created, 60);
    EXPECT_TRUE(simulator.removals.empty());
}

// An object beyond the range in force has to be seen as well, or it is never identified.
TEST_F(Spawning, TheRequestReachesWhatIsBeingAdded) {
    const struct {
        double range, lon;  // metres; degrees from the user at 0, 1 degree being 37.76 nm there
        SimObjectState state;
        const char* radius;
    } cases[] = {{50000, 1, State::active, "range 101 404 50000 2"},
                 {50000, 1, State::adding2sim, "range 101 404 71781 2"},
                 {100000, 1, State::adding2sim, "range 101 404 100000 2"},
                 {50000, 4, State::adding2sim, "range 101 404 200000 2"}};
    for (const auto& c : cases) {
        gf_resetEngine();
        test::FakeSimulator simulator;
        simulator.connect();
        rangeMeters = c.range;
        active(anyHexid, "BAW12", 1001, {51, c.lon}).simState = c.state;
        lf_requestData();
        EXPECT_EQ(simulator.takeCalls(), (std::vector<std::string>{c.radius, "request 109 403 0 1"}))
            << c.radius;
    }
}

// No answer of the simulator must hold a transponder id for ever.
TEST_F(Spawning, AnUnansweredRequestEndsAfterAMinute) {
    test::QueueSimulator simulator;
    simulator.delay = 6100;
    buffered(anyHexid, "BAW12");
    simulator.run(6040);
    EXPECT_TRUE(exists(anyHexid));
    simulator.run(120);
    EXPECT_FALSE(exists(anyHexid));
    simulator.run(200);  // the object shows up after all
    EXPECT_TRUE(simulator.objects.empty());
    EXPECT_EQ(simulator.removals.size(), 1u);
}

TEST_F(Spawning, ALongLineOfReportsIsToldOnceAMinute) {
    test::QueueSimulator simulator;
    simulator.run(6700, [](int tick) {
        LockGuard guard(g_trafficLock);
        if (tick < 6600)
            for (int i = 0; i < 3; ++i) {
                TrafficUpdate vehicle = test::firstReport();
                vehicle.model = "ZZZZ";
                trafficInbox.push_back(vehicle);
            }
    });
    EXPECT_EQ(test::logCount("traffic records wait 5.0 seconds"), 1);
    EXPECT_EQ(test::logCount("traffic records wait"), 1);
}

}  // namespace
}  // namespace skl
