// parameters.xml: reading, clamping, writing, damage, and the update from older versions.
#include "core/parameter_store.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <thread>

#include "core/folders.h"
#include "core/parameters.h"
#include "core/text.h"
#include "core/xml_file.h"
#include "panel/traffic_range.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using test::logCount;
using test::logHas;
using test::readFile;
using test::writeFile;
using Rows = std::vector<std::pair<std::string, std::string>>;

class ParameterStore : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        fs::create_directories(gf_programDataPath());
        file = gf_programDataPath() / "parameters.xml";
    }
    static void read() {
        const auto& lists = gf_parameterLists();
        gf_readParameters(lists.hidden, lists.checks, lists.numbers, lists.combos, lists.texts,
                          lists.liveTexts);
    }
    void write(const Rows& rows) const {
        std::string text = "<?xml version=\"1.0\"?>\n<parameters>\n";
        for (const auto& [name, value] : rows)
            text += fmt::format("<parameter name='{}' value='{}'/>\n", name, value);
        writeFile(file, text + "</parameters>\n");
    }
    /// The value of a row in the file; "-" without such a row.
    std::string row(const std::string& name) const {
        pugi::xml_document document;
        document.load_file(file.c_str());
        const auto found = document.child("parameters").find_child_by_attribute("name", name.c_str());
        return found ? found.attribute("value").value() : "-";
    }
    fs::path file;
};

TEST_F(ParameterStore, WithoutAFileTheDefaultsAreWritten) {
    read();
    EXPECT_TRUE(logHas(gf_pathText(file) + " not found, default values taken:"));
    EXPECT_TRUE(logHas("'" + gf_pathText(file) + "' saved"));
    EXPECT_EQ(row("RANDOM"), "true");
    EXPECT_EQ(row("AEROWINX"), "false");
    EXPECT_EQ(row("LAST_EPOCH_TIME:"), "0");
    EXPECT_EQ(row("AI_PACKAGE_SELECTOR"), "AIG, FSLTL, JF");
    EXPECT_EQ(row("PROGRAM_VERSION"), "11.0.3");
    EXPECT_EQ(row("lfolder0"), "-");
    EXPECT_TRUE(readFile(file).starts_with(
        "<?xml version=\"1.0\"?>\n<parameters>\n\t<parameter name=\"RANDOM\" value=\"true\" />"));
    size_t rows = 0;
    for (size_t at = 0; (at = readFile(file).find("<parameter ", at)) != std::string::npos; ++at) ++rows;
    EXPECT_EQ(rows, 2u + 24u + 13u + 8u + 10u + 2u);
    gf_migrateParameters();
    EXPECT_FALSE(logHas("version update"));
}

TEST_F(ParameterStore, ValuesAreTakenClampedAndMissingRowsAppended) {
    write({{"RANGE", "7"},
           {"MAX_PARK_SEL", "777"},
           {"AIRP_HEIGHT", "-3"},
           {"MAX_HOLDING_MINUTES", "many"},
           {"MAX_LIVE", "99999999999999999999"},
           {"CUSTOM_MAX_PARK", "-99999999999999999999"},
           {"MAIN_WINDOW_X", " 12 "},
           {"MAX_FIT", "3"},
           {"LOG", "no"},
           {"WEEK", "Yes"},
           {"PORT_NUMBER", "4711"},
           {"BLOCK_CALLSIGN", "AAL1&amp;&lt;"},
           {"lfolder2", "/a/b"},
           {"lfolder3", ""},
           {"NEWER", "kept"}});
    read();
    EXPECT_EQ(RANGE.value, 7) << "the bounds are the ends of the list, entries between are free";
    EXPECT_EQ(MAX_PARK_SEL.value, 500);
    EXPECT_EQ(AIRP_HEIGHT.value, 2000);
    EXPECT_EQ(MAX_HOLDING_MINUTES.value, 1) << "no number reads as 0";
    EXPECT_EQ(MAX_LIVE.value, 300);
    EXPECT_EQ(CUSTOM_MAX_PARK.value, -1);
    EXPECT_EQ(MAIN_WINDOW_X.value, 12);
    EXPECT_EQ(MAX_FIT_FL.value, 2.0f);
    EXPECT_FALSE(LOG.value);
    EXPECT_TRUE(WEEK.value);
    EXPECT_EQ(PORT_NUMBER.get(), "4711");
    EXPECT_EQ(BLOCK_CALLSIGN.get(), "AAL1&<");
    EXPECT_EQ(lfolders[2].get(), "/a/b");

    EXPECT_EQ(row("GUID_CHANGES"), "true") << "missing rows are filled in";
    EXPECT_EQ(row("lfolder2"), "/a/b");
    EXPECT_EQ(row("lfolder3"), "-");
    EXPECT_EQ(row("NEWER"), "kept") << "rows of other versions stay";
    EXPECT_EQ(logCount("Parameter 'lfolder3' removed"), 1);
    EXPECT_TRUE(logHas("RANGE=7"));
    EXPECT_FALSE(logHas("lfolder2="));
}

