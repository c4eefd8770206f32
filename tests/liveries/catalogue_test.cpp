// From the folders of a start to the catalogue's tables: choice of folders, rank, stop, reports, categories.
#include "liveries/catalogue.h"

#include <fmt/format.h>

#include <map>

#include "core/clock.h"
#include "core/errors.h"
#include "core/folders.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "liveries/category_report.h"
#include "liveries/livery_scan.h"
#include "liveries/reference_db.h"
#include "liveries/start_liveries.h"
#include "panel/panel_state.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using Lines = std::vector<std::string>;

void writeLivery(const std::string& folder, const std::string& type, const std::string& airline,
                 const std::string& title, const char* more = "") {
    test::writeFile(
        folder + "/" + title + "/aircraft.cfg",
        fmt::format("[GENERAL]\nicao_type_designator={}\n[fltsim.0]\ntitle={}\nicao_airline={}\n{}\n", type,
                    title, airline, more));
}

class Catalogue : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_clearDbase();
        icaoAirlines = {"KLM", "DLH", "UPS"};
        aircraftTypes = {"A319", "A320", "A321", "B738", "B744", "C172", "C56X", "F16", "EC35"};
        largeTypes = {"A319", "A320", "A321", "B738"};
        heavyTypes = {"B744"};
        buzjetTypes = {"C56X"};
        highPerfTypes = {"F16"};
        rotorcraftTypes = {"EC35"};
        workerLimit = 2;
        SCAN_LIVERIES.value = true;
        LIG_AUTOMATIC.value = false;
        catalogueLoaded = false;
        fs::create_directories(paths::output);
    }
    void TearDown() override {
        gf_beginLiveryScan();
        gf_clearCatalogue();
        gf_clearDbase();
        TempFolderTest::TearDown();
    }
    static Lines titles() {
        std::map<std::string, std::string> sorted;
        for (const auto& [airline, types] : liveriesByAirline)
            for (const auto& [type, list] : types)
                for (const auto& livery : list)
                    sorted[livery.title] = airline + " " + type + (livery.cargo ? " cargo" : "");
        Lines lines;
        for (const auto& [title, where] : sorted) lines.push_back(title + ": " + where);
        return lines;
    }
    static std::string errorOf(void (*action)()) {
        try {
            action();
        } catch (const std::exception& error) {
            return error.what();
        }
        return "";
    }
};

TEST_F(Catalogue, ManualScanToTables) {
    writeLivery("one", "B738", "KLM", "A", "atc_id=PH-BXA");
    writeLivery("one", "B738", "KLM", "B", "atc_parking_types=CARGO");
    writeLivery("two/sub", "B738", "KLM", "C");
    writeLivery("two/sub", "B738", "DLH", "D");
    writeLivery("two/sub", "C172", "KLM", "A");
    lfolders[0].set("one");
    lfolders[1].set("missing");
    lfolders[3].set("afile");
    lfolders[9].set("TWO\\sub");  // as typed on another system
    test::writeFile("afile", "x");
    test::writeFile("output/errors/InlineRegcodes.txt", "old");
    test::writeFile("output/info/AircraftCfgWithNoFltsimSection.txt", "old");
    gf_startLiveries();

    EXPECT_EQ(titles(), (Lines{"A: KLM B738", "B: KLM B738 cargo", "C: KLM B738", "D: DLH B738"}));
    EXPECT_EQ(titlesByAirlineType[0].at("KLM").at("B738"), (TitleList{"A", "C"}));
    EXPECT_EQ(titlesByAirlineType[1].at("KLM").at("B738"), TitleList{"B"});
    EXPECT_EQ(titlesByType[0].at("B738"), (TitleList{"D", "A", "C"}));
    EXPECT_EQ(titlesByType[1].at("B738"), TitleList{"B"});
    EXPECT_TRUE(catalogueLoaded);
    EXPECT_FALSE(SCAN_LIVERIES.value);
    EXPECT_EQ(g_panel.liveryCount, 4u);
    EXPECT_TRUE(scannedLiveries.empty());
    EXPECT_FALSE(fs::exists("output/errors/InlineRegcodes.txt"));
    EXPECT_FALSE(fs::exists("output/info/AircraftCfgWithNoFltsimSection.txt"));
    for (const char* line :
         {"liveries scan manual starts", "2 liveries found in one", "missing does not exist, skipped!",
          "afile is not a folder name, skipped!", "2 liveries found in TWO\\sub", "4 in total",
          "liveries scan ends", "1 registration codes",
          "2 airlines, 1 pax aircraft models and 1 cargo aircraft models",
          "Category Large: 3 pax liveries and 1 cargo liverie", "Category Heavy: No livery found"})
        EXPECT_TRUE(test::logHas(line)) << line;

    // The same process again: nothing to do; after a scan everything is read anew.
    gf_startLiveries();
    EXPECT_TRUE(test::logHas("Processing scanned liveries skipped; already done in previous start-up"));
    writeLivery("two/sub", "B738", "DLH", "E");
    SCAN_LIVERIES.value = true;
    gf_startLiveries();
    EXPECT_EQ(titles().size(), 5u);
    clearCatalogueRequested = true;
    gf_startLiveries();
    EXPECT_FALSE(clearCatalogueRequested);
    EXPECT_EQ(test::logCount("5 liveries read from"), 2);
}

