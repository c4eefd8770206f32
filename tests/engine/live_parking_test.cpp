// Onto the stand by the ticks, the arrival, and how long an aircraft may stay.
#include "engine/live_parking.h"

#include <fmt/format.h>

#include "core/locks.h"
#include "core/parameters.h"
#include "engine/engine.h"
#include "panel/panel_state.h"
#include "parking/static_ac.h"
#include "simlink/sim_queues.h"
#include "tests/support/stand_field.h"
#include "tests/support/stepped_world.h"

namespace skl {
namespace {

using test::away;
using test::groundReport;
using test::standHome;
using State = SimObjectState;
using Stage = FlightStage;

class LiveParking : public test::StandTest {
  protected:
    LiveParking() { RANDOM.value = false; }
    ~LiveParking() override {
        RANDOM.value = RANDOM.defaultValue;
        INITIAL_LOAD_ONLY.value = INITIAL_LOAD_ONLY.defaultValue;
    }
    static LiveAc& parked(uint32_t hexid) { return onGround(Stage::parked, standHome, 0, hexid); }

    /// The end of the reports: `meters` before the stand on a course `nose` degrees off its heading, with a
    /// bend of 70 degrees 30 m before it if asked for. The last report is a stop, or simply the last.
    struct Approach {
        double meters, nose;
        bool bend, stops;
    };
    /// Comes in over the last 90 m with a report every 3 s; gives the aircraft after 200 s.
    static LiveAc* comeIn(const Approach& how) {
        constexpr double way = 90, speed = 7, perSecond = speed * metersPerNm / 3600;
        const test::Path path = [&how](double t) {
            const double left = std::max(way - t * perSecond, 0.0);
            const double straight = how.bend ? std::min(left, 30.0) : left;
            const LaLo place = away(standHome, 180 + how.nose, how.meters + straight);
            return groundReport(away(place, 250 + how.nose, left - straight), left > 0 ? speed : 0,
                                left > straight ? 70 + how.nose : how.nose);
        };
        const LivePos start = path(0);
        onGround(Stage::taxi, start.pos(), start.track).landed = true;
        test::fly(path, 200, 3, [&how](double t) { return how.stops || t < way / perSecond; });
        return lf_findLive(test::flownHexid);
    }
};

TEST_F(LiveParking, OntoTheStandFromAnyEndOfTheReports) {
    for (const double nose : {0, 60, 90, -90}) {
        for (const Approach& c : {Approach{0, nose, false, true}, Approach{4, nose, false, true},
                                  Approach{10, nose, false, true}, Approach{4, nose, false, false},
                                  Approach{10, nose, false, false}, Approach{30, nose, false, false},
                                  Approach{10, nose, true, true}, Approach{30, nose, true, false}}) {
            SCOPED_TRACE(fmt::format("{} m, {} degrees, {} {}", c.meters, nose, c.bend, c.stops));
            anew();
            addStand("A1", standHome);
            const int before = test::logCount("arrived at stand");
            const LiveAc* it = comeIn(c);
            ASSERT_TRUE(it);
            EXPECT_EQ(it->stage, Stage::parked);
            EXPECT_LT(gf_distanceNm(it->simPos(), standHome) * metersPerNm, 2);
            EXPECT_LT(std::abs(toDeg(angleDiff(it->simHeading, 0))), 3);
            EXPECT_EQ(test::logCount("arrived at stand"), before + 1);
            EXPECT_EQ(newAcList.size(), 1u);
        }
    }
}

TEST_F(LiveParking, AnHourOfJitterMovesNothing) {
    addStand("A1", standHome);
    LiveAc* it = comeIn({8, 0, false, true});
    ASSERT_TRUE(it && it->stage == Stage::parked);
    const LaLo place = it->simPos();
    const double heading = it->simHeading;
    const int32_t end = engineTick + 360000;
    for (int32_t i = 0; engineTick < end; ++i) {
        if (i % 500 == 0) test::report(groundReport(away(standHome, i * 77 % 360, i / 500 % 9 * 0.5), i % 3));
        test::tick();
        ASSERT_TRUE(it->simPos() == place && it->simHeading == heading) << i;
    }
    EXPECT_TRUE(it->stage == Stage::parked && it->parkedMoving);
}

// What stands where the aircraft wants to go, and what it does not want.
TEST_F(LiveParking, TheStandIsCleared) {
    addStand("A1", standHome);
    parked(20001);
    LiveAc& it = onGround(Stage::taxi, away(standHome, 180, 1));
    it.stream().push_back(it.stream().front());
    it.holding = true;
    it.predictLeft = it.holdStart = 3;
    it.curve.ctrlEast = it.curve.ctrlNorth = it.standDistLast = 1;
    reservedStand = "A1";
    try2Park(it, false);
    reservedStand.clear();
    try2Park(it, false);
    EXPECT_EQ(it.stage, Stage::taxi);  // this end of the stream has been tried
    it.lastParkLat = 0;
    try2Park(it, false);
    EXPECT_EQ(it.stage, Stage::parking);
    ASSERT_EQ(it.stream().size(), 3u);
    EXPECT_EQ(it.stream()[1].time, it.stream()[0].time + 100);
    EXPECT_TRUE(it.stream()[2].time == it.stream()[1].time + 50 && it.stream()[2].speed == 0);
    EXPECT_TRUE(!it.holding && it.holdStart == 0 && it.predictLeft == 0);
    EXPECT_TRUE(!it.curve.set() && it.standDistLast == 0);
    EXPECT_EQ(lf_findLive(20001)->simState, State::removingfromsim);
    EXPECT_TRUE(test::logHas("A1      : SWR1     removed, SWR344 wants to park there"));
}

TEST_F(LiveParking, Arrival) {
    RANDOM.value = false;
    enum Fact { occupied = 1, heldByAnother = 2, cargoStand = 4, cargo = 8 };
    const struct {
        double meters;
        int facts;
        Stage stage;  // parking: it is removed
    } cases[] = {{0.5, 0, Stage::parked},
                 {1.999, 0, Stage::parked},
                 {2.001, 0, Stage::taxi},
                 {0.5, occupied, Stage::parking},
                 {0.5, heldByAnother, Stage::parking},
                 {0.5, cargoStand, Stage::parked},
                 {0.5, cargoStand | cargo, Stage::parked}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        anew();
        maxParkCount = 1;
        Stand& stand = addStand("A1", standHome);
        stand.occupied = c.facts & occupied;
        stand.cargo = c.facts & cargoStand;
        parked(20001).standId = c.facts & heldByAnother ? 1 : 2;
        LiveAc& it = onGround(Stage::parking, away(standHome, 0, c.meters));
        it.standCargo = stand.cargo;
        it.cargo = c.facts & cargo;
        gf_storeNow({5, 30});
        lf_arrival(it);
        EXPECT_EQ(it.stage, c.stage);
        const bool removed = c.stage == Stage::parking;
        EXPECT_TRUE((it.simState == State::removingfromsim) == removed && it.predictLeft == removed);
        EXPECT_EQ(stand.occupied, (c.facts & occupied) != 0);
        EXPECT_EQ(stand.cargo, (c.facts & cargo) != 0);
        EXPECT_EQ(stand.cargoChanged, c.facts == cargoStand);
        if (c.stage != Stage::parked) continue;
        EXPECT_EQ(it.parkedAt, (WeekSlot{5, 30}));
        EXPECT_FALSE(lf_isParked(*lf_findLive(20001)));  // too many
        LockGuard guard(g_simLock);
        EXPECT_EQ(eventQueue.back().event, ev::cabinLights);
        EXPECT_EQ(eventQueue.back().data == 1, c.facts == 0);
    }
}

TEST_F(LiveParking, TooManyParked) {
    const struct {
        int limit;
        bool oneMore, initialOnly, liveGoes, staticGoes;
    } cases[] = {{0, true, false, false, false},  {2, false, false, false, true},
                 {2, true, false, true, true},    {2, true, true, false, true},
                 {4, false, false, false, false}, {4, true, false, false, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        anew();
        for (const uint32_t since : {300, 200}) parked(20000 + since).parkedSince = since;
        staticAcs.resize(2);
        staticAcs[0].parkedAt = {3, 20}, staticAcs[1].parkedAt = {2, 30};
        for (StaticAc& each : staticAcs) each.simState = State::active, each.objectId = 900;
        maxParkCount = c.limit;
        INITIAL_LOAD_ONLY.value = c.initialOnly;
        lf_enforceMaxPark(c.oneMore);
        EXPECT_TRUE(lf_isParked(liveAcs[0]) && staticAcs[0].simState == State::active);
        EXPECT_NE(lf_isParked(liveAcs[1]), c.liveGoes);
        EXPECT_EQ(staticAcs[1].simState == State::removingfromsim, c.staticGoes);
    }
}

TEST_F(LiveParking, AgesAndCounts) {
    test::SteppedWorld clock;
    clock.waitUntil(clock.steadyNow() + std::chrono::hours(9), {});
    const auto add = [](uint32_t hexid, AcCategory category, uint64_t minutes, WeekSlot at) {
        LiveAc& it = parked(hexid);
        it.category = category;
        it.parkedSince = lf_parkClock() - 600'000'000 * minutes;
        it.parkedAt = at;
    };
    add(20001, AcCategory::Large, 90, {2, 10});
    add(20002, AcCategory::Large, 91, {2, 8});
    add(20003, AcCategory::Heavy, 180, {1, 46});
    add(20004, AcCategory::Heavy, 181, {7, 46});  // over the end of the week
    add(20005, AcCategory::Large, 500, {2, 10});
    liveAcs.back().parkedMoving = true;
    gf_storeNow({2, 10});
    EXPECT_EQ(lf_countLiveParked(true), 5u);
    EXPECT_FLOAT_EQ(g_panel.averageFitLive, (0 + 2 + 12 + 60 + 0) / 10.0f + 0.5f);
    const auto texts = [] {
        std::string text;
        for (const ParkedAge& age : lf_liveParkedAges())
            text += fmt::format("{} {}, ", age.callsign, age.minutes);
        return text;
    };
    INITIAL_LOAD_ONLY.value = true;
    EXPECT_EQ(texts(), "SWR5 0, SWR1 90, SWR2 91, SWR3 180, SWR4 181, ");
    INITIAL_LOAD_ONLY.value = false;
    EXPECT_EQ(texts(), "SWR5 0, SWR1 90, SWR3 180, ");
    lf_removeOldestParked(2);
    EXPECT_TRUE(lf_countLiveParked(true) == 1 && lf_isParked(liveAcs[0]));
    EXPECT_EQ(test::logCount("live parked "), 2);
    lf_removeOldestParked(9);
    EXPECT_TRUE(lf_countLiveParked(true) == 0 && g_panel.averageFitLive == 0);
}

}  // namespace
}  // namespace skl