TEST_F(ParameterStore, RowsWithoutValueAndAReadAfterAChangeOfTheFile) {
    writeFile(file,
              "<parameters><parameter name='RANGE'/><parameter name='LOG'/><parameter "
              "name='SIM_CHOICE'/></parameters>");
    SCAN_LIVERIES.value = false;
    PORT_NUMBER.set("1");
    read();
    EXPECT_EQ(RANGE.value, 2);
    EXPECT_FALSE(LOG.value);
    EXPECT_EQ(SIM_CHOICE.get(), "");
    EXPECT_TRUE(SCAN_LIVERIES.value) << "a row that has gone gives the default, not what was in memory";
    EXPECT_EQ(row("PORT_NUMBER"), "10747");
}

TEST_F(ParameterStore, DamagedFilesAreWrittenAnew) {
    write({{"RANGE", "65"}});
    const std::string whole = readFile(file);
    for (const std::string& damaged :
         {std::string(), whole.substr(0, whole.size() / 2), std::string("\0\1\2binary", 9),
          std::string("<other/>"), std::string("parameters")}) {
        gf_resetParameters();
        writeFile(file, damaged);
        read();
        EXPECT_EQ(row("RANGE"), "40") << damaged;
        EXPECT_EQ(row("PROGRAM_VERSION"), "11.0.3");
    }
    EXPECT_EQ(logCount("not found, default values taken:"), 5);
}

TEST_F(ParameterStore, SavingChangesOneRowAndLeavesTheRest) {
    write({{"RANGE", "65"}, {"NEWER", "kept"}});
    LOG.value = false;
    gf_saveParameter(LOG);
    RANGE.value = 30;
    gf_saveParameter(RANGE);
    DESTINATION.set("<\"EHAM\" & \xC3\xA4>");
    gf_saveParameter(DESTINATION);
    EXPECT_EQ(row("LOG"), "false");
    EXPECT_EQ(row("RANGE"), "30");
    EXPECT_EQ(row("DESTINATION"), "<\"EHAM\" & \xC3\xA4>");
    EXPECT_EQ(row("NEWER"), "kept");
    gf_removeParameter(RANGE);
    EXPECT_EQ(row("RANGE"), "-");
    EXPECT_TRUE(logHas("Parameter 'RANGE' removed"));

    writeFile(file, "");
    gf_saveParameter(RANGE);
    EXPECT_EQ(row("RANGE"), "30") << "an emptied file gets its root back";
    EXPECT_FALSE(logHas("Saving"));
}

TEST_F(ParameterStore, WhatCannotBeSavedIsALineAndTheValueStands) {
    MAIN_WINDOW_X.value = 77;
    gf_saveParameter(MAIN_WINDOW_X);
    EXPECT_EQ(logCount("Saving 'MAIN_WINDOW_X' failed"), 1) << "there is no file yet";
    // A folder in the way of the new content: nothing can be written, whoever the user is.
    write({{"RANGE", "65"}});
    fs::create_directories(fs::path(file) += ".new");
    gf_saveParameter(MAIN_WINDOW_X);
    gf_removeParameter(RANGE);
    EXPECT_EQ(logCount("Saving 'MAIN_WINDOW_X' failed"), 2);
    EXPECT_EQ(logCount("Saving 'RANGE' failed"), 1);
    EXPECT_EQ(MAIN_WINDOW_X.value, 77);
    read();
    EXPECT_EQ(RANGE.value, 65);
    EXPECT_TRUE(logHas("could not save to '" + gf_pathText(file) + "'"));
}

