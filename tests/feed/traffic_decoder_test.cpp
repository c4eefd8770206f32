// Lines of the feed, good and bad, against what reaches the inbox and the counter of the reason for which
// they do not.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "core/locks.h"
#include "core/run_state.h"
#include "engine/engine_state.h"
#include "feed/traffic_reader.h"
#include "panel/traffic_range.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using Changes = std::map<size_t, std::string>;

/// An airliner in the climb near Zurich, with some fields replaced.
std::string lineWith(const Changes& changes) {
    std::vector<std::string> fields{
        "RTTFC",  "4921633", "47.6", "8.6",          "9000", "1792", "0",    "137.5", "280", "SWR123", "A320",
        "HB-JLT", "LSZH",    "EGLL", "1700000000.5", "X",    "X2",   "mlat", "9000",  "-1",  "310",    "-1",
        "-1",     "-12",     "0",    "141",          "0",    "none", "A3"};
    for (const auto& [number, text] : changes) fields.at(number) = text;
    std::string line;
    for (const auto& field : fields) line += (line.empty() ? "" : ",") + field;
    return line;
}

class TrafficDecoderTest : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_resetEngine();
        rangeNm = 40;
        engineTick = 500;
        g_acceptTraffic = true;
        reader.setFilterPos({47.458, 8.548});
    }
    void TearDown() override {
        gf_resetEngine();
        g_acceptTraffic = false;
        TempFolderTest::TearDown();
    }

    /// The record that the line gives, if it gives one.
    std::optional<TrafficUpdate> decode(const Changes& changes) { return decodeLine(lineWith(changes)); }
    std::optional<TrafficUpdate> decodeLine(const std::string& line) {
        trafficInbox.clear();
        reader.processText(line);
        if (trafficInbox.empty()) return std::nullopt;
        return trafficInbox.back();
    }
    void airportInSight(double elevation) {
        reader.setGroundReference(GroundReference{{47.6, 8.6}, elevation});
    }

    TrafficReader reader;
};

TEST_F(TrafficDecoderTest, FillsEveryFieldOfAnAirborneRecord) {
    const auto record = decode({});
    ASSERT_TRUE(record);
    EXPECT_EQ(record->hexid, 4921633u);
    EXPECT_EQ(record->callsign, "SWR123");
    EXPECT_EQ(record->model, "A320");
    EXPECT_EQ(record->regcode, "HB-JLT");
    EXPECT_EQ(record->origin, "LSZH");
    EXPECT_EQ(record->destination, "EGLL");
    EXPECT_EQ(record->feedTime, 1700000000.5);
    EXPECT_EQ(reader.feedTimestamp(), 1700000000.5);
    EXPECT_EQ(record->pos.lat, 47.6);
    EXPECT_EQ(record->pos.lon, 8.6);
    EXPECT_EQ(record->pos.alt, 9000);
    EXPECT_EQ(record->pos.vs, 1792);
    EXPECT_EQ(record->pos.track, 137.5);
    EXPECT_EQ(record->pos.speed, 280);
    EXPECT_EQ(record->pos.tas, 310);
    EXPECT_EQ(record->pos.time, 3500);
    EXPECT_TRUE(record->pos.airborne);
    ASSERT_TRUE(record->pos.roll);
    EXPECT_NEAR(*record->pos.roll, 0.20943951, 1e-8);
    // The true heading counts only in messages of the transponder itself.
    EXPECT_FALSE(record->pos.hasTrueHeading);
    EXPECT_FALSE(record->pos.trueHeading);
    EXPECT_TRUE(record->airline.empty() && record->coupledIn.empty() && record->coupledOut.empty());
}

TEST_F(TrafficDecoderTest, TextsThatMeanAbsentAreEmpty) {
    const auto record = decode({{9, "null"}, {12, "null"}, {13, "null"}});
    ASSERT_TRUE(record);
    EXPECT_EQ(record->callsign, "");
    EXPECT_EQ(record->origin, "");
    EXPECT_EQ(record->destination, "");
    EXPECT_EQ(decode({{9, "SWR@12"}})->callsign, "");
    EXPECT_EQ(decode({{11, "null"}})->regcode, "");
    EXPECT_EQ(decode({{11, "ABCDEFGHI-12"}})->regcode, "ABCDEFGHI-12");
}

