// The stands come in: who may learn, which stand the list keeps, which one is held free.
#include "core/parameters.h"
#include "panel/panel_state.h"
#include "parking/airport_list.h"
#include "parking/learning.h"
#include "simlink/user_aircraft.h"
#include "tests/airports/airport_file_world.h"
#include "tests/support/airport_data.h"

namespace skl::test {

namespace {

const std::string listFile = "airports/my_park_airports.txt";

class ReadParkedFileTest : public AirportFileTest {
  protected:
    void SetUp() override {
        AirportFileTest::SetUp();
        useAirports(
            {{.code = "EHAM", .lat = 52.3, .lon = 4.76}, {.code = "KJFK", .lat = 40.6, .lon = -73.8}});
        gf_resetParkAirports();
        engineUser = {};
        userOnGround = true;
        writeFile(archivedName, apf(usualRows, parkpos("A1", R"(radius="20")")));
    }
};

TEST_F(ReadParkedFileTest, TheReasonIsGiven) {
    parkAirport.code = "EHGG";
    EXPECT_EQ(lf_readParkedFile(), "lf_readParkedFile EHGG not found");
    writeFile("airports/my_thirdparty/EHGG.txt", "archive/thirdparty/unknown/EHGG.xml");
    EXPECT_EQ(lf_readParkedFile(),
              "lf_readParkedFile EHGG has publisher:unknown, archive/thirdparty/unknown/EHGG.xml");
    parkAirport.code = "EHAM";
    updatesCount = 7;
    EXPECT_EQ(lf_readParkedFile(), "");
    EXPECT_EQ(lf_readParkedFile(), "");
    EXPECT_EQ(stands.size(), 1u) << "no stand twice";
    EXPECT_EQ(updatesCount, 0);
    EXPECT_EQ(gf_panelText(&PanelState::airportName), "Schiphol");
    EXPECT_TRUE(parkAirports.empty()) << "the user's position is not known";
}

TEST_F(ReadParkedFileTest, AWellKnownAirportTakesNoGuesses) {
    const struct {
        int quality, count;
        bool learns;
    } cases[] = {{44, 20, true}, {45, 19, true}, {45, 20, false}};
    for (const auto& each : cases) {
        LEARN_SOFT.value = true;
        std::string text;
        for (int i = 0; i < each.count; ++i) text += parkpos(std::to_string(i));
        writeFile(archivedName, apf(usualRows + ";Qf_real=" + std::to_string(each.quality), text));
        ASSERT_EQ(lf_readParkedFile(), "");
        EXPECT_EQ(LEARN_SOFT.value, each.learns) << each.quality;
        EXPECT_EQ(LEARN_SOFT.enabled, each.learns);
        EXPECT_EQ(learningAllowed, each.learns);
        EXPECT_EQ(g_parkingChanged, !each.learns);
    }
}

TEST_F(ReadParkedFileTest, OneNodeAnAirportAndItsStandHeldFree) {
    const struct {
        const char *list, *destination;
        LaLo user;
        const char *file, *first, *reserved;
    } cases[] = {
        // On a stand: it is taken over, in place or as a new node.
        {"EHAM,B9\n", "", {52, 4}, "EHAM,A1\n", "EHAM", "A1"},
        {"KJFK\n", "", {52, 4}, "EHAM,A1\nKJFK\n", "EHAM", "A1"},
        // Off any stand: the listed one stays, and is held free if the airport has it.
        {"EHAM,A1\nKJFK\n", "", {52.1, 4}, "EHAM,A1\nKJFK\n", "EHAM", "A1"},
        {"KJFK\nEHAM,B9\n", "", {52.1, 4}, "KJFK\nEHAM,B9\n", "EHAM", ""},
        // A destination stays in front.
        {"EHAM,A1\nKJFK\n", "KJFK", {52.1, 4}, "EHAM,A1\nKJFK\n", "KJFK", "A1"},
    };
    for (const auto& each : cases) {
        writeFile(listFile, each.list);
        DESTINATION.set(each.destination);
        lf_readMyParkAirports();
        if (*each.destination) lf_setDestination(each.destination, {40.6, -73.8});
        engineUser.lat = each.user.lat;
        engineUser.lon = each.user.lon;
        ASSERT_EQ(lf_readParkedFile(), "");
        EXPECT_EQ(readFile(listFile), each.file);
        EXPECT_EQ(parkAirports.front().code, each.first) << each.list;
        EXPECT_EQ(reservedStand, each.reserved) << each.list;
        EXPECT_EQ(g_panel.reservedStandOk, !reservedStand.empty());
    }
}

}  // namespace

}  // namespace skl::test
