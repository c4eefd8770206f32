// The index of airports out of tables and apt.dat, read back by the program's reader.
#include <fmt/format.h>

#include "core/folders.h"
#include "tests/datakit/datakit_world.h"

namespace skl::test {

namespace {

class DatakitAirports : public DatakitTest {
  protected:
    int make(const std::vector<std::string>& sources) {
        std::vector<std::string> words{"airports", "--out", "input"};
        words.insert(words.end(), sources.begin(), sources.end());
        const int status = kit(words);
        gf_clearAirports();
        gf_startLog();
        if (status == 0) {
            gf_readAirports("airports_msfs.xml");
            gf_readAirportNames();
        }
        return status;
    }
    static std::string codes() {
        std::string text;
        for (const Airport& airport : airportIndex) text += airport.code + ' ';
        return text;
    }
};

const std::string header = "ident,type,name,latitude_deg,longitude_deg,elevation_ft,iata_code\n";

TEST_F(DatakitAirports, TheFirstSourceDecidesAndLaterOnesFillIn) {
    writeFile("a.csv", header + "EGLL,large_airport,,51.4706,-0.4619,,\nEGXX,closed,Gone,51,1,3,\n");
    writeFile("b.csv", header +
                           "EGLL,large_airport,\"London, \"\"Heathrow\"\" & "
                           "Co\",10,10,83,LHR\nehAM,,Schiphol,52.3,4.76,-11,\n");
    ASSERT_EQ(make({"a.csv", "b.csv"}), 0) << said;
    EXPECT_EQ(codes(), "EGLL EHAM ");
    const Airport* airport = gf_findAirport("EGLL");
    EXPECT_EQ(airport->lat, 51.4706);
    EXPECT_EQ(airport->alt, 83);
    EXPECT_EQ(airport->iata, "LHR");
    EXPECT_EQ(gf_airportName("EGLL"), "London, \"Heathrow\" & Co");
    EXPECT_EQ(gf_findAirport("EHAM")->alt, -11);
    ASSERT_EQ(make({"b.csv", "a.csv"}), 0);
    EXPECT_EQ(gf_findAirport("EGLL")->lat, 10);
}

TEST_F(DatakitAirports, BadRowsAreToldWithTheirLineAndCostThemselves) {
    writeFile("a.csv",
              header +
                  "EGLL,,A,51.4,-0.4,83,\nEGLL,,B,51.5,-0.4,83,\nEGKK,,C,91,0,1,\nEGCC,,D,53,x,1,\n"
                  "EGNN,,E,0,0,1,\n../E,,F,50,1,1,\nEGAA,,G,54,-6,99999,\nEGBB,,\"never closed,52,1,1,\n"
                  "EGHH,,\"two\nlines\",50.7,-1.8,38,\nEGPH,,too,many,55,3,1,2,3\nEGFF,,cut,51.3");
    ASSERT_EQ(make({"a.csv"}), 0);
    EXPECT_EQ(codes(), "EGAA EGHH EGLL ");
    EXPECT_EQ(gf_findAirport("EGAA")->alt, 0);
    for (const char* text :
         {"a.csv:3: airport EGLL stands in line 2 already: left out",
          "a.csv:4: airport EGKK: '91, 0' is no place",
          "a.csv:5: ", "a.csv:6: ", "a.csv:7: '../E' is no code", "a.csv:8: airport EGAA: '99999' ft",
          "a.csv:9: a quote is never closed", "a.csv:12: 9 fields where the header has 7",
          "a.csv:13: the file ends within this row: left out", "1 doubled idents", "3 positions"})
        EXPECT_TRUE(says(text)) << text << "\n" << said;
}

TEST_F(DatakitAirports, MixedEncodingsBecomeUtf8) {
    writeFile("a.csv", "\xEF\xBB\xBF" + header +
                           "LFAA,,Orl\xE9"
                           "ans,47,2,1,\nLFBB,,Orl\xC3\xA9"
                           "ans,47,3,1,\nLFCC,,a\x01"
                           "b,47,4,1,\n");
    ASSERT_EQ(make({"a.csv"}), 0) << said;
    EXPECT_EQ(gf_airportName("LFAA"),
              "Orl\xC3\xA9"
              "ans");
    EXPECT_EQ(gf_airportName("LFBB"),
              "Orl\xC3\xA9"
              "ans");
    EXPECT_EQ(gf_airportName("LFCC"), "a b");
    EXPECT_TRUE(says("a.csv:2: is no UTF-8"));
    std::string wide = "\xFF\xFE";
    for (const char c : header + "LFDD,,Wide,47,5,1,\n") wide += std::string{c, '\0'};
    writeFile("b.csv", wide);
    ASSERT_EQ(make({"b.csv"}), 0) << said;
    EXPECT_EQ(gf_airportName("LFDD"), "Wide");
}

TEST_F(DatakitAirports, AnAirportWithoutAPositionTakesItFromItsRunways) {
    writeFile("apt.dat", aptHead +
                             "1 10 0 0 NFTE Date Line\n"
                             "100 30 2 0 0.25 0 0 0 09 -17.00000000 179.99000000 0 0 2 0 0 0 27 -17.02000000 "
                             "-179.97000000 0 0 2 0 0 0\n"
                             "1 20 0 0 XLOC Own Place\n1302 icao_code EGXA\n1302 iata_code abc\n1302 "
                             "datum_lat 52.5\n1302 datum_lon 1.5\n"
                             "100 30 2 0 0.25 0 0 0 09 10 10 0 0 2 0 0 0 27 10 10 0 0 2 0 0 0\n"
                             "16 0 0 0 SEAP Water\n101 49 1 08 35.0 -50.0 26 35.2 -50.2\n"
                             "17 5 0 0 HELI [H] Pad\n102 H1 45.0 8.0 0 20 20 1 0 0 0 0\n"
                             "1 5 0 0 NONE Nowhere\n1 5 0 0 GONE [X] Closed\n102 H1 45.0 8.0 0\n99\n");
    ASSERT_EQ(make({"apt.dat"}), 0) << said;
    EXPECT_EQ(codes(), "EGXA HELI NFTE SEAP ");
    EXPECT_EQ(gf_airportName("HELI"), "Pad");
    EXPECT_NEAR(gf_findAirport("NFTE")->lat, -17.01, 1e-9);
    EXPECT_NEAR(gf_findAirport("NFTE")->lon, -179.99, 1e-9);
    EXPECT_EQ(gf_findAirport("EGXA")->lat, 52.5);
    EXPECT_EQ(gf_findAirport("EGXA")->iata, "ABC");
    EXPECT_NEAR(gf_findAirport("SEAP")->lat, 35.1, 1e-9);
    EXPECT_EQ(gf_findAirport("HELI")->lon, 8);
    EXPECT_TRUE(says("apt.dat:16: airport NONE has no position")) << said;
}

TEST_F(DatakitAirports, NothingIsWrittenOverByWhatCannotBeUsed) {
    writeFile("input/airports_msfs.xml", "old");
    writeFile("none.csv", header);
    writeFile("columns.csv", "a,b\n1,2\n");
    writeFile("empty.csv", "");
    writeFile("old.dat", "I\n850 Version\n99\n");
    writeFile("apt.dat.gz", std::string("\x1F\x8B\x08\0\n", 5));
    for (const auto& [file, why] : {std::pair{"none.csv", "no airport in any source"},
                                    {"columns.csv", "columns.csv:1: has no column 'ident'"},
                                    {"empty.csv", "empty.csv: is empty"},
                                    {"old.dat", "old.dat:2: '850 Version' is no format"},
                                    {"apt.dat.gz", "apt.dat.gz: is packed by gzip or zip"},
                                    {"gone.csv", "gone.csv: cannot be read"},
                                    {".", "is a folder"}}) {
        EXPECT_EQ(kit({"airports", "--out", "input", file}), 1) << file;
        EXPECT_TRUE(says(why)) << said;
    }
    EXPECT_EQ(readFile("input/airports_msfs.xml"), "old");
    EXPECT_FALSE(fs::exists("input/airports_msfs.xml.new"));
    writeFile(
        "cut.dat",
        aptHead + "1 10 0 0 EGAA A\n1302 datum_lat 54\n1302 datum_lon -6\n1 10 0 0 EGBB B\n102 H1 52.0 -1");
    ASSERT_EQ(make({"cut.dat"}), 0) << said;
    EXPECT_TRUE(says("cut.dat:8: the file ends without a row 99")) << said;
    EXPECT_EQ(codes(), "EGAA ") << "half a row tells another place";
}

TEST_F(DatakitAirports, UseIsToldAndAReportTakesAll) {
    for (const auto& [words, status] : {std::pair<std::vector<std::string>, int>{{}, 2},
                                        {{"fly"}, 2},
                                        {{"--help"}, 0},
                                        {{"airports", "-h"}, 0},
                                        {{"airports", "--fly"}, 2},
                                        {{"airports", "--out"}, 2},
                                        {{"airports", "--out", "x"}, 2},
                                        {{"stands", "--show", "-1"}, 2}})
        EXPECT_EQ(kit(words), status) << said;
    std::string rows;
    for (int i = 0; i < 30; ++i) rows += fmt::format("EG{:02},,bad,99,0,0,\n", i);
    writeFile("a.csv", header + "EGLL,,A,51.4,-0.4,83,\n" + rows);
    ASSERT_EQ(kit({"airports", "--out", "input", "--show", "3", "--report", "all.txt", "a.csv"}), 0);
    EXPECT_TRUE(says("a.csv:5:"));
    EXPECT_FALSE(says("a.csv:6:"));
    EXPECT_TRUE(says("30 positions"));
    EXPECT_NE(readFile("all.txt").find("a.csv:32:"), std::string::npos);
}

}  // namespace

}  // namespace skl::test