TEST_F(TrafficDecoderTest, EachDropHasItsReasonAndNoLogLine) {
    struct Case {
        const char* what;
        Changes changes;
        std::atomic<uint64_t>& counter;
    };
    FeedCounters& c = feedCounters;
    const std::vector<Case> cases{
        {"vehicle", {{9, "OPS VEH 3"}}, c.vehicles},
        {"just outside the range", {{2, "48.126"}}, c.outOfRange},
        {"broken, but out of range", {{2, "10"}, {1, "x"}, {8, ""}, {4, "?"}}, c.outOfRange},
        {"tail of 13 characters", {{11, "ABCDEFGHI-123"}}, c.noIdentity},
        {"neither tail nor callsign", {{9, "null"}, {11, "null"}}, c.noIdentity},
        {"masked callsign, no tail", {{9, "@@@"}, {11, ""}}, c.noIdentity},
        {"no type", {{10, ""}}, c.noModel},
        {"type null", {{10, "null"}, {28, "null"}}, c.noModel},
        {"type 0", {{10, "0"}}, c.noModel},
        {"type ZZZZ", {{10, "ZZZZ"}, {28, ""}}, c.noModel},
        {"glider category", {{28, "B1"}}, c.notAircraft},
        {"balloon category", {{28, "B2"}}, c.notAircraft},
        {"ultralight category", {{28, "B4"}}, c.notAircraft},
        {"emergency vehicle category", {{28, "C1"}}, c.notAircraft},
        {"service vehicle category", {{28, "C2"}}, c.notAircraft},
        {"type of 5 letters with a category", {{10, "A320N"}}, c.notAircraft},
        {"balloon", {{10, "BALL"}}, c.notAircraft},
        {"ground", {{10, "GND"}}, c.notAircraft},
        {"last of the set", {{10, "VENT"}}, c.notAircraft},
        {"id of the static aircraft", {{1, "10000"}}, c.staticIds},
        {"id 0", {{1, "0"}}, c.staticIds},
        {"ground station", {{9, "ERARMTR0"}}, c.blockedNames},
        {"airport", {{9, "AIRPORT1"}}, c.blockedNames},
        {"on the ground without an airport in sight", {{4, "0"}}, c.ground},
        {"slow at 20000 ft", {{4, "20000"}, {8, "30"}}, c.ground},
    };
    for (const auto& [what, changes, counter] : cases) {
        const uint64_t before = counter;
        EXPECT_FALSE(decode(changes)) << what;
        EXPECT_EQ(counter, before + 1) << what;
    }
    EXPECT_EQ(test::logCount("processLineSub"), 0);
    // The set of types and the length of a type are looked at only where a category is given.
    EXPECT_TRUE(decode({{10, "BALL"}, {28, "null"}}));
    EXPECT_TRUE(decode({{10, "A320N"}, {28, ""}}));
    EXPECT_TRUE(decode({{28, "B3"}}));
    EXPECT_TRUE(decode({{1, "10001"}}));
    EXPECT_TRUE(decode({{2, "48.122"}}));
    EXPECT_TRUE(decode({{9, "AIRPORT12"}}));
}

TEST_F(TrafficDecoderTest, RangeIsAGreatCircleEverywhere) {
    for (const LaLo centre : {LaLo{47.458, 8.548}, LaLo{-80, 179.9}, LaLo{0.5, -179.99}, LaLo{89.7, 10}}) {
        reader.setFilterPos(centre);
        for (int degrees = 0; degrees < 360; degrees += 5)
            for (const double miles : {0.1, 20.0, 39.98, 40.02, 60.0}) {
                const LaLo place = destinationPoint(centre, toRad(degrees), miles * feetPerNm);
                const auto record = decode(
                    {{2, fmt::format("{:.7f}", place.lat)}, {3, fmt::format("{:.7f}", wrapLon(place.lon))}});
                EXPECT_EQ(record.has_value(), miles < 40) << centre.lat << " " << degrees << " " << miles;
            }
    }
}