TEST_F(ParameterStore, ThreadsThatSaveDoNotLoseEachOthersRows) {
    write({});
    std::thread texts([] {
        for (int i = 0; i <= 40; ++i) {
            BLOCK_CALLSIGN.set(fmt::format("AAL{}", i));
            gf_saveParameter(BLOCK_CALLSIGN);
        }
    });
    for (int i = 0; i <= 40; ++i) {
        HOLDING_THRESHOLD_METERS.value = 100 + i;
        gf_saveParameter(HOLDING_THRESHOLD_METERS);
        EXPECT_TRUE(BLOCK_CALLSIGN.empty() || BLOCK_CALLSIGN.get().starts_with("AAL"));
    }
    texts.join();
    EXPECT_EQ(row("BLOCK_CALLSIGN"), "AAL40");
    EXPECT_EQ(row("HOLDING_THRESHOLD_METERS"), "140");
    EXPECT_FALSE(logHas("failed"));
}

TEST_F(ParameterStore, TheWindowPlaceIsReadAloneAndWithoutALine) {
    gf_readWindowPlace();
    EXPECT_EQ(MAIN_WINDOW_X.value, 400);
    write({{"MAIN_WINDOW_X", "-40000"}, {"MAIN_WINDOW_Y", "55"}, {"RANGE", "65"}});
    gf_readWindowPlace();
    EXPECT_EQ(MAIN_WINDOW_X.value, -30000);
    EXPECT_EQ(MAIN_WINDOW_Y.value, 55);
    EXPECT_EQ(RANGE.value, 40);
    EXPECT_EQ(test::logLines().size(), 1u);
}

class Migration : public ParameterStore {
  protected:
    void update(Rows rows) {
        gf_resetParameters();
        write(rows);
        read();
        gf_migrateParameters();
    }
};

TEST_F(Migration, OldNumbersBecomeEntriesOfTheLists) {
    struct Case {
        const char* old;
        IntParameter& target;
        std::vector<std::pair<int, int>> values;
    };
    const std::vector<std::pair<int, int>> counts{{-1, 500}, {0, 0},     {1, 10},   {17, 10}, {18, 25},
                                                  {37, 25},  {38, 50},   {62, 50},  {63, 75}, {87, 75},
                                                  {88, 100}, {299, 100}, {300, 500}};
    const std::vector<Case> cases{
        {"CUSTOM_MAX_PARK", MAX_PARK_SEL, counts},
        {"MAX_LIVE", MAX_LIVE_SEL, counts},
        {"LATERAL_RANGE", RANGE, {{2, 2},   {6, 6},   {7, 8},    {8, 8},    {9, 10},  {10, 10},
                                  {11, 12}, {13, 14}, {15, 16},  {17, 18},  {19, 20}, {22, 20},
                                  {23, 25}, {28, 30}, {33, 35},  {38, 40},  {45, 50}, {57, 65},
                                  {73, 80}, {89, 80}, {90, 100}, {100, 100}}},
        {"AIRPORT_RANGE", AIRP_RANGE, {{8, 10}, {12, 10}, {13, 15}, {18, 20}, {23, 25}, {26, 25}, {27, 30}}},
        {"AUTO_RANGE_ABOVE_HEIGHT",
         AR_ABOVE_HEIGHT,
         {{18000, 18000}, {27000, 36000}, {46999, 36000}, {47000, 48000}}},
        {"AIRPORT_HEIGHT",
         AIRP_HEIGHT,
         {{2999, 2000},
          {3000, 4000},
          {4999, 4000},
          {5000, 6000},
          {7000, 8000},
          {9000, 10000},
          {11000, 12000},
          {13000, 14000},
          {15000, 16000},
          {17000, 18000},
          {26999, 18000},
          {27000, 36000}}}};
    size_t longest = 0;
    for (const auto& one : cases) longest = std::max(longest, one.values.size());
    for (size_t round = 0; round < longest; ++round) {
        // One update converts the next value of each table.
        const auto valueOf = [round](const Case& one) { return one.values[round % one.values.size()]; };
        Rows rows{{"PROGRAM_VERSION", "10.1.0"}};
        for (const auto& one : cases) rows.emplace_back(one.old, fmt::format("{}", valueOf(one).first));
        update(rows);
        for (const auto& one : cases) {
            const auto [before, after] = valueOf(one);
            EXPECT_EQ(one.target.value, after) << one.old << " " << before;
            EXPECT_EQ(row(one.target.name), fmt::format("{}", after)) << one.old << " " << before;
            EXPECT_EQ(row(one.old), "-");
        }
    }
}

