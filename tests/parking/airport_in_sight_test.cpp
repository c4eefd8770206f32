// Which airport is populated, and what goes when it is given up.
#include "core/messages.h"
#include "engine/live_table.h"
#include "parking/stand_fit.h"
#include "parking/statics.h"
#include "tests/parking/parking_world.h"

namespace skl::test {

namespace {

class AirportInSightTest : public ParkingTest {
  protected:
    /// The airport after a pass with the user in the air.
    static std::string pass(LaLo at, double altitude = 17'900, bool onGround = false) {
        place(at, altitude, onGround);
        lf_airportInSight(false);
        return parkAirport.code;
    }
};

TEST_F(AirportInSightTest, FromTheAirBelowTheHeight) {
    const LaLo near{schiphol.lat + 0.1, schiphol.lon};
    list("EHAM\n");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(pass(near, std::nextafter(18000, 18001)), "");
        EXPECT_EQ(pass(near, 18000), "EHAM");
        EXPECT_TRUE(std::exchange(loadPending, false));
    }
    EXPECT_EQ(logCount("EHAM in sight at 6.0 nm"), 2);
    EXPECT_EQ(logCount("The park airport is EHAM (AMS)"), 2);
    EXPECT_EQ(logCount("EHAM (AMS) is out of sight (6.0 nm), parked aircraft will be removed"), 1);
    airportIndex[0].lat = airportIndex[0].lon = 0;
    list("EHAM\n");
    parkAirport = {};
    EXPECT_EQ(pass({0.0001, -0.0001}), "") << "no place yet";
    list("");
    EXPECT_EQ(pass(schiphol.pos()), "");
}

TEST_F(AirportInSightTest, ANearerOneOfTheListTakesOver) {
    const LaLo between{(schiphol.lat + rotterdam.lat) / 2, (schiphol.lon + rotterdam.lon) / 2};
    const LaLo north{between.lat + 0.01, between.lon}, south{between.lat - 0.01, between.lon};
    parkAirport = schiphol;
    list("EHRD\n");
    EXPECT_EQ(pass(north), "EHAM") << "EHRD is farther away";
    list("EHRD\nEHAM\n");
    EXPECT_EQ(pass(north), "EHAM");
    EXPECT_EQ(pass(south), "");
    EXPECT_TRUE(logHas("EHRD is in sight (11.4 nm), parked aircraft at EHAM (AMS) will be removed first"));
    EXPECT_EQ(pass(south), "EHRD");
    // A tie goes to the other one; on the ground nothing is given up.
    list("EHAM\n");
    parkAirport.lat = schiphol.lat;
    parkAirport.lon = schiphol.lon - 0.2;
    loadPending = false;
    const LaLo middle{schiphol.lat, schiphol.lon - 0.1};
    EXPECT_EQ(pass(middle, 0, true), "EHRD");
    EXPECT_EQ(pass(middle), "");
}

TEST_F(AirportInSightTest, OnTheGroundTheClosestOfTheIndex) {
    list("KJFK\n");
    EXPECT_EQ(pass(schiphol.pos(), 0, true), "");
    EXPECT_EQ(g_panel.statusText, "User aircraft on the ground at EHAM (AMS), no airport file found");
    EXPECT_EQ(pass({10, 10}, 0, true), "");
    EXPECT_EQ(g_panel.statusText, "User aircraft on the ground, no airport in sight");
    writeFile("airports/my_thirdparty/EHAM.xml", "<parameters");
    EXPECT_EQ(pass(schiphol.pos(), 0, true), "EHAM");
    liveLimit = 50;
    MAX_LIVE_SEL.value = 10;  // as a learned file sets it, read before the fault was found
    EXPECT_EQ(pass(schiphol.pos(), 0, true), "");
    EXPECT_EQ(MAX_LIVE_SEL.value, 50);
    EXPECT_TRUE(logHas("airports/my_thirdparty/EHAM.xml: could not load file: "));
    EXPECT_TRUE(DESTINATION.enabled);
    writeAirportFile("EHAM", "D14", schiphol.pos());
    EXPECT_EQ(pass(schiphol.pos(), 0, true), "EHAM") << "it is found again";
    EXPECT_FALSE(g_apfLoaded);
    pass(schiphol.pos(), 0, true);
    EXPECT_TRUE(g_apfLoaded);
    EXPECT_EQ(parkAirport.alt, 7);
    EXPECT_EQ(lf_standName(1), "D14");
}

TEST_F(AirportInSightTest, TheParkingControlsAreLockedUntilAllArePlaced) {
    writeAirportFile("EHAM", "D14", schiphol.pos());
    pass(schiphol.pos(), 0, true);
    EXPECT_TRUE(staticsLock && !WEEK.enabled) << "the airport is about to be loaded";
    pass(schiphol.pos(), 0, true);
    EXPECT_TRUE(logHas("no parking positions found"));
    EXPECT_FALSE(staticsLock);
    lf_lockStatics(true);
    candidates.resize(1);
    gf_showMessage("placing", false);
    pass(schiphol.pos(), 0, true);
    EXPECT_TRUE(staticsLock);
    std::string message;
    place(rotterdam.pos(), 0, true);
    list("EHAM,B9\n");
    EXPECT_TRUE(lf_rereadParkAirports(message));
    EXPECT_EQ(reservedStand, "D14") << "the stands are being filled";
    candidates.clear();
    staticAcs = {{{.objectId = 7, .simState = SimObjectState::active}}};
    pass(schiphol.pos(), 0, true);
    EXPECT_FALSE(staticsLock || !WEEK.enabled);
    EXPECT_EQ(g_panel.statusText, "");
    EXPECT_EQ(g_panel.parkedStaticCount, 1u);
}

TEST_F(AirportInSightTest, AFlightToADestination) {
    writeAirportFile("EHAM", "D14", {52.32, 4.76});
    writeAirportFile("KJFK", "A1", kennedy.pos());
    list("EHAM,D14\nKJFK\n");
    DESTINATION.set("KJFK");
    lf_setDestination("KJFK", kennedy.pos());
    const LaLo leaving = exactlyAway(schiphol.pos(), 20), arriving = exactlyAway(kennedy.pos(), 20);
    pass(schiphol.pos(), 0, true);
    pass(schiphol.pos(), 0, true);
    EXPECT_EQ(reservedStand, "D14") << "by the node of the airport, not the first one";
    EXPECT_EQ(listed(), "KJFK: EHAM:D14 ");
    EXPECT_EQ(pass(leaving), "EHAM");
    EXPECT_EQ(pass(nextNorth(leaving)), "");
    EXPECT_EQ(pass(leaving), "") << "only the destination is looked for";
    EXPECT_EQ(pass(nextNorth(arriving)), "");
    EXPECT_EQ(pass(arriving), "KJFK");
    pass(arriving);
    EXPECT_TRUE(g_apfLoaded);
    EXPECT_EQ(listed(), "KJFK: EHAM:D14 ");
    EXPECT_EQ(readFile(listFile), "EHAM,D14\nKJFK\n");
}

TEST_F(AirportInSightTest, LeavingTakesWhatIsOnTheGround) {
    using Stage = FlightStage;
    using State = SimObjectState;
    const std::vector<std::pair<Stage, State>> cases{
        {Stage::pushing_back, State::active}, {Stage::take_off, State::active},
        {Stage::parking, State::active},      {Stage::parked, State::liveryrespawn},
        {Stage::parked, State::adding2sim},   {Stage::flying, State::active},
        {Stage::birth, State::buffer},        {Stage::parked, State::buffer},
    };
    uint32_t hexid = 0x500000;
    for (const auto& [stage, state] : cases) {
        ++hexid;
        LiveAc& record = active(hexid, fmt::format("BAW{}", hexid), hexid);
        record.stage = stage;
        record.simState = state;
        record.standId = 1;
        if (state == State::adding2sim) creationQueueLive.push_back({.hexid = hexid});
    }
    staticAcs = {{{.objectId = 7, .simState = State::active}},
                 {{.hexid = 2, .simState = State::adding2sim}},
                 {{.hexid = 3, .simState = State::adding2sim}}};
    creationQueueStatic.push_back({.hexid = 3});
    parkAirport = schiphol;
    addStand("D14", schiphol.pos());
    EXPECT_EQ(lf_standOfUser(schiphol.pos()), "D14");
    g_apfLoaded = true;
    liveLimit = 50;
    MAX_LIVE_SEL.value = 10;
    lf_leaveParkAirport();
    hexid = 0x500000;
    for (const auto& [stage, state] : cases) {
        const bool there = exists(++hexid);
        const bool going = !there || record(hexid).simState == State::removingfromsim;
        EXPECT_EQ(going, stage != Stage::flying && stage != Stage::birth) << gf_stageWord(stage);
        const bool object = state != State::adding2sim && state != State::buffer;
        EXPECT_EQ(there, object || !going) << gf_stageWord(stage);
        EXPECT_TRUE(!there || (record(hexid).standId == 0) == going);
    }
    EXPECT_EQ(removalQueue.size(), 4u) << "an object that is being replaced is on its way out already";
    ASSERT_EQ(staticAcs.size(), 2u);
    EXPECT_EQ(staticAcs[0].simState, State::removingfromsim);
    EXPECT_TRUE(staticAcs[1].removeWhenCreated);
    EXPECT_TRUE(creationQueueLive.empty() && creationQueueStatic.empty());
    EXPECT_FALSE(gf_airportInSight() || g_apfLoaded || !stands.empty());
    EXPECT_EQ(lf_standOfUser(schiphol.pos()), "");
    EXPECT_EQ(MAX_LIVE_SEL.value, 50);
}

}  // namespace

}  // namespace skl::test