TEST_F(TrafficDecoderTest, EachBadFieldIsLoggedWithItsText) {
    const std::string outOf = lineWith({{4, "high"}});
    struct Case {
        Changes changes;
        std::string text;
    };
    const std::vector<Case> cases{
        {{{14, ""}}, "timestamp:"},
        {{{14, "nan"}}, "timestamp:nan"},
        {{{2, "north"}}, "lat:north"},
        {{{3, "inf"}}, "lon:inf"},
        {{{2, "+47.6"}}, "lat:+47.6"},
        {{{3, " 8.6"}}, "lon: 8.6"},
        {{{2, "90.01"}}, "invalid lalo: 90.010000,8.600000"},
        {{{3, "-180.01"}}, "invalid lalo: 47.600000,-180.010000"},
        {{{2, "0.0001"}, {3, "-0.0001"}}, "invalid lalo: 0.000100,-0.000100"},
        {{{17, "adsb_icao"}, {25, "x"}}, "trueheading:x"},
        {{{17, "adsb_icao"}, {25, "360.5"}}, "trueheading: 360.50"},
        {{{1, "hex"}}, "hexid incorrecthex"},
        {{{1, "-5"}}, "hexid incorrect-5"},
        {{{1, "4294967296"}}, "hexid incorrect4294967296"},
        {{{8, ""}}, "gs:"},
        {{{8, "-inf"}}, "gs:-inf"},
        {{{4, "high"}}, "altitude high incorrect, from: " + outOf},
        {{{4, "inf"}}, "altitude inf incorrect, from: "},
        {{{7, "east"}}, "track incorrect east"},
        {{{7, "nan"}}, "track incorrect nan"},
        {{{5, "up"}}, "vs:up"},
        {{{23, ""}}, "roll:"},
        {{{20, "1e999"}}, "TAS incorrect1e999"},
        {{{20, std::string("\0\n\x01", 3)}}, "TAS incorrect..."},
        {{{9, "SWR1\n12:00 a line of its own"}}, "control characters: SWR1.12:00 a line"},
        {{{11, "HB\x1b[2J"}}, "control characters: HB.[2J"},
        {{{13, std::string("EG\0LL", 5)}}, "control characters: EG.LL"},
    };
    for (const auto& [changes, text] : cases) {
        const uint64_t before = feedCounters.badRecords;
        EXPECT_FALSE(decode(changes)) << text;
        EXPECT_EQ(feedCounters.badRecords, before + 1) << text;
        EXPECT_NE(test::logLines().back().find("exception in processLineSub: " + text), std::string::npos)
            << text << " / " << test::logLines().back();
    }
    // The stream goes on, and what follows a number in its field is not looked at.
    const auto record = decode({{1, "4921633x"}, {2, "47.6N"}, {8, "280 kn"}});
    ASSERT_TRUE(record);
    EXPECT_EQ(record->hexid, 4921633u);
    EXPECT_EQ(record->pos.speed, 280);
}

TEST_F(TrafficDecoderTest, ShortAndBinaryLinesAreBadRecords) {
    const std::string whole = lineWith({});
    const std::string tooShort = whole.substr(0, whole.rfind(','));
    const std::vector<std::string> lines{
        "", ",", "hello", tooShort, std::string("\0\xff\x7f,\r\n", 6), std::string(16000, '\n')};
    for (const auto& line : lines) EXPECT_FALSE(decodeLine(line));
    EXPECT_EQ(test::logCount("exception in processLineSub: fewer than 29 fields: "),
              static_cast<int>(lines.size()));
    EXPECT_TRUE(test::logHas("fewer than 29 fields: " + tooShort));
    EXPECT_EQ(reader.feedTimestamp(), 0);
    // More fields, or a line end, do no harm.
    EXPECT_TRUE(decodeLine(whole + ",more,and more"));
    EXPECT_FALSE(decodeLine(lineWith({{28, "B1"}}) + "\r\n"));
}

TEST_F(TrafficDecoderTest, TheTimeStampCountsUnlessTheLineIsAVehicle) {
    decode({{14, "100"}, {2, "10"}});
    EXPECT_EQ(reader.feedTimestamp(), 100);
    decode({{14, "200"}, {9, "A VEH"}});
    EXPECT_EQ(reader.feedTimestamp(), 100);
    decode({{14, "300"}, {2, "x"}});
    EXPECT_EQ(reader.feedTimestamp(), 300);
}

TEST_F(TrafficDecoderTest, GroundRuleAtEachBoundary) {
    struct Case {
        double altitude, speed;
        bool ground;
    };
    // The airport in sight is 1000 ft high.
    const std::vector<Case> cases{
        {1000, 400, true},    {1000.5, 121, false}, {1045, 120, true},   {1045, 120.5, false},
        {1045.5, 120, false}, {1090, 80, true},     {1090, 80.5, false}, {1090.5, 80, false},
        {1120, 43, true},     {1120, 43.5, false},  {1120.5, 43, false}, {900, 300, true},
        {20000, 35, true},    {20000, 35.5, false}, {0, 300, true},      {-50, 300, true},
        {13999, 36, false},   {14000, 36, false},
    };
    airportInSight(1000);
    for (const auto& [altitude, speed, ground] : cases) {
        const auto record = decode({{4, fmt::format("{}", altitude)}, {8, fmt::format("{}", speed)}});
        ASSERT_TRUE(record) << altitude << " " << speed;
        EXPECT_EQ(record->pos.airborne, !ground) << altitude << " " << speed;
        EXPECT_EQ(record->pos.alt, ground ? 0 : altitude);
    }
    // Fields that would be no flight: no altitude at all, and a speed below 0.
    EXPECT_FALSE(decode({{4, "nan"}})->pos.airborne);
    EXPECT_EQ(decode({{8, "-50"}})->pos.speed, 0);
    // Above 14000 ft the height over the airport does not count.
    airportInSight(13990);
    EXPECT_FALSE(decode({{4, "13999"}, {8, "100"}})->pos.airborne);
    EXPECT_TRUE(decode({{4, "14000"}, {8, "100"}})->pos.airborne);
    // Without an airport only a speed makes ground.
    reader.setGroundReference(std::nullopt);
    EXPECT_TRUE(decode({{4, "1"}, {8, "35.1"}})->pos.airborne);
    EXPECT_FALSE(decode({{4, "9000"}, {8, "35"}}));
}

