// Stock airport files out of apt.dat, generated files and sightings, read back by the program's reader.
#include <fmt/format.h>

#include <filesystem>
#include <pugixml.hpp>

#include "airports/airport_file.h"
#include "airports/airport_rows.h"
#include "airports/stand_reader.h"
#include "tests/datakit/datakit_world.h"
#include "tools/datakit/sightings.h"

namespace skl::test {

namespace {

class DatakitStands : public DatakitTest {
  protected:
    int make(const std::vector<std::string>& words) {
        std::vector<std::string> all{"stands", "--out", "stock"};
        all.insert(all.end(), words.begin(), words.end());
        return kit(all);
    }
    void read(const std::string& code) {
        gf_clearDbase();
        document.reset();
        ASSERT_TRUE(document.load_file(("stock/" + code + ".xml").c_str())) << said;
        stands.clear();
        lf_readStands(document, stands);
    }
    const Stand& stand(const std::string& id) {
        for (const Stand& each : stands)
            if (each.id == id) return each;
        throw std::runtime_error("no stand " + id);
    }
    std::string row(const char* name) { return std::string(lf_rowText(document, name).value_or("-")); }
    pugi::xml_document document;
    std::vector<Stand> stands;
};

std::string startRow(double lat, double lon, const std::string& rest) {
    return fmt::format("1300 {:.8f} {:.8f} {}\n", lat, lon, rest);
}

std::string field() {
    return aptHead + "1 83 0 0 EGLL Heathrow\n1302 datum_lat 51.47\n1302 datum_lon -0.46\n" +
           startRow(51.470, -0.460, "90.5 gate jets|heavy Gate A1") + "1301 C airline dlh baw\n" +
           startRow(51.471, -0.460, "-90 gate heavy A2, big") + "1301 F airline\n" +
           startRow(51.472, -0.460, "0 misc all K1") + "1301 E cargo fdx\n" +
           startRow(51.473, -0.460, "360 tie_down props G1") + startRow(51.474, -0.460, "10 misc helos H1") +
           startRow(51.475, -0.460, "0 hangar props Shed") +
           startRow(51.4700001, -0.460, "0 gate jets A1 again") +
           startRow(51.476, -0.460, "0 gate jets Gate A1") + startRow(91, 0, "0 gate jets Off") +
           startRow(40, -0.46, "0 gate jets Far") + "15 51.477 -0.46 45 Old one\n99\n";
}

TEST_F(DatakitStands, RowsBecomeStandsWithKindsAndRadii) {
    writeFile("apt.dat", field());
    ASSERT_EQ(make({"apt.dat"}), 0) << said;
    read("EGLL");
    struct Wanted {
        const char* id;
        double radius, heading;
        bool cargo, ramp, heli;
    };
    ASSERT_EQ(stands.size(), 7u);
    for (const Wanted& wanted : {Wanted{"Gate A1", 18, 90.5, false, false, false},
                                 {"A2  big", 40, 270, false, false, false},
                                 {"K1", 32.5, 0, true, true, false},
                                 {"G1", 7.5, 0, false, true, false},
                                 {"H1", 9, 10, false, true, true},
                                 {"Gate A1 2", 18, 0, false, false, false},
                                 {"Old one", 12, 45, false, true, false}}) {
        SCOPED_TRACE(wanted.id);
        const Stand& made = stand(wanted.id);
        EXPECT_NEAR(made.radius * 1852, wanted.radius, 1e-6);
        EXPECT_NEAR(toDeg(made.heading), wanted.heading, 0.05);
        EXPECT_EQ(made.cargo, wanted.cargo);
        EXPECT_EQ(made.ramp, wanted.ramp);
        EXPECT_EQ(made.heli, wanted.heli);
    }
    EXPECT_EQ(row("altitude"), "83");
    EXPECT_EQ(row("airport_name"), "Heathrow");
    EXPECT_EQ(row("Qf_real"), "-1") << "nothing was seen";
    EXPECT_EQ(row("RT_traffic_week"), "-");
    for (const char* text : {"apt.dat:16: EGLL: stand 'A1 again' lies on stand 'Gate A1': left out",
                             "apt.dat:17: EGLL: a second stand 'Gate A1': called 'Gate A1 2'",
                             "apt.dat:18: ", "apt.dat:19: EGLL: stand 'Far' lies 1275 km from its airport"})
        EXPECT_TRUE(says(text)) << text << "\n" << said;
    ASSERT_EQ(make({"--hangars", "--radii", "C=19,A=8", "apt.dat"}), 0);
    read("EGLL");
    EXPECT_NEAR(stand("Gate A1").radius * 1852, 19, 1e-6);
    EXPECT_NEAR(stand("Shed").radius * 1852, 12, 1e-6);
    EXPECT_EQ(make({"--radii", "C=0", "apt.dat"}), 2);
}

TEST_F(DatakitStands, SightingsBecomeOptionsAndTrueFigures) {
    writeFile("apt.dat", field());
    writeDatabaseTables();
    ASSERT_EQ(kit(databaseCommand), 0) << said;
    writeFile("seen.csv",
              "airport,registration,airline,type,callsign,weekday,half_hours,stand,week\n"
              "EGLL,D-AIUA,DLH,A320,DLH1:DLH2,Mon-Tue,\"10-12,40\",A1,30\n"
              "EGLL,D-AIUA,DLH,A320,DLH1:DLH2,1,13,gate a1,31\n"
              "EGLL,,,C172,GABCD,7,47-1,G1,\n"
              "EGLL,G-EUUA,BAW,A320,BAW9,3,5,,\n"
              "EGLL,D-X,DLH,A320,,8,5,A1,\nEGLL,D-X,DLH,A320,,1,48,A1,\nEGLL,D-X,DLH,ZZZZ,X,1,4,A1,\nEGLL,D-"
              "X,DLH,A320,X,1,4,B99,\n"
              "EGKK,D-X,DLH,A320,X,1,4,B99,\n");
    ASSERT_EQ(make({"--database", "dbase.xml", "--sightings", "seen.csv", "apt.dat"}), 0) << said;
    read("EGLL");
    const auto& seen = stand("Gate A1").options;
    ASSERT_EQ(seen.size(), 3u) << "Monday, Tuesday, and the one that was given a stand";
    EXPECT_EQ(seen[0].hours, gf_hours2bitset("10,11,12,13,40"));
    EXPECT_EQ(seen[1].hours, gf_hours2bitset("10,11,12,40"));
    EXPECT_EQ(seen[0].cs + seen[0].cs2 + seen[0].reg + seen[0].airl + seen[0].type, "DLH1DLH2D-AIUADLHA320");
    EXPECT_TRUE(seen[0].real);
    EXPECT_FALSE(seen[2].real) << "seen, but not where";
    EXPECT_EQ(seen[2].reg, "G-EUUA");
    const auto& overnight = stand("G1").options;
    ASSERT_EQ(overnight.size(), 2u);
    EXPECT_EQ(overnight[0].day * 100 + overnight[1].day, 701) << "Sunday night ends on Monday";
    EXPECT_EQ(overnight[1].hours, 3u);
    EXPECT_EQ(overnight[0].airl + overnight[0].reg, "PVTGABCD");
    const QualityFactors real = gf_qualityFactors(stands);
    EXPECT_GT(real.real, 0);
    EXPECT_EQ(row("Qf_real"), std::to_string(real.real));
    EXPECT_EQ(row("Qf_soft"), std::to_string(real.soft));
    EXPECT_EQ(row("RT_traffic_week"), "31");
    for (const char* text :
         {"seen.csv:6: '8' is no weekday", "seen.csv:7: '48' is no list of half hours",
          "seen.csv:8: type 'ZZZZ' of D-X is not in the database", "seen.csv:9: EGLL has no stand 'B99'",
          "seen.csv:10: no source has stands of EGKK"})
        EXPECT_TRUE(says(text)) << text << "\n" << said;
}

TEST_F(DatakitStands, GeneratedFilesAndTheOrderOfSources) {
    writeFile("apt.dat", field());
    writeFile(
        "scanned/EGLL.xml",
        "<parameters><parameter name='altitude' value='80'/><parameter name='airport_name' value='Mine'/>"
        "</parameters><parkpositions><parkpos id='X1' latitude='51.47' longitude='-0.46' heading='1' "
        "radius='30' cargo='false' ramp='false'/>\n<parkpos id='X2' latitude='51.470001' longitude='-0.46' "
        "radius='30'/></parkpositions>");
    writeFile("scanned/EGKK.xml", "<parameters>\n\n<parameter name='alt");
    writeFile("scanned/EGCC.xml", "<parameters/><parkpositions/>");
    writeFile("scanned/EGPH.xml",
              "<parameters><parameter name='altitude' value='8'/></parameters><parkpositions><parkpos id='1' "
              "latitude='5' longitude='5'/><parkpos id='1' latitude='5' longitude='5'/></parkpositions>");
    ASSERT_EQ(make({"scanned", "apt.dat"}), 0) << said;
    read("EGLL");
    EXPECT_EQ(stands.size(), 1u);
    EXPECT_EQ(row("altitude") + row("airport_name") + row("publisher"), "80Minestock");
    for (const char* text : {"EGLL.xml:2: stand 'X2' lies on stand 'X1': left out", "EGKK.xml:3: ",
                             "EGCC.xml: has no row 'altitude'", "EGPH.xml: 94: Parking position 1 appears"})
        EXPECT_TRUE(says(text)) << text << "\n" << said;
    EXPECT_FALSE(std::filesystem::exists("stock/EGPH.xml"));
    ASSERT_EQ(make({"apt.dat", "scanned"}), 0);
    read("EGLL");
    EXPECT_EQ(stands.size(), 7u);
    EXPECT_EQ(make({"--only", "EGKK", "apt.dat"}), 1);
}

TEST_F(DatakitStands, AFileOfAnotherDayStaysUnlessItsStandsAreOthers) {
    writeFile("apt.dat", field());
    ASSERT_EQ(make({"apt.dat"}), 0) << said;
    std::string text = readFile("stock/EGLL.xml");
    const size_t day = text.find("value", text.find("name=\"date\"")) + 7;
    text.replace(day, text.find('"', day) - day, "Jan 01, 2001");
    writeFile("stock/EGLL.xml", text);
    ASSERT_EQ(make({"apt.dat"}), 0);
    EXPECT_EQ(readFile("stock/EGLL.xml"), text);
    EXPECT_EQ(make({"--radii", "C=19", "apt.dat", "gone"}), 1);
    EXPECT_EQ(readFile("stock/EGLL.xml"), text) << "not all sources are there";
    ASSERT_EQ(make({"--radii", "C=19", "apt.dat"}), 0);
    EXPECT_EQ(readFile("stock/EGLL.xml").find("2001"), std::string::npos);
}

}  // namespace

}  // namespace skl::test
