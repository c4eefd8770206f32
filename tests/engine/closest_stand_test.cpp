// Which stand an aircraft is taken to, and where one appears that is first seen standing.
#include <functional>

#include "engine/engine.h"
#include "engine/live_parking.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "parking/park_airport.h"
#include "parking/static_ac.h"
#include "simlink/user_aircraft.h"
#include "tests/support/stand_field.h"

namespace skl {
namespace {

using test::away;
using test::standHome;
using State = SimObjectState;
using Stage = FlightStage;
using ClosestStand = test::StandTest;

const Stand* closest(const LiveAc& record, bool wide) {
    return lf_closestStand(standHome, record, 55 / metersPerNm, wide);
}

StandOption seen(const char* airline, const char* cs, const char* cs2) {
    return {.airl = airline, .type = "A320", .cs = cs, .cs2 = cs2, .optionId = 1, .day = 1, .real = true};
}

TEST_F(ClosestStand, OneStand) {
    enum Found { none, asItIs, grown };
    enum Fact { occupied = 1, heliStand = 2, helicopter = 4, nameless = 8 };
    const StandOption never = seen("KLM", "KLM1", "KLM2"), first = seen("KLM", "SWR344", "X");
    const StandOption second = seen("KLM", "X", "SWR344"), airline = seen("SWR", "X", "");
    StandOption spent = first, soft = first, otherType = airline;
    spent.optionId = 0, soft.real = false, otherType.type = "B738";
    const struct {
        double meters, radius;
        bool wide;
        StandOption option;
        Found found;
        int facts = 0;
    } cases[] = {
        {54.9, 25, false, never, asItIs},
        {55.1, 25, false, never, none},
        {50, 15.21, false, never, asItIs},
        {50, 15.19, false, never, none},
        {19.9, 12, false, never, grown},
        {20.1, 12, false, never, none},
        {84.9, 25, true, first, asItIs},
        {84.9, 25, true, second, asItIs},
        {84.9, 25, true, airline, asItIs},
        {85.1, 25, true, first, none},
        {84.9, 25, false, first, none},
        {60, 15, true, first, none},
        {60, 25, true, never, none},
        {60, 25, true, otherType, none},
        {60, 25, true, spent, none},
        {60, 25, true, soft, none},
        {60, 25, true, airline, none, nameless},
        {5, 25, true, first, none, occupied},
        {5, 25, true, first, none, heliStand},
        {5, 12, false, first, none, helicopter},
        {5, 25, false, first, asItIs, heliStand | helicopter},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        anew();
        Stand& stand = addStand("A1", away(standHome, 90, c.meters), c.radius);
        stand.options = {c.option};
        stand.occupied = c.facts & occupied;
        stand.heli = c.facts & heliStand;
        LiveAc& it = onGround(Stage::taxi, standHome);
        if (c.facts & helicopter) it.category = AcCategory::Rotorcraft;
        if (c.facts & nameless) lf_setCallsign(it, "");
        EXPECT_EQ(closest(it, c.wide), c.found == none ? nullptr : &stand);
        EXPECT_TRUE(stand.radiusChanged == (c.found == grown) && updatesCount == stand.radiusChanged);
        EXPECT_NEAR(stand.radius * metersPerNm, c.found == grown ? test::halfSpanMeters - 1 : c.radius, 1e-9);
    }
}

TEST_F(ClosestStand, AmongSeveralAndKeptForTheUser) {
    const LiveAc& it = onGround(Stage::taxi, standHome);
    addStand("FAR", away(standHome, 0, 40));
    addStand("FARTHER", away(standHome, 0, 50));
    addStand("KNOWN", away(standHome, 180, 60)).options = {seen("SWR", "SWR344", "")};
    addStand("SMALL", away(standHome, 90, 25), 10);
    EXPECT_EQ(closest(it, true)->id, "FAR");
    addStand("TINY", away(standHome, 90, 15), 10);
    EXPECT_EQ(closest(it, true)->id, "TINY");
    addStand("HELI", away(standHome, 90, 10)).heli = true;
    EXPECT_EQ(closest(it, true), nullptr);
    EXPECT_FALSE(lf_keptForUser(stands[0]));
    reservedStand = "FAR";
    EXPECT_TRUE(lf_keptForUser(stands[0]));
    userOnGround = true;
    engineUser.lat = stands[1].lat, engineUser.lon = stands[1].lon;
    EXPECT_TRUE(lf_keptForUser(stands[1]));
    userOnGround = false;
}

TEST_F(ClosestStand, WhereAnAircraftAppears) {
    const auto other = [](Stage stage, State state = State::active) {
        liveAcs[0].stage = stage, liveAcs[0].simState = state;
    };
    const struct {
        double metersToGo, knots;
        std::function<void()> change;
        Stage stage;  // birth: it is erased
    } cases[] = {
        {0, 0, [] {}, Stage::parked},
        {34, 5, [] {}, Stage::parked},
        {34, 5.1, [] {}, Stage::taxi},
        {36, 5, [] {}, Stage::taxi},
        {0, 0, [] { parkAirport = {}; }, Stage::taxi},
        {0, 0, [] { parkAirport.lat += 0.09; }, Stage::taxi},  // beyond 5 nm
        {0, 0, [] { reservedStand = "A1"; }, Stage::taxi},
        {0, 0, [&] { other(Stage::parked); }, Stage::parked},
        {0, 0, [&] { other(Stage::parked), liveAcs[0].parkedMoving = true; }, Stage::birth},  // leaves
        {0, 0, [&] { other(Stage::parking); }, Stage::birth},
        {0, 0, [&] { other(Stage::parked, State::adding2sim); }, Stage::birth},
        {0, 0, [&] { other(Stage::parked, State::adding2sim), lf_setCallsign(liveAcs[0], "SWR344_"); },
         Stage::parked},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        anew();
        maxParkCount = 1;
        parkAirport = {.code = "EGLL", .lat = standHome.lat, .lon = standHome.lon};
        Stand& stand = addStand("A1", away(standHome, 0, 4));
        stand.heading = toRad(250);
        stand.cargo = true;
        onGround(Stage::taxi, standHome, 0, 20001).standId = 1;
        onGround(Stage::parked, standHome, 0, 20002).standId = 0;
        LiveAc& it = onGround(Stage::birth, away(standHome, 180, c.metersToGo));
        it.simState = State::buffer;
        it.title = "A320 SWR";
        it.stream().push_back(test::groundReport(standHome, c.knots));
        it.stream()[1].stopped = c.knots == 0;
        c.change();
        spawnLiveAc(it);
        EXPECT_EQ(it.stage, c.stage);
        EXPECT_TRUE(it.eraseNow == (c.stage == Stage::birth) && addingStack.empty() == it.eraseNow);
        if (it.stage != Stage::parked) continue;
        EXPECT_TRUE(it.stream().size() == 1 && it.stream()[0].stopped && it.stream()[0].speed == 0);
        EXPECT_TRUE(it.simPos() == stand.pos() && it.simHeading == stand.heading && it.standId == 1);
        EXPECT_TRUE(!stand.cargo && stand.cargoChanged);
        const LiveAc& before = liveAcs[0];
        EXPECT_TRUE(before.stage == Stage::taxi || before.removeWhenCreated || !lf_isParked(before));
        EXPECT_FALSE(before.simState == State::adding2sim && !before.removeWhenCreated);
        EXPECT_FALSE(lf_isParked(liveAcs[1]));  // too many
    }
}

// The object of a parked aircraft is there: its stay begins, and nothing stands beneath it.
TEST_F(ClosestStand, AnObjectOnAStand) {
    addStand("A1", standHome);
    LiveAc& it = onGround(Stage::parked, standHome);
    StaticAc under;
    under.standId = 1;
    under.hexid = 7, under.objectId = 900;
    under.callsign = "KLM9*";
    under.simState = State::active;
    staticAcs = {under};
    gf_storeNow({3, 17});
    lf_landOnSpawn(it);
    EXPECT_EQ(it.parkedAt, (WeekSlot{3, 17}));
    EXPECT_TRUE(test::logHas("A1      : SWR344   parks over static KLM9*"));
    EXPECT_EQ(removalQueue, std::deque<uint32_t>{900});
    lf_objectRemoved(900);
    EXPECT_TRUE(staticAcs.empty());
    lf_writeObjectList();
    EXPECT_EQ(test::readFile("Callsign2ObjectId.txt"), "Gnd SWR344    SWR A320: 21345 Parked at A1\n");
}

}  // namespace
}  // namespace skl
