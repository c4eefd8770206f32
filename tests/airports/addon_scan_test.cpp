// The scan of packages: publishers, links, generated files, and that a damaged file costs itself.
#include "airports/addon_scan.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "airports/airport_index.h"
#include "airports/publisher.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "distribution/site.h"
#include "liveries/livery_scan.h"
#include "liveries/reference_db.h"
#include "panel/panel_state.h"
#include "tests/support/airport_data.h"
#include "tests/support/bgl_writer.h"
#include "tests/support/site_server.h"

namespace skl::test {

namespace {

using Names = std::vector<std::string>;

class AddonScanTest : public TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        unsetenv("http_proxy");
        gf_startLog();
        gf_resetParameters();
        gf_resetRunState();
        fs::create_directories(gf_programDataPath());
        gf_ensureFolders();
        gf_clearDbase();
        publisherRows = {{"Big Scenery", "bigscenery", "BS Studios"}, {"Orbx"}};
        simAddons20 = {"EGLC"};
        thirdParties20 = {{"Big Scenery", {"EGLL12", "LFPGxx", "EHAM3"}}, {"Orbx", {"EGLL200"}}};
        thirdParties24 = {{"Orbx", {"KJFK50"}}};
        useAirports({{.code = "EGLL"}, {.code = "EHAM"}, {.code = "KJFK"}});
        gf_setSiteBase("");
        workerLimit = 2;
        sim2020 = true;
        MSFS_INSTALL_PATH.set("sim");
        MSFS_2024_INSTALL_PATH.set("sim");
        fs::create_directories("sim/Official");
        fs::create_directories("sim/Community");
    }
    void TearDown() override {
        gf_resetRunState();
        gf_clearDbase();
        gf_clearAirports();
        sim2020 = true;
        gf_closeLog();
        TempFolderTest::TearDown();
    }
    static void scenery(const std::string& path, const std::string& code, int stands) {
        std::vector<BglParking> parkings;
        for (int i = 1; i <= stands; ++i) parkings.push_back({.number = static_cast<uint32_t>(i)});
        writeFile(path, bglFile(bglAirport(code, 0, bglParkings(parkings))));
    }
    static std::string scan() {
        SCAN_AIRPORTS.value = true;
        lf_scanAirports();
        return readFile("output/info/AirportsScanLog.txt");
    }
    static Names in(const fs::path& folder) {
        Names names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    static bool has(const std::string& text, const std::string& piece) {
        return text.find(piece) != std::string::npos;
    }
};

TEST_F(AddonScanTest, LinksAndGeneratedFiles) {
    scenery("sim/Community/bigscenery-egll/scenery/a.bgl", "EGLL", 12);
    scenery("sim/Community/bigscenery-eham/scenery/a.BGL", "EHAM", 4);
    scenery("sim/Community/bigscenery-lfpg/scenery/a.bgl", "LFPG", 2);
    scenery("sim/Official/OneStore/microsoft-airport-eglc/x.bgl", "EGLC", 9);
    scenery("sim/Official/OneStore/Asobo-Airport-kjfk/x.bgl", "KJFK", 1);
    scenery("sim/Community/maker/one/x.bgl", "OMDB", 1);
    // None of these is looked at.
    scenery("sim/Community/my-aircraft/x.bgl", "ZZZZ", 1);
    scenery("sim/Community/p/x.Bgl", "ZZZY", 1);
    scenery("sim/Community/p/statics/x.bgl", "ZZZX", 1);
    scenery("sim/Community/" + std::string(120, 'd') + '/' + std::string(120, 'd') + "/x.bgl", "ZZZW", 1);
    const std::string log = scan();
    EXPECT_EQ(in(paths::myThirdparty), (Names{"EGLL.txt", "EHAM.txt", "EHAM.xml", "LFPG.xml", "OMDB.xml"}));
    EXPECT_EQ(in(paths::mySimaddon), (Names{"EGLC.txt", "KJFK.xml"}));
    EXPECT_EQ(readFile(paths::myThirdparty / "EGLL.txt"), "archive/thirdparty/Big%20Scenery/EGLL.xml\n");
    EXPECT_EQ(readFile(paths::mySimaddon / "EGLC.txt"), "archive/simaddon/EGLC.xml\n");
    EXPECT_EQ(gf_publisherOfFile(paths::myThirdparty / "LFPG.xml"), "Big Scenery");
    for (const char* line :
         {"Scanning for addon airports in sim/Official", "publisher 'Big Scenery' found",
          "from filename => publisher simaddon",
          "thirdparty airport EGLL linked to archive/thirdparty/Big%20",
          "===> EHAM has 4 parkpos while archived one has 3", "thirdparty Big Scenery LFPG does not exist",
          "simaddon airport EGLC linked to archive/simaddon/EGLC.xml", "KJFK does not exist as simaddon",
          "Generated EHAM.xml: 4 positions\n", "Generated OMDB.xml: 1 position\n", "===> No publisher found"})
        EXPECT_TRUE(has(log, line)) << line;
    EXPECT_TRUE(logHas("Big Scenery LFPG LFPGxx invalid number"));
    EXPECT_TRUE(logHas("Airports scan successful"));
    EXPECT_FALSE(SCAN_AIRPORTS.value);
    EXPECT_FALSE(fs::exists("TBLO"));
    EXPECT_TRUE(airportNames.empty());
    EXPECT_EQ(scan(), log) << "the same again";
}

TEST_F(AddonScanTest, NothingFound) {
    fs::remove_all("sim/Official");
    const std::string log = scan();
    EXPECT_TRUE(has(log, "sim/Official does not exist, skipped!"));
    EXPECT_TRUE(logHas("Warning: Scan has not found any add-on airports"));
    EXPECT_TRUE(logHas("The scan will search 2 folders"));
}

TEST_F(AddonScanTest, ADamagedFileCostsItself) {
    scenery("whole.bgl", "EGLL", 3);
    const std::string whole = readFile("whole.bgl");
    writeFile("sim/Community/a/cut.bgl", whole.substr(0, 100));
    writeFile("sim/Community/b/empty.bgl", "");
    std::string astray = whole;
    astray.replace(68, 4, "\xff\xff\xff\x7f");  // where the section's entry should be
    writeFile("sim/Community/b/astray.bgl", astray);
    writeFile("sim/Community/c/manifest.json", "{\"creator\":");
    scenery("sim/Community/c/x.bgl", "EHAM", 1);
    writeFile("sim/Community/d/manifest.json", std::string("\xff\xfe{\0", 4));
    scenery("sim/Community/d/x.bgl", "LFPG", 1);
    scenery("sim/Community/e/good.bgl", "EGLL", 3);
    fs::create_directory_symlink(fs::absolute("sim/Community"), "sim/Community/e/loop");
    const std::string log = scan();
    EXPECT_EQ(in(paths::myThirdparty), (Names{"EGLL.xml", "EHAM.xml", "LFPG.xml"}));
    EXPECT_TRUE(has(log, "Exception in lf_processBGLfile: "));
    EXPECT_TRUE(has(log, "Skipped an airport record that is too short in sim/Community/a/cut.bgl"));
}

TEST_F(AddonScanTest, OfTwoPackagesWithOneAirportTheLargerStays) {
    for (const int first : {2, 5}) {
        scenery("sim/Community/a/x.bgl", "EGLL", first);
        scenery("sim/Community/b/x.bgl", "EGLL", 7 - first);
        scan();
        EXPECT_TRUE(has(readFile(paths::myThirdparty / "EGLL.xml"), "num_parkpos\" value=\"5\"")) << first;
        EXPECT_EQ(in(paths::myThirdparty), Names{"EGLL.xml"});
    }
    scenery("sim/Community/a/x.bgl", "EGLL", 4);
    scenery("sim/Community/b/x.bgl", "EGLL", 4);
    scan();
    EXPECT_TRUE(has(readFile(paths::myThirdparty / "EGLL.xml"), "Community/a/x.bgl"));
}

TEST_F(AddonScanTest, PublishersOutOfManifests) {
    writeFile("sim/Community/p/one/manifest.json", R"({"manufacturer":"unheard of","creator":"BS Studios"})");
    writeFile("sim/Community/q/manifest.json", R"({"manufacturer":"ORBX","title":7})");
    writeFile("sim/Community/r/manifest.json", "[1]");
    writeFile("sim/Community/s/manifest.json", R"({"manufacturer":"ab","creator":"cd","title":"A place"})");
    lf_scanFolders({});
    struct Case {
        const char* path;
        const char *publisher, *creator, *title;
    };
    for (const Case& c : {Case{"sim/Community/p/one/two/x.bgl", "Big Scenery", "BS Studios", ""},
                          {"sim/Community/q/deep/er/x.bgl", "Orbx", "", ""},
                          {"sim/Community/r/x.bgl", "unknown", "", ""},
                          {"sim/Community/s/x.bgl", "unknown", "cd", "A place"},
                          {"elsewhere/x.bgl", "unknown", "", ""},
                          {"sim/Community/BigScenery/x.bgl", "Big Scenery", "", ""}}) {
        const PublisherInfo info = gf_findPublisher(c.path);
        EXPECT_EQ(info.publisher, c.publisher) << c.path;
        EXPECT_EQ(info.creator, c.creator) << c.path;
        EXPECT_EQ(info.title, c.title) << c.path;
    }
}

TEST_F(AddonScanTest, TheOtherSimulatorLinksAndDoesNotRead) {
    sim2020 = false;
    const Bytes unreadable = bglFile(bglRecord(275, Bytes(20, ' ')));
    writeFile("sim/Community/orbx-one/KJFK.bgl", unreadable);
    std::string log = scan();
    EXPECT_EQ(in(paths::myThirdparty), Names{"KJFK.txt"});
    EXPECT_TRUE(has(log, "ICAO code 'KJFK' as BGL stem"));
    fs::rename("sim/Community/orbx-one/KJFK.bgl", "sim/Community/orbx-one/x.bgl");
    log = scan();
    EXPECT_TRUE(
        has(log, "==================> Not recognised airport lost ... 'sim/Community/orbx-one/x.bgl'"));
    writeFile("sim/Community/orbx-one/manifest.json", R"({"title":"kjfk new york"})");
    log = scan();
    EXPECT_TRUE(has(log, "ICAO 'KJFK' in title 'kjfk new york' of manifest"));
    fs::rename("sim/Community/orbx-one", "sim/Community/orbx-KJFK-one");
    fs::remove("sim/Community/orbx-KJFK-one/manifest.json");
    log = scan();
    EXPECT_TRUE(has(log, "ICAO 'KJFK' in BGL path"));
    EXPECT_EQ(in(paths::myThirdparty), Names{"KJFK.txt"});
    scenery("sim/Community/orbx-KJFK-one/x.bgl", "KJFK", 60);
    scan();
    EXPECT_EQ(in(paths::myThirdparty), Names{"KJFK.txt"}) << "linked, so not generated";
}

TEST_F(AddonScanTest, AStopLeavesTheSwitchOn) {
    scenery("sim/Community/a/x.bgl", "EGLL", 3);
    gf_requestStop(ExitReason::newSettings, 0);
    scan();
    EXPECT_TRUE(SCAN_AIRPORTS.value);
    EXPECT_EQ(in(paths::myThirdparty), Names{});
}

TEST_F(AddonScanTest, ThreadsWhatTheSiteCouldLearnIsSetAside) {
    scenery("sim/Community/bigscenery-eham/x.bgl", "EHAM", 9);  // linked and generated
    scenery("sim/Community/bigscenery-lfpg/x.bgl", "LFPG", 1);  // the stock file is not good enough
    scenery("sim/Community/bigscenery-egkk/x.bgl", "EGKK", 1);  // no stock file
    const auto stock = [](const std::string& code, int quality, int week) {
        writeFile("site/MSFS/archive/stock/" + code + ".xml",
                  fmt::format("<parameters><parameter name='Qf_real' value='{}'/><parameter "
                              "name='RT_traffic_week' value='{}'/></parameters>",
                              quality, week));
    };
    stock("EHAM", 0, 27);
    stock("LFPG", 50, 26);
    SiteServer server("site");
    gf_setSiteBase(server.url("/"));
    gf_forgetProbes();
    scan();
    EXPECT_EQ(in("TBLO"), Names{"EHAM.xml"});
    EXPECT_EQ(in(paths::myThirdparty), (Names{"EGKK.xml", "EHAM.txt", "LFPG.xml"}));
    EXPECT_EQ(g_panel.offlineLearningCount, 1u);
    EXPECT_TRUE(logHas("LFPG not suitable for offline learning"));
    EXPECT_TRUE(logHas("Failed to download archive/stock/EGKK.xml"));
    EXPECT_TRUE(logHas("zip folder 'TBLO', and mail to"));
    gf_setSiteBase("");
}

}  // namespace
}  // namespace skl::test
