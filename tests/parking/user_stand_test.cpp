// The stand under the user, the stand kept for the user, and the list read again.
#include "core/run_state.h"
#include "simlink/sim_ids.h"
#include "tests/parking/parking_world.h"
#include "tests/support/fake_simconnect.h"

namespace skl::test {

namespace {

constexpr LaLo a1{52.3, 4.7}, a2{52.301, 4.7}, elsewhere{52.31, 4.7};

LaLo northOf(LaLo place, double meters) {
    return {place.lat + meters / (59.99972 * 1852), place.lon};
}

class UserStandTest : public ParkingTest {
  protected:
    void SetUp() override {
        ParkingTest::SetUp();
        parkAirport = schiphol;
        addStand("A1", a1);
        addStand("A2", a2);
    }
};

TEST_F(UserStandTest, TheNearestWithin55Meters) {
    EXPECT_EQ(lf_standOfUser(northOf(a2, 54.9)), "A2");
    EXPECT_EQ(lf_standOfUser(northOf(a2, 55.1)), "");
    EXPECT_EQ(lf_standOfUser(northOf(a1, 54.9)), "A1") << "the other one is 56 m off";
    // Remembered until the user moves or the stands change.
    stands[0].id = "B1";
    EXPECT_EQ(lf_standOfUser(northOf(a1, 54.9005)), "A1");
    EXPECT_EQ(lf_standOfUser(northOf(a1, 54)), "B1");
    stands.erase(stands.begin());
    lf_standsChanged();
    EXPECT_EQ(lf_standOfUser(northOf(a1, 54)), "");
    EXPECT_EQ(lf_standName(2), "A2") << "not by its place in the table";
    place(a2, 0, true);
    lf_updateUserStand();
    EXPECT_EQ(g_panel.userStandText, "A2");
    userOnGround = false;
    lf_updateUserStand();
    EXPECT_EQ(g_panel.userStandText, "");
}

TEST_F(UserStandTest, RememberedAtTheEnd) {
    const auto after = [](const char* lines, LaLo at, double speed = 0, bool onGround = true) {
        list(lines);
        place(at, 0, onGround, speed);
        lf_rememberUserStand();
        return readFile(listFile);
    };
    EXPECT_EQ(after("EHRD\nEHAM\n", a1, 2), "EHAM,A1\nEHRD\n");
    EXPECT_EQ(after("EHAM,A2\n", a1), "EHAM,A1\n");
    EXPECT_EQ(after("EHAM\n", a1, 2.1), "EHAM\n");
    EXPECT_EQ(after("EHAM\n", a1, 0, false), "EHAM\n");
    EXPECT_EQ(after("EHAM,A2\n", elsewhere), "EHAM,A2\n");
    EXPECT_EQ(after("EHRD\n", a1), "EHRD\n") << "not listed";
    userOnGroundKnown = false;
    EXPECT_EQ(after("EHAM\n", a1), "EHAM\n");
}

TEST_F(UserStandTest, RememberedWhereTheFlightEnded) {
    FakeSimulator sim;
    sim.connect();
    list("EHAM\n");
    sim.deliver(userMessage(1, {.lat = a2.lat, .lon = a2.lon}));
    sim.deliver(eventMessage(ev::flightLoaded, 0));
    EXPECT_FALSE(userFlightEnd) << "the flight that the program waits for";
    g_cycleRunning = true;
    sim.deliver(eventMessage(ev::flightLoaded, 0));
    // The next flight begins in the air, elsewhere.
    sim.deliver(userMessage(1, {.lat = 10, .lon = 10, .groundSpeed = 400}));
    sim.deliver(onGroundMessage(false));
    lf_rememberUserStand();
    EXPECT_EQ(readFile(listFile), "EHAM,A2\n");
}

TEST_F(UserStandTest, TheStandKeptForTheUserIsCleared) {
    reservedStand = "A1";
    for (const uint32_t sid : {1, 2}) {
        LiveAc& record = active(0x500000 + sid, fmt::format("BAW{}", sid), 100 + sid);
        record.stage = FlightStage::parked;
        record.standId = sid;
    }
    staticAcs = {{{.standId = 2, .objectId = 7, .simState = SimObjectState::active}},
                 {{.standId = 1, .objectId = 8, .simState = SimObjectState::active}}};
    for (const auto& gone : std::vector<std::deque<uint32_t>>{{8}, {8, 101}, {8, 101}}) {
        lf_clearReservedStand();
        EXPECT_EQ(removalQueue, gone);
    }
}

TEST_F(UserStandTest, TheListReadAgain) {
    const auto message = [](const char* lines, LaLo user) {
        writeFile(listFile, lines);
        place(user, 0, true);
        reservedStand = "A1";
        stands[0].reserved = true;
        stands[1].reserved = false;
        std::string text;
        const bool known = lf_rereadParkAirports(text);
        EXPECT_EQ(known, lines[0] != 'X');
        EXPECT_EQ(stands[0].reserved, reservedStand == "A1") << lines;
        EXPECT_EQ(stands[1].reserved, reservedStand == "A2") << lines;
        return text;
    };
    const std::string okay = "park airports and stands are okay";
    EXPECT_EQ(message("EHRD\nEHAM,A2\n", elsewhere), "reserved stand changed from 'A1' to 'A2'");
    EXPECT_EQ(reservedStand, "A2");
    EXPECT_TRUE(g_panel.reservedStandOk);
    EXPECT_EQ(message("EHAM,B9\n", elsewhere), "reserved stand changed from 'A1' to 'B9'");
    EXPECT_FALSE(g_panel.reservedStandOk) << "a slip of the pen: the panel shows it in red";
    EXPECT_EQ(message("EHRD\nEHAM,A1\n", elsewhere), okay);
    EXPECT_EQ(message("EHRD\nEHAM\n", elsewhere), okay);
    EXPECT_EQ(message("EHAM,A2\n", a1), okay) << "the user stands on one";
    EXPECT_EQ(message("EHAM,A2\n", {}), okay);
    EXPECT_EQ(message("XXXX\nEHAM,A2\n", elsewhere), "");
    EXPECT_EQ(reservedStand, "A1");
    message("EHRD\nEHAM\n", a1);
    EXPECT_EQ(listed(), "EHAM: EHRD: ") << "sorted";
    DESTINATION.set("EHRD");
    message("EHAM\nEHRD\n", a1);
    EXPECT_EQ(listed(), "EHRD: EHAM: ") << "the destination again";
}

}  // namespace

}  // namespace skl::test
