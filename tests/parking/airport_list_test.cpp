// The user's list of airports: its file, its order, the destination.
#include "tests/parking/parking_world.h"

namespace skl::test {

namespace {

using AirportListTest = ParkingTest;

TEST_F(AirportListTest, LinesOfTheFile) {
    const auto read = [](const char* lines, const std::string& said) {
        writeFile(listFile, lines);
        EXPECT_EQ(lf_readMyParkAirports(), lines[0] != 'X') << lines;
        EXPECT_TRUE(logHas(said)) << said;
        return listed();
    };
    EXPECT_EQ(read("EHAM,D14\nKJFK\n", "2 park airports read from '" + listFile), "EHAM:D14 KJFK: ");
    EXPECT_EQ(read("\xef\xbb\xbf\x45HAM, D14 \r\n\r\n", "1 park airport read"), "EHAM:D14 ");
    EXPECT_EQ(read("EHAM,", ""), "EHAM: ");
    EXPECT_EQ(read("EHAM,,x\nKJFK", "===> my_park_airports.txt:EHAM,,x wrong syntax, skipped"), "KJFK: ");
    EXPECT_EQ(read("EHAM,1\nEHAM,2\n", "===> my_park_airports.txt:EHAM,2 double, skipped"), "EHAM:1 ");
    EXPECT_EQ(read("XXXX\nEHAM\n", "airport XXXX is unknown"), "EHAM: ");
    EXPECT_EQ(g_panel.statusText, "airport XXXX is unknown");
    std::filesystem::remove(listFile);
    EXPECT_TRUE(lf_readMyParkAirports());
    EXPECT_TRUE(logHas(listFile + " not found"));
}

TEST_F(AirportListTest, TheUsersFilesJoinIt) {
    for (const char* name : {"KJFK.xml", "EHAM.xml", "EHAM.txt", "readme.txt", "EHRD.xml/x"})
        writeFile("airports/my_thirdparty/" + std::string(name), "");
    list("KJFK,A1\n");
    EXPECT_EQ(listed(), "KJFK:A1 EHAM: ");
    EXPECT_TRUE(logHas("1 park airport added from my_thirdparty folder(-s)"));
}

TEST_F(AirportListTest, StoringKeepsWhatTheUserWrote) {
    const auto store = [](const std::string& stand, const char* said, const char* before = nullptr) {
        if (before) writeFile(listFile, before);
        parkAirports = {{.code = "KJFK"}, {.code = "EHAM", .stand = stand}};
        lf_storeParkAirport("EHAM");
        EXPECT_TRUE(logHas(said)) << said;
        return readFile(listFile);
    };
    std::filesystem::create_directory("airports");
    EXPECT_EQ(store("D14", "my_park_airports.txt created with EHAM,D14"), "EHAM,D14\n");
    EXPECT_EQ(store("D1", ":EHAM,D1 updated stand", "KJFK\nEHAM,B\r\nEHRD"), "EHAM,D1\nEHRD\nKJFK\n");
    EXPECT_EQ(store("", ".txt:EHAM new entry", "KJFK\nEHRD,,x\nKJFK"), "EHAM\nEHRD,,x\nKJFK\n");
    EXPECT_EQ(store("2", ":EHAM,2 new entry", "EHAMX,1\n"), "EHAM,2\nEHAMX,1\n");
    std::filesystem::remove(listFile);
    std::filesystem::create_directory(listFile);
    store("D14", "===> could not read 'airports/my_park_airports.txt'");
    EXPECT_TRUE(std::filesystem::is_directory(listFile)) << "what cannot be read is never replaced";
}

TEST_F(AirportListTest, OneNodeAnAirportAndTheDestinationInFront) {
    list("EHAM,D14\n");
    lf_promoteParkAirport("KJFK", "A1", kennedy.pos());
    EXPECT_EQ(listed(), "KJFK:A1 EHAM:D14 ");
    lf_promoteParkAirport("EHAM", "", schiphol.pos());
    EXPECT_EQ(listed(), "EHAM:D14 KJFK:A1 ") << "an empty stand takes nothing away";
    DESTINATION.set("EHRD");
    lf_setDestination("EHRD", rotterdam.pos());
    EXPECT_EQ(listed(), "EHRD: EHAM:D14 KJFK:A1 ");
    EXPECT_EQ(readFile(listFile), "EHAM,D14\nEHRD\n");
    lf_promoteParkAirport("KJFK", "A2", kennedy.pos());
    EXPECT_EQ(listed(), "EHRD: KJFK:A2 EHAM:D14 ") << "behind the destination";
    DESTINATION.set("EHAM");
    lf_setDestination("EHAM", schiphol.pos());
    EXPECT_EQ(listed(), "EHAM:D14 EHRD: KJFK:A2 ");
    EXPECT_EQ(readFile(listFile), "EHAM,D14\nEHRD\n") << "a listed one leaves the file alone";
}

TEST_F(AirportListTest, SortedWhenTheUserHasMoved) {
    list("EHRD\nEHAM\nKJFK\n");
    const LaLo user{kennedy.lat + 0.1, kennedy.lon};
    lf_sortParkAirports(user);
    EXPECT_EQ(listed(), "KJFK: EHRD: EHAM: ");
    parkAirports.reverse();
    lf_sortParkAirports({user.lat, user.lon + 0.5e-8});
    EXPECT_EQ(listed(), "EHAM: EHRD: KJFK: ") << "not moved";
    DESTINATION.set("EHAM");
    lf_sortParkAirports({41, -73});
    EXPECT_EQ(listed(), "EHAM: EHRD: KJFK: ") << "a destination keeps its place";
    DESTINATION.set("");
    lf_sortParkAirports(user);
    EXPECT_EQ(listed(), "KJFK: EHRD: EHAM: ") << "without it the user need not move";
}

}  // namespace

}  // namespace skl::test
