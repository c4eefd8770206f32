// The index of airports: what its files may hold, and which airport a position belongs to.
#include "airports/airport_index.h"

#include <gtest/gtest.h>

#include "tests/support/airport_data.h"

namespace skl::test {

namespace {

constexpr LaLo user{50, 8};

/// An airport so many miles north of the user.
Airport north(const char* code, double nm) {
    return {.code = code, .lat = user.lat + nm / 59.99972, .lon = user.lon};
}

using AirportIndexTest = TempFolderTest;

std::string closest(LaLo place = user) {
    const Airport* airport = gf_closestAirport(place);
    return airport ? airport->code : "none";
}

TEST_F(AirportIndexTest, ABadEntryCostsItselfAlone) {
    writeFile("input/airports_msfs.xml",
              R"(<airports>
                 <airport code="LSZH" iata="ZRH" lat="47.458" lon=" +8.548" alt="1416"/>
                 <airport code="NOALT" lat="1" lon="2"/>
                 <airport code="../../E" lat="1" lon="2" alt="3"/>
                 <airport lat="1" lon="2" alt="3"/>
                 <airport code="WORD" lat="north" lon="2" alt="3"/>
                 <airport code="HUGE" lat="1" lon="1e999" alt="3"/>
                 <airport code="NAN" lat="nan" lon="1" alt="3"/>
                 <airport code="EHAM" lat="52.3" lon="4.76" alt="-11" iata=""/>
                 <airport code="LSZH" lat="1" lon="2" alt="3"/></airports>)");
    EXPECT_TRUE(gf_readAirports("airports_msfs.xml"));
    for (const char* line : {"Missing lat/lon/alt for airport 'NOALT'", "'../../E' is no code of an airport",
                             "'' is no code of an airport",
                             "Error parsing coordinates for airport 'WORD': invalid stod argument",
                             "Error parsing coordinates for airport 'HUGE': stod argument out of range",
                             "Error parsing coordinates for airport 'NAN': invalid stod argument",
                             "3 airports read from 'input/airports_msfs.xml'"})
        EXPECT_TRUE(logHas(line)) << line;
    const Airport* zurich = gf_findAirport("LSZH");
    ASSERT_TRUE(zurich);
    EXPECT_EQ(zurich->lon, 8.548) << "the first of two";
    EXPECT_EQ(gf_airportDisplayId(*zurich), "LSZH (ZRH)");
    EXPECT_EQ(gf_airportDisplayId(*gf_findAirport("EHAM")), "EHAM");
    EXPECT_EQ(gf_findAirport("ZZZZ"), nullptr);
    writeFile("input/airports_msfs.xml", "broken");
    EXPECT_TRUE(gf_readAirports("airports_msfs.xml")) << "read once a process";
}

TEST_F(AirportIndexTest, FilesThatAreNone) {
    const auto reason = [](const char* text) -> std::string {
        writeFile("input/a.xml", text);
        try {
            return gf_readAirports("a.xml") ? "some" : "empty";
        } catch (const std::runtime_error& error) {
            return slashed(error.what());
        }
    };
    EXPECT_EQ(reason("<other/>"), "Missing <airports> root in: input/a.xml");
    EXPECT_TRUE(reason("<airports><airport").starts_with("input/a.xml not loaded: "));
    EXPECT_EQ(reason("<airports/>"), "empty");
    gf_readAirportNames();
    EXPECT_TRUE(logHas("===> Failed to load airport names from 'input/airports_msfs_names.xml'"));
    writeFile("input/airports_msfs_names.xml",
              R"(<AirportNames><airport ICAO="EHAM" name="Schiphol"/><airport ICAO="EGLL"/></AirportNames>)");
    gf_readAirportNames();
    EXPECT_TRUE(logHas("Skipped airport entry with missing ICAO or name"));
    EXPECT_EQ(gf_airportName("EHAM") + gf_airportName("EGLL"), "Schiphol");
}

TEST_F(AirportIndexTest, TheClosestIsWithinFiveMiles) {
    useAirports({north("AAAA", 0)});
    const LaLo edge = exactlyAway(user, 5);
    EXPECT_EQ(closest(edge), "AAAA");
    EXPECT_EQ(closest(nextNorth(edge)), "none");
}

TEST_F(AirportIndexTest, TheNeighbourWinsByItsStands) {
    useAirports({north("AAAA", 4), north("BBBB", -3), north("CCCC", 3.5)});
    // No file at all: both are equally unknown.
    EXPECT_EQ(closest(), "BBBB");
    writeAirportFile("AAAA", "near", north("", 0.5).pos());
    writeAirportFile("CCCC", "best", user);
    EXPECT_EQ(closest(), "AAAA") << "the third one was met too late";
    EXPECT_TRUE(
        logHas("Airport BBBB is closest, but stand near at neighbouring airport AAAA is closer at 926 "
               "meters ..."));
    writeAirportFile("BBBB", "nearer", north("", 0.4).pos());
    EXPECT_EQ(closest(), "BBBB");
    EXPECT_EQ(logCount("Airport BBBB is closest, neighbour is AAAA"), 3);
}

}  // namespace

}  // namespace skl::test