TEST_F(Migration, TextsOfOlderVersionsAndTheFreshScan) {
    writeFile("install_new_version.exe", "x");
    update({{"PROGRAM_VERSION", "10.1.0"},
            {"MSFS_2020", "true"},
            {"AI_PACKAGE_ORDER", "5"},
            {"LATERAL_RANGE", "60"},
            {"SCAN_LIVERIES", "false"},
            {"SCAN_AIRPORTS", "false"}});
    EXPECT_TRUE(logHas("This is a version update from 10.1.0 -> 11.0.3"));
    EXPECT_EQ(row("PROGRAM_VERSION"), "11.0.3");
    EXPECT_EQ(row("SIM_CHOICE"), "MSFS 2020");
    EXPECT_EQ(row("AI_PACKAGE_SELECTOR"), "JF, AIG, FSLTL");
    EXPECT_EQ(row("SCAN_LIVERIES"), "true");
    EXPECT_EQ(row("SCAN_AIRPORTS"), "true");
    EXPECT_EQ(rangeNm.load(), 65.0);
    EXPECT_FALSE(fs::exists("install_new_version.exe"));
    update({{"PROGRAM_VERSION", "10.1.0"}, {"MSFS_2020", "false"}});
    EXPECT_EQ(SIM_CHOICE.get(), "MSFS 2024");

    fs::create_directories("install_new_version.exe/full");
    update({{"PROGRAM_VERSION", "11.0.2"}});
    EXPECT_TRUE(logHas("Failed to remove install_new_version.exe: "));
}

TEST_F(Migration, WhichVersionsAreConverted) {
    struct Case {
        const char* stored;
        bool converts, scans;
    };
    for (const auto& [stored, converts, scans] :
         std::vector<Case>{{"11.0.1", true, true},    // before the lists
                           {"junk", true, true},      // counts as 0.0.0
                           {"11.0.2", false, true},   // has the lists already
                           {"11.0.3", false, false},  // the present one
                           {"12.0.0", false, false},  // a newer one was in use
                           {"", false, false}}) {     // never noted
        update({{"PROGRAM_VERSION", stored},
                {"LATERAL_RANGE", "60"},
                {"RANGE", "20"},
                {"SIM_CHOICE", "MSFS 2024"},
                {"SCAN_LIVERIES", "false"}});
        EXPECT_EQ(RANGE.value, converts ? 65 : 20) << stored;
        EXPECT_EQ(SCAN_LIVERIES.value, scans) << stored;
        EXPECT_EQ(row("PROGRAM_VERSION"), "11.0.3") << stored;
    }
}

TEST_F(ParameterStore, ControlsAreDistinct) {
    std::set<int> ids;
    std::set<std::pair<int, int>> places;
    const auto note = [&](const ControlParameter& control) {
        EXPECT_TRUE(ids.insert(control.controlId).second) << control.controlId;
        EXPECT_TRUE(places.insert({control.left, control.top}).second) << control.controlId;
    };
    const auto& lists = gf_parameterLists();
    const auto noteAll = [&](const auto& list) {
        for (auto* parameter : list)
            if (auto* control = dynamic_cast<ControlParameter*>(parameter)) note(*control);
    };
    noteAll(lists.hidden), noteAll(lists.checks), noteAll(lists.numbers), noteAll(lists.combos);
    noteAll(lists.texts), noteAll(lists.liveTexts);
    for (ControlParameter* other : std::initializer_list<ControlParameter*>{
             &parking_percentage, &MAX_FIT_FL, &ALL_INSTALL_PATH, &CALLSIGN_2_OBJECTID, &unblockButton,
             &rereadButton, &flushStaticButton})
        note(*other);
    EXPECT_EQ(ids.size(), 42u);
}

TEST_F(ParameterStore, MetaSection) {
    pugi::xml_document document;
    sim2020 = false;
    EXPECT_EQ(gf_writeMeta(document), 1);
    sim2020 = true;
    document.append_child("body");
    ASSERT_TRUE(gf_saveXml(document, "file.xml"));
    EXPECT_TRUE(logHas("'file.xml' saved"));
    pugi::xml_document again;
    ASSERT_TRUE(again.load_file("file.xml"));
    std::string value = "old";
    EXPECT_TRUE(gf_readMeta(again, "author", value));
    EXPECT_EQ(value, "Skylantern");
    EXPECT_TRUE(gf_readMeta(again, "MSFS", value));
    EXPECT_EQ(value, "2024");
    EXPECT_FALSE(gf_readMeta(again, "none", value));
    EXPECT_EQ(value, "");
    EXPECT_FALSE(gf_readMeta(again, "it's", value)) << "a quote breaks the search, not the program";
    EXPECT_FALSE(gf_saveXml(document, "no/folder.xml"));
    EXPECT_TRUE(logHas("could not save to 'no/folder.xml'"));
}

}  // namespace
}  // namespace skl