TEST_F(TrafficDecoderTest, GroundRecordsOnlyWithinFiveMilesOfTheAirport) {
    airportInSight(1416);
    // A ground record has no roll, and its roll field is not looked at.
    const auto record = decode({{4, "0"}, {8, "12"}, {23, "x"}});
    ASSERT_TRUE(record);
    EXPECT_FALSE(record->pos.roll);
    EXPECT_TRUE(decode({{4, "0"}, {2, "47.683"}}));
    EXPECT_FALSE(decode({{4, "0"}, {2, "47.684"}}));
    EXPECT_TRUE(decode({{4, "9000"}, {2, "47.684"}}));
}

TEST_F(TrafficDecoderTest, TrackFallsBackToTheTrueHeading) {
    struct Case {
        const char *track, *type, *heading;
        double expectedTrack;
        std::optional<double> expectedHeading;
    };
    const std::vector<Case> cases{
        {"", "mlat", "90", 0, std::nullopt},         {"0", "mlat", "junk", 0, std::nullopt},
        {"", "adsb_icao", "90", 90, pi / 2},         {"0", "adsb_icao", "0", 360, 2 * pi},
        {"12.5", "adsb_icao", "360", 12.5, 2 * pi},  {"", "adsb_icao", "-1", 0, std::nullopt},
        {"", "adsb_icao_nt", "90", 0, std::nullopt},
    };
    for (const auto& [track, type, heading, expectedTrack, expectedHeading] : cases) {
        const auto record = decode({{7, track}, {17, type}, {25, heading}});
        ASSERT_TRUE(record) << track << type << heading;
        EXPECT_NEAR(record->pos.track, expectedTrack, 1e-9) << track << type << heading;
        EXPECT_EQ(record->pos.hasTrueHeading, expectedHeading.has_value());
        ASSERT_EQ(record->pos.trueHeading.has_value(), expectedHeading.has_value());
        EXPECT_NEAR(record->pos.trueHeading.value_or(0), expectedHeading.value_or(0), 1e-12);
    }
}

TEST_F(TrafficDecoderTest, UnknownAirspeedAndRoll) {
    const std::vector<std::pair<const char*, double>> cases{{"2000", 180},  {"2001", 220},  {"5000", 220},
                                                            {"5001", 250},  {"10000", 250}, {"10001", 350},
                                                            {"20000", 350}, {"20001", 430}};
    for (const auto& [altitude, tas] : cases)
        EXPECT_EQ(decode({{4, altitude}, {20, "-1"}})->pos.tas, tas) << altitude;
    EXPECT_EQ(decode({{20, "0"}})->pos.tas, 0);
    EXPECT_FALSE(decode({{23, "-1"}})->pos.roll);
    EXPECT_FALSE(decode({{23, "0.0"}})->pos.roll);
    EXPECT_TRUE(decode({{23, "1"}})->pos.roll);
}

TEST_F(TrafficDecoderTest, RecordsAreLostWhileNoneAreAccepted) {
    const uint64_t lost = feedCounters.notAccepting;
    g_acceptTraffic = false;
    EXPECT_FALSE(decode({}));
    EXPECT_EQ(feedCounters.notAccepting, lost + 1);
    g_acceptTraffic = true;
    EXPECT_TRUE(decode({}));
}

TEST_F(TrafficDecoderTest, CollectsCallsignsOfRecordsInRange) {
    decode({{9, "BEFORE"}});
    reader.collectCallsigns(true);
    decode({{9, "SWR1"}});
    decode({{9, "SWR1"}});
    decode({{9, "NOTYPE"}, {10, "null"}});
    decode({{9, "null"}});
    decode({{9, ""}});
    decode({{9, "X@Y"}});
    decode({{9, "FAR"}, {2, "10"}});
    decode({{9, "LONGTAIL"}, {11, "ABCDEFGHI-123"}});
    reader.collectCallsigns(false);
    decode({{9, "AFTER"}});
    EXPECT_EQ(reader.takeCallsigns(), (StringSet{"SWR1", "NOTYPE"}));
    EXPECT_TRUE(reader.takeCallsigns().empty());
}

}  // namespace
}  // namespace skl
