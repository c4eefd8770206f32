// Who goes when two want one place: ghosts, stands, statics, the user's way.
#include "engine/conflicts.h"

#include <fmt/format.h>

#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "panel/requests.h"
#include "parking/stands.h"
#include "parking/static_ac.h"
#include "simlink/user_aircraft.h"
#include "tests/support/engine_world.h"

namespace skl {
namespace {

using test::anyHexid;
using State = SimObjectState;
using Stage = FlightStage;

constexpr double span = 34.1;  // metres, of all aircraft here

/// Metres north and east of the user.
LaLo at(double north, double east = 0) {
    return {51 + north / metersPerNm / 60, east / metersPerNm / 60 / std::cos(toRad(51))};
}

class Conflicts : public test::EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        wingspanHalfNm["A320"] = span / 2 / metersPerNm;
        userHalfSpanNm = span / 2 / metersPerNm;
        setStands(at(0), at(100));
    }
    void TearDown() override {
        gf_resetStands();
        userHalfSpanNm = 0;
        EngineTest::TearDown();
    }
    /// Two stands, A1 and A2, adjacent to each other.
    static void setStands(LaLo first, LaLo second) {
        stands.assign(2, {});
        stands[0].id = "A1", stands[0].lat = first.lat, stands[0].lon = first.lon;
        stands[1].id = "A2", stands[1].lat = second.lat, stands[1].lon = second.lon;
        for (uint32_t i : {0, 1}) stands[i].sid = i + 1, stands[i].adjacent = {2 - i};
        lf_standsChanged();
    }
    static LiveAc& live(uint32_t hexid, const std::string& callsign, Stage stage, LaLo place = {51, 1}) {
        LiveAc& record = active(hexid, callsign, hexid, place);
        record.stage = stage;
        record.onGround = stage != Stage::flying;
        record.standId = stage == Stage::parked ? 2 : 0;
        return record;
    }
    static StaticAc& standing(const std::string& callsign, uint32_t standId, LaLo place = {51, 1}) {
        StaticAc record;
        record.callsign = callsign;
        record.model = "A320";
        record.halfSpanNm = gf_halfSpanNm("A320");
        record.standId = standId;
        record.standPos = place;
        record.simState = State::active;
        record.hexid = record.objectId = static_cast<uint32_t>(staticAcs.size()) + 1;
        return staticAcs.emplace_back(record);
    }
    static bool goes(const AcBase& record) { return record.simState == State::removingfromsim; }
};

TEST_F(Conflicts, WhoGetsTheStand) {
    const struct {
        const char *newcomer, *holder;
        Stage stage;
        bool moving, allowed;
        const char* line;  // nullptr: the holder stays
    } cases[] = {
        {"BAW1", "BAW1", Stage::parked, true, true,
         "ac with same callsign BAW1 wants it, remove existing ... "},
        {"BAW1_", "BAW1", Stage::parked, false, false, nullptr},
        {"BAW1", "BAW1_", Stage::parked, true, true, "ghost, replace by BAW1"},
        {"KLM2", "BAW1_", Stage::pushed_back, true, true, "ghost, replace by KLM2"},
        {"KLM2_", "BAW1", Stage::parked, false, false, nullptr},
        {"KLM2", "BAW1", Stage::parked, true, false, nullptr},
        {"KLM2", "BAW1", Stage::pushing_back, false, true,
         "removed because another live KLM2 wants the stand ..."},
        {"KLM2_", "BAW1_", Stage::parked, false, true,
         "removed because another live KLM2_ wants the stand ..."},
        {"X", "", Stage::parked, false, false, nullptr},
        {"KLM2", "BAW1", Stage::taxi, false, true, nullptr},
    };
    for (const auto& c : cases) {
        gf_resetEngine();
        LiveAc& holder = live(anyHexid, c.holder, c.stage);
        holder.standId = 1;
        holder.parkedMoving = c.moving;
        EXPECT_EQ(lf_standOccupied(1, c.newcomer), c.allowed) << c.newcomer << " after " << c.holder;
        EXPECT_EQ(goes(holder), c.line != nullptr) << c.newcomer << " after " << c.holder;
        EXPECT_TRUE(!c.line || test::logHas(fmt::format("A1      : {:8} {}", c.holder, c.line))) << c.line;
    }
}

TEST_F(Conflicts, AdjacentStandsExcludeEachOtherBelowTheSpansAndATenth) {
    const struct {
        LaLo first, second;
        bool tooNear;
    } cases[] = {{at(0), at(37.50), true}, {at(0), at(37.52), false}, {{0.0002, 0}, {0, 0}, false}};
    for (const auto& c : cases) {
        gf_resetEngine();
        setStands(c.first, c.second);
        const LiveAc newcomer = live(20002, "KLM2", Stage::taxi);
        LiveAc& neighbour = live(20001, "BAW1", Stage::parked);
        StaticAc& resting = standing("AFR3*", 2, stands[1].pos());
        EXPECT_EQ(lf_adjacentLiveConflict(stands[0], newcomer), c.tooNear);
        lf_adjacentLiveMakesWay(2, newcomer, stands[0]);
        lf_staticsMakeWay(newcomer, stands[0]);
        EXPECT_EQ(goes(neighbour), c.tooNear);
        EXPECT_EQ(goes(resting), c.tooNear);
    }
    EXPECT_TRUE(test::logHas("BAW1     removed by parking KLM2 at adjacent and possibly colliding stand A1"));
    EXPECT_TRUE(test::logHas("A2      : AFR3*    makes way for KLM2 parking at excluded stand A1"));
}