TEST_F(Catalogue, PrioritizedScanKeepsTheFirstFolder) {
    lfolders[0].set("one");
    lfolders[1].set("two");
    writeLivery("one", "B738", "KLM", "A");
    writeLivery("one", "B738", "KLM", "B");
    writeLivery("two", "B738", "KLM", "C");
    writeLivery("two", "B744", "KLM", "D");
    writeLivery("two", "B738", "DLH", "E");
    LIG_PRIORITIZE.value = true;
    gf_startLiveries();
    EXPECT_EQ(titles(), (Lines{"A: KLM B738", "B: KLM B738", "D: KLM B744", "E: DLH B738"}));
}

TEST_F(Catalogue, RankStopsAtTen) {
    std::vector<std::string> folders;
    for (int i = 1; i <= 11; ++i) {
        folders.push_back(fmt::format("f{}", i));
        fs::create_directories(folders.back());
    }
    folders.insert(folders.begin(), {"", "missing"});
    writeLivery("f10", "B738", "KLM", "A");
    writeLivery("f11", "B738", "KLM", "B");
    writeLivery("f11", "B738", "DLH", "C");
    writeLivery("f9", "B738", "DLH", "D");
    LIG_PRIORITIZE.value = true;
    ASSERT_TRUE(gf_scanLiveries(folders));
    SCAN_LIVERIES.value = false;
    gf_startLiveries();
    EXPECT_EQ(titles(), (Lines{"A: KLM B738", "B: KLM B738", "D: DLH B738"}));
}

TEST_F(Catalogue, StopBeforeTheStartRaisesNoError) {
    gf_requestStop(ExitReason::newSettings, 2);
    for (const bool scan : {true, false}) {
        SCAN_LIVERIES.value = scan;
        EXPECT_EQ(errorOf(gf_startLiveries), "");
        EXPECT_EQ(SCAN_LIVERIES.value, scan);
    }
}

/// The first look at the time, which the wait for the scan's threads takes, asks for a stop.
class StoppingClock : public Clock {
  public:
    Nanos utcNow() override { return {}; }
    Nanos steadyNow() override {
        gf_requestStop(ExitReason::newSettings, 2);
        return {};
    }
    bool waitUntil(Nanos, const std::function<bool()>&) override { return false; }
};

TEST_F(Catalogue, StopInTheMiddleOfAScan) {
    lfolders[0].set("one");
    writeLivery("one", "B738", "KLM", "A");
    gf_startLiveries();
    SCAN_LIVERIES.value = true;
    StoppingClock clock;
    gf_setClock(&clock);
    gf_startLiveries();
    gf_setClock(nullptr);
    EXPECT_TRUE(gf_stopping());
    EXPECT_TRUE(SCAN_LIVERIES.value);
    EXPECT_FALSE(catalogueLoaded);
    EXPECT_TRUE(liveriesByAirline.empty());
    EXPECT_FALSE(fs::exists(paths::liveriesScanned));
    gf_resetRunState();
    // A title that the first scan had seen is no double of itself.
    scannedLiveries.push_back({"KLM", "B738", "left over", "", 1, false});
    gf_startLiveries();
    EXPECT_EQ(titles(), Lines{"A: KLM B738"});
    EXPECT_FALSE(SCAN_LIVERIES.value);
}

TEST_F(Catalogue, NothingFoundIsAnError) {
    EXPECT_EQ(
        errorOf(gf_startLiveries),
        "48: Set lfolder parameter(-s) to your liveries first, see Manual 5.1 (or check Liveries automatic)");
    lfolders[0].set("one");
    fs::create_directories("one");
    EXPECT_EQ(errorOf(gf_startLiveries), "53: no liveries found");
    EXPECT_TRUE(test::logHas("No liveries found in one"));
    EXPECT_TRUE(SCAN_LIVERIES.value);
    LIG_AUTOMATIC.value = true;
    EXPECT_EQ(
        errorOf(gf_startLiveries),
        "43: Automatic scan has not found any liveries, switch off automatic and set lfolder parameter(-s), "
        "Manual 5.1");
    SCAN_LIVERIES.value = false;
    EXPECT_EQ(errorOf(gf_startLiveries), "51: File output/LiveriesScanned.xml not found");
}

