// Where an airport's file and its learned file are looked for, and how often the site is asked.
#include <filesystem>

#include "core/folders.h"
#include "tests/airports/airport_file_world.h"
#include "tests/support/site_server.h"

namespace skl::test {

namespace {

namespace fs = std::filesystem;

class AirportPlacesTest : public AirportFileTest {};

TEST_F(AirportPlacesTest, TheFirstPlaceThatHoldsAFileWins) {
    // Each step is written on top of those before it, the lowest place first.
    const struct {
        const char* path;
        const char* text;
        const char* found;
    } steps[] = {
        {"airports/my_simaddon/EHAM.txt", "", ""},
        {"airports/my_simaddon/EHAM.txt", "no file here", ""},
        {"airports/my_simaddon/EHAM.xml", "<x/>", "airports/my_simaddon/EHAM.xml"},
        {"airports/my_simaddon/EHAM.txt", "archive/simaddon/EHAM.xml \r\nsecond",
         "archive/simaddon/EHAM.xml"},
        {"airports/my_thirdparty/EHAM.xml", "<x/>", "airports/my_thirdparty/EHAM.xml"},
        {"airports/my_thirdparty/EHAM.txt", "../../elsewhere.xml", "airports/my_thirdparty/EHAM.xml"},
        {"airports/my_thirdparty/EHAM.txt", "archive/../../x.xml", "airports/my_thirdparty/EHAM.xml"},
        {"airports/my_thirdparty/EHAM.txt", "input/airports_msfs.xml", "airports/my_thirdparty/EHAM.xml"},
        {"airports/my_thirdparty/EHAM.txt", "C:\\archive\\x.xml", "airports/my_thirdparty/EHAM.xml"},
        {"airports/my_thirdparty/EHAM.txt",
         "\xef\xbb\xbf"
         "\\archive\\thirdparty\\a.xml.b\\EHAM.xmlish",
         "archive/thirdparty/a.xml.b/EHAM.xml"},
    };
    EXPECT_FALSE(gf_airportFileKnown("EHAM"));
    for (const auto& step : steps) {
        writeFile(step.path, step.text);
        EXPECT_EQ(gf_findAirportFile("EHAM"), step.found) << step.path << step.text;
        EXPECT_TRUE(gf_airportFileKnown("EHAM"));
    }
}

TEST_F(AirportPlacesTest, EveryKindHasItsLearnedPath) {
    const struct {
        const char *name, *publisher, *path;
    } cases[] = {
        {"", "stock", ""},
        {"archive/stock/EHAM.xml", "stock", "airports/learned/stock/EHAM.xml"},
        {"archive/simaddon/EHAM.xml", "", "airports/learned/simaddon/EHAM.xml"},
        {"archive/thirdparty/Fly%20High%20X/EHAM.xml", "fly high x",
         "airports/learned/thirdparty/Fly High X/EHAM.xml"},
        {"archive/thirdparty/Fly High/EHAM.xml", "", "airports/learned/thirdparty/Fly High/EHAM.xml"},
        {"airports/my_thirdparty/EHAM.xml", "Zeta Works", "airports/learned/thirdparty/Zeta Works/EHAM.xml"},
        {"airports/my_thirdparty2024/EHAM.xml", "Zeta", "airports/learned/thirdparty/Zeta/EHAM.xml"},
        {"airports/my_thirdparty/EHAM.xml", "..\\../..e/v\til..",
         "airports/learned/thirdparty/evil/EHAM.xml"},
        {"airports/my_simaddon/EHAM.xml", "simaddon", "airports/learned/simaddon/EHAM.xml"},
        {"elsewhere/100%20.xml", "Zeta", "elsewhere/100%20.xml"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(gf_learnedPath(each.name, each.publisher).generic_string(), each.path) << each.name;
}

TEST_F(AirportPlacesTest, ThreadsTheSiteIsAskedOnceForAFile) {
    unsetenv("http_proxy");
    const std::string stock = apf("altitude=5;airport_name=Schiphol;publisher=stock", parkpos("A1"));
    writeFile("site/MSFS/archive/stock/EHAM.xml", stock);
    sim2020 = false;
    SiteServer server((root / "site").string());
    gf_setSiteBase(server.url("/"));
    std::string standId;
    for (int pass = 0; pass < 3; ++pass) {
        EXPECT_NEAR(gf_readDestApfForClosestStand("EHAM", {52, 4.001}, standId), 0.03694, 1e-4);
        EXPECT_EQ(standId, "A1");
        EXPECT_TRUE(gf_airportFileKnown("EHAM"));
        EXPECT_EQ(gf_findAirportFile("EHAM"), "archive/stock/EHAM.xml");
        EXPECT_EQ(read(gf_findAirportFile("EHAM")), "");
        EXPECT_FALSE(gf_airportFileKnown("LFPG"));
        EXPECT_EQ(gf_findAirportFile("LFPG"), "");
        EXPECT_EQ(gf_readDestApfForClosestStand("LFPG", {52, 4}, standId), 100.0);
        EXPECT_EQ(read("archive/thirdparty/Fly High/EHGG.xml"),
                  "failed to download: '" + server.url("/MSFS2024/archive/thirdparty/Fly%20High/EHGG.xml'"));
    }
    EXPECT_EQ(file.altitude, 0) << "nothing of a file that did not come";
    EXPECT_EQ(readFile("airports/park_airport.xml"), stock);
    gf_forgetProbes();
    gf_airportFileKnown("LFPG");
    auto paths = server.end()["paths"];
    EXPECT_EQ(paths["/MSFS/archive/stock/EHAM.xml"]["200"], 1);
    EXPECT_EQ(paths["/MSFS/archive/stock/LFPG.xml"]["404"], 2);
    EXPECT_EQ(paths["/MSFS2024/archive/thirdparty/Fly High/EHGG.xml"]["404"], 1);
    EXPECT_EQ(paths.size(), 3u) << paths.dump();
}

}  // namespace

}  // namespace skl::test