TEST_F(Conflicts, AStaticOnTheStandMakesWayWhateverItsState) {
    const LiveAc newcomer = live(20001, "KLM2", Stage::taxi);
    StaticAc& resting = standing("AFR3*", 1);
    lf_staticsMakeWay(newcomer, stands[0]);
    EXPECT_TRUE(goes(resting));
    EXPECT_EQ(test::logCount("A1      : AFR3*     makes way for KLM2 "), 1);
    resting.simState = State::adding2sim;
    resting.coupledIn = "KLM2";
    lf_staticsMakeWay(newcomer, stands[0]);
    EXPECT_TRUE(resting.removeWhenCreated);  // too late to call it back
    resting.removeWhenCreated = false;
    creationQueueStatic = {{{}, "AFR3*", "t", resting.hexid}};
    lf_staticsMakeWay(newcomer, stands[0]);
    EXPECT_TRUE(staticAcs.empty() && creationQueueStatic.empty());
    EXPECT_EQ(test::logCount("queued A1      : AFR3*     makes way for the same live version KLM2 "), 1);
}

TEST_F(Conflicts, TheStaticOfANewLiveAircraftGoes) {
    const struct {
        const char *callsign, *coupledOut, *regcode;
        const char* goes;  // the static's callsign
        const char* reason;
    } cases[] = {
        {"BAW1", "", "G-CC", "C*", "A320 removed, new airborne 'BAW1' has same regcode G-CC"},
        {"BAW1", "", "", "A*", "A*       'BAW1 BAW2' removed, new airborne BAW1 '' '' has same callsign"},
        {"BAW2", "", "", "A*", "new airborne BAW2 '' '' has coupled callsign"},
        {"KLM8", "BAW4", "", "B*", "new airborne KLM8 '' 'BAW4' has coupled callsign"},
        {"BAW3_", "", "", "B*", "new airborne BAW3_ '' '' has coupled callsign"},
        {"BAW1X", "", "", "", ""},
        {"_", "", "", "", ""},
        {"", "BAW4", "G-CC", "", ""},
    };
    for (const auto& c : cases) {
        gf_resetEngine();
        standing("A*", 1).coupledIn = "BAW1", staticAcs.back().coupledOut = "BAW2";
        standing("B*", 1).coupledIn = "BAW3", staticAcs.back().coupledOut = "BAW4";
        standing("C*", 1).regcode = "G-CC";
        live(anyHexid, c.callsign, Stage::flying).coupledOut = c.coupledOut;
        liveAcs.back().regcode = c.regcode;
        newAcList = {77, anyHexid};
        lf_serveNewAcList();  // this aircraft is gone
        EXPECT_TRUE(removalQueue.empty());
        lf_serveNewAcList();
        EXPECT_TRUE(newAcList.empty());
        for (const StaticAc& it : staticAcs) EXPECT_EQ(goes(it), it.callsign == c.goes) << c.reason;
        EXPECT_TRUE(test::logHas(c.reason)) << c.reason;
    }
}

TEST_F(Conflicts, TheUserInTheAir) {
    const double nm = metersPerNm, feet = metersPerNm / feetPerNm;
    const struct {
        const char* what;
        Stage stage;
        double agl, north, east, alt;
        bool goes;
    } cases[] = {
        {"on the runway ahead", Stage::taxi, 499, 0.99 * nm, 49 * feet, 0, true},
        {"beside it", Stage::taxi, 499, 0.99 * nm, 51 * feet, 0, false},
        {"farther ahead", Stage::taxi, 499, 1.01 * nm, 0, 0, false},
        {"the user at 500 ft", Stage::taxi, 500, 0.5 * nm, 0, 0, false},
        {"flies at the user", Stage::flying, 3000, 3.99 * nm, 690 * feet, 1099, true},
        {"passes", Stage::flying, 3000, 3.99 * nm, 710 * feet, 1099, false},
        {"flies 4 nm away", Stage::flying, 3000, 4.01 * nm, 0, 1099, false},
        {"1,000 ft above", Stage::flying, 3000, 3 * nm, 0, 1100, false},
    };
    COLLISION_USER_AIR.value = true;
    userOnGround = false;
    for (const auto& c : cases) {
        gf_resetEngine();
        engineUser.agl = c.agl;
        for (uint32_t id : {20001, 20002}) {
            LiveAc& it = live(id, "BAW1", c.stage, at(c.north, c.east));
            it.simAlt = c.alt;
            it.simHeading = pi;
        }
        lf_userInTheAir();
        EXPECT_EQ(goes(record(20001)), c.goes) << c.what;
        EXPECT_FALSE(goes(record(20002))) << c.what;  // one a second
    }
}