TEST_F(Catalogue, AutomaticFolders) {
    LIG_AUTOMATIC.value = true;
    gf_installPathParameter().set("packages");
    for (const char* name : {"a-fsltl-traffic-base", "aig-aitraffic-oci-beta_x", "aig-aitraffic-oci_CVT_",
                             "justflight-fstraffic-module", "my-user-aitraffic", "something"})
        fs::create_directories(fs::path("packages/Community") / name);
    const std::string aig = "aig-aitraffic-oci-beta_x", fsltl = "a-fsltl-traffic-base",
                      jf = "justflight-fstraffic-module";
    const std::pair<const char*, Lines> orders[] = {
        {"AIG, FSLTL, JF", {aig, fsltl, jf}}, {"AIG, JF, FSLTL", {aig, jf, fsltl}},
        {"FSLTL, AIG, JF", {fsltl, aig, jf}}, {"FSLTL, JF, AIG", {fsltl, jf, aig}},
        {"JF, AIG, FSLTL", {jf, aig, fsltl}}, {"JF, FSLTL, AIG", {jf, fsltl, aig}},
    };
    for (const auto& [selector, expected] : orders) {
        AI_PACKAGE_SELECTOR.set(selector);
        std::vector<std::string> folders;
        gf_selectLiveryFolders(folders);
        ASSERT_EQ(folders.size(), 4u) << selector;
        for (size_t i = 0; i < 3; ++i)
            EXPECT_EQ(test::slashed(folders[i]), "packages/Community/" + expected[i]) << selector;
        EXPECT_EQ(test::slashed(folders[3]), "packages/Community/my-user-aitraffic");
    }
    EXPECT_TRUE(
        test::logHas("Automatic AIG scan found folder: 'packages/Community/aig-aitraffic-oci-beta_x'"));
    std::vector<std::string> folders;
    AI_PACKAGE_SELECTOR.set("JF");
    try {
        gf_selectLiveryFolders(folders);
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "AI_PACKAGE_SELECTOR not set");
    }
    gf_installPathParameter().set("");
    gf_selectLiveryFolders(folders);
    EXPECT_TRUE(folders.empty());
}

TEST_F(Catalogue, CategoriesWithoutLiveriesAreSwitchedOff) {
    lfolders[0].set("one");
    writeLivery("one", "EC35", "ZZZZ", "Heli");
    writeLivery("one", "C56X", "ZZZZ", "Jet");
    gf_startLiveries();
    EXPECT_EQ(typesRotorcraft, Lines{"EC35"});
    EXPECT_EQ(typesBuzjet, Lines{"C56X"});
    EXPECT_TRUE(typesLight.empty());
    EXPECT_TRUE(HELICOPTERS.value && HELICOPTERS.enabled);
    EXPECT_FALSE(LIGHT_AIRCRAFT.value || LIGHT_AIRCRAFT.enabled);
    EXPECT_FALSE(HIGH_PERF_AIRCRAFT.value || HIGH_PERF_AIRCRAFT.enabled);
    for (const char* name : {"LIGHT_AIRCRAFT", "HIGH_PERF_AIRCRAFT"})
        EXPECT_EQ(test::logCount(std::string(name) + " temporarily switched off because you do not have "),
                  1);
    // A run that finds the catalogue loaded leaves the boxes the same.
    LIGHT_AIRCRAFT.enabled = true;
    gf_startLiveries();
    EXPECT_FALSE(LIGHT_AIRCRAFT.enabled);
}

TEST_F(Catalogue, TypesOfACategoryAreTwentyToALine) {
    std::string first = "  ", second = "  T20,T21";
    for (int i = 0; i < 22; ++i) {
        titlesByType[i % 2][fmt::format("T{:02}", i)].push_back("x");
        if (i < 20) first += fmt::format("T{:02}{}", i, i < 19 ? "," : "");
    }
    titlesByType[1]["T00"].push_back("y");
    gf_reportCategory(AcCategory::Light);
    const auto lines = test::logLines();
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[lines.size() - 3], "Category Light: 11 pax liveries and 12 cargo liveries");
    EXPECT_EQ(lines[lines.size() - 2], first);
    EXPECT_EQ(lines.back(), second);
}

TEST_F(Catalogue, SimilarTypes) {
    similarRows = {{"A319", "A320", "A321"}, {"A320", "B738"}, {"C172", "EC35"}};
    lfolders[0].set("one");
    writeLivery("one", "A321", "KLM", "A");
    writeLivery("one", "B738", "KLM", "B", "atc_parking_types=CARGO");
    writeLivery("one", "A319", "DLH", "C");
    writeLivery("one", "A319", "KLM", "D");
    gf_startLiveries();
    // A320 stands in two rows: "A320,A319,A321" is less than "A320,B738".
    EXPECT_EQ(similarAvailable.size(), 3u);
    EXPECT_EQ(similarAvailable.at("A320"), (Lines{"A319", "A321"}));
    EXPECT_EQ(similarAvailable.at("A319"), Lines{"A321"});
    EXPECT_EQ(similarByAirline.at("KLM").at("A320"), (Lines{"A319", "A321"}));
    EXPECT_FALSE(similarByAirline.at("KLM").contains("A321"));  // KLM has it itself
    EXPECT_EQ(similarByAirline.at("DLH").at("A321"), Lines{"A319"});
    EXPECT_TRUE(test::logHas("3 similar model definitions"));
}

}  // namespace
}  // namespace skl