TEST_F(Conflicts, TheUserOnTheGround) {
    COLLISION_USER_GND.value = true;
    live(20001, "AFR1", Stage::flying, at(0));
    live(20002, "AFR2", Stage::taxi, at(span * 1.15 + 0.1));
    live(20003, "AFR3", Stage::taxi, at(span * 1.15 - 0.1));
    StaticAc& resting = standing("KLM3*", 1, at(span * 1.1 - 0.1));
    lf_userOnTheGround();
    EXPECT_EQ(removalQueue, (std::deque<uint32_t>{20003}));
    resting.standPos = at(span * 1.1 + 0.1);
    lf_userOnTheGround();
    resting.standPos = at(span * 1.1 - 0.1);
    lf_userOnTheGround();
    EXPECT_FALSE(goes(resting));  // the user has not moved since the last test
    engineUser.lon += 2e-8;
    lf_userOnTheGround();
    EXPECT_TRUE(goes(resting));
}

TEST_F(Conflicts, AStaticInTheWayOfATaxiingAircraft) {
    COLLISION_LIVE_PARKED_GND.value = true;
    StaticAc& resting = standing("KLM3*", 1, at(span * 1.1 - 0.1));
    LiveAc& it = live(anyHexid, "BAW1", Stage::taxi, at(0));
    it.rollout = true;
    lf_taxiingAgainstStatics();
    it.rollout = false;
    it.stage = Stage::pushed_back;
    lf_taxiingAgainstStatics();
    EXPECT_FALSE(goes(resting));
    it.stage = Stage::parking;
    resting.standPos = at(span * 1.1 + 0.1);
    lf_taxiingAgainstStatics();
    resting.standPos = at(span * 1.1 - 0.1);
    lf_taxiingAgainstStatics();
    EXPECT_FALSE(goes(resting));  // it stands where it was tested
    it.simLat += 2e-8;
    lf_taxiingAgainstStatics();
    EXPECT_TRUE(goes(resting));
    EXPECT_TRUE(test::logHas("A1      : KLM3*    removed for collision avoidance with static BAW1"));
}

TEST_F(Conflicts, ABlockedCallsignGoesAsSoonAsItHasItsObject) {
    LiveAc& it = live(anyHexid, "BAW1", Stage::flying);
    it.simState = State::adding2sim;
    BLOCK_CALLSIGN.set("BAW1");
    g_blockChanged = true;
    lf_serveBlock();
    it.simState = State::active;
    lf_serveBlock();
    EXPECT_TRUE(goes(it));
    EXPECT_FALSE(g_blockChanged);
}

TEST_F(Conflicts, WhatStandsAndTaxiesAtOnceIsFoundInTheEnd) {
    live(20001, "BAW1", Stage::flying);
    standing("BAW1*", 1);
    standing("KLM2*", 2).regcode = "PH-AAA";
    lf_sameFlightParked();
    EXPECT_TRUE(removalQueue.empty());
    record(20001).onGround = true;
    live(20002, "KLM9", Stage::taxi).regcode = "PH-AAA";
    lf_sameFlightParked();
    EXPECT_TRUE(goes(staticAcs[0]));
    EXPECT_FALSE(goes(staticAcs[1]));
    lf_sameFlightParked();
    EXPECT_TRUE(goes(staticAcs[1]));
}

TEST_F(Conflicts, TheRealCallsignBeatsItsGhost) {
    live(20001, "BAW1_", Stage::taxi).simState = State::removingfromsim;
    live(20002, "BAW1_", Stage::parked);
    live(20003, "KLM2_", Stage::flying);
    live(20004, "KLM2", Stage::flying).simState = State::removingfromsim;
    EXPECT_FALSE(lf_ghostOfKnown("KLM2_"));
    stands[1].occupied = true;
    lf_ghostTest("BAW1");
    EXPECT_FALSE(stands[1].occupied);
    EXPECT_TRUE(test::logHas("A2      : BAW1_    is a ghost and will be removed, continue with BAW1"));
    // A ghost that turns out to be the real one does not go itself.
    TrafficUpdate update = test::firstReport(20003, "KLM2");
    EXPECT_FALSE(lf_refreshIdentity(record(20003), update));
    EXPECT_EQ(record(20003).simState, State::liveryrespawn);
    LiveAc& other = live(20005, "AFR7", Stage::flying);
    live(20006, "DLH5_", Stage::flying);
    lf_refreshIdentity(other, update = test::firstReport(20005, "DLH5"));
    EXPECT_TRUE(test::logHas("          DLH5_    is a ghost and will be removed, continue with DLH5"));
    EXPECT_EQ(ghostList, (std::vector<std::string>{"BAW1_", "DLH5_"}));
    EXPECT_EQ(removalQueue, (std::deque<uint32_t>{20002, 20003, 20006, 20005}));
}

}  // namespace
}  // namespace skl
