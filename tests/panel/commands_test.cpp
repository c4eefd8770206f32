// Every control does what its user expects: the setting, the file, the message, the other controls.
#include "panel/commands.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "core/text.h"
#include "engine/engine_state.h"
#include "liveries/catalogue.h"
#include "panel/control_table.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "panel/traffic_range.h"
#include "parking/stands.h"
#include "tests/support/airport_data.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

class CommandTest : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_startLog();
        fs::create_directories(gf_programDataPath());
        gf_resetParameters();
        const auto& lists = gf_parameterLists();
        gf_readParameters(lists.hidden, lists.checks, lists.numbers, lists.combos, lists.texts,
                          lists.liveTexts);
        gf_resetRunState();
        gf_resetPanel();
        gf_resetRequests();
        gf_resetStands();
        clearCatalogueRequested = false;
        g_simulatorSwitched = false;
        gf_enableControlsAtStart();
    }
    void TearDown() override {
        gf_resetRunState();
        gf_closeLog();
        TempFolderTest::TearDown();
    }
    static std::string message() { return gf_panelText(&PanelState::statusText); }
    static bool saved(const std::string& name, const std::string& value) {
        const std::string text = test::readFile(gf_programDataPath() / "parameters.xml");
        return text.find(fmt::format("name=\"{}\" value=\"{}\"", name, value)) != std::string::npos;
    }
    static bool refreshed(ControlParameter& control, const std::string& text) {
        const uint32_t before = control.refreshes;
        gf_controlEntered(control.controlId, text);
        return control.refreshes != before;
    }
};

TEST_F(CommandTest, EachCheckBoxTurnsOverAndIsSaved) {
    const std::string name(programName);
    const std::string renewal = name + " will respond in 12 seconds ...";
    const std::map<std::string, std::pair<std::string, std::string>> said{
        {"LIG_AUTOMATIC", {"", "The liveries defined by your lfolder parameters will be scanned"}},
        {"LIG_PRIORITIZE",
         {"Liveries, for airl+model, in lower lfolders that are already available will be skipped", ""}},
        {"COLLISION_LIVE_PARKED_GND",
         {"", "Be aware, no collision avoidance with live aircraft vs parked static on the ground"}},
        {"COLLISION_USER_GND", {"", "Be aware, no collision avoidance with user aircraft on the ground"}},
        {"COLLISION_USER_AIR", {"", "Be aware, no collision avoidance with user aircraft in the air"}},
        {"INITIAL_LOAD_ONLY",
         {"Initial Load Only: static parked aircraft are generated once, no renewal every 20 minutes", ""}},
        {"ALWAYS_ON_TOP", {name + "'s window will remain visible", ""}},
        {"SUPPRESS_STUB", {"Exclude FSLTL-liveries titles ending with _STUB from scan", ""}},
        {"GUID_CHANGES",
         {"", "Be aware, no more livery updates: you miss correct data for Learn, LittleNavMap, etc!"}},
        {"AEROWINX", {"Note: This mode is for Aerowinx PSX users only, please re-start " + name, ""}},
        {"WEEK", {renewal, renewal}},
        {"PARK_FAKE", {renewal, renewal}},
        {"PARK_SOFT", {renewal, renewal}},
        {"SCAN_LIVERIES",
         {"Your liveries will be scanned at the next start of " + name +
              ", recommended after you have add/removed AI aircraft models/liveries",
          ""}},
        {"SCAN_AIRPORTS",
         {"Your airports will be scanned at the next start of " + name +
              ", recommended after you have add/removed airports",
          ""}}};
    g_apfLoaded = true;
    g_waitingForFeed = false;
    g_seconds = 18;
    int boxes = 0;
    for (const PanelControl& control : gf_panelControls()) {
        auto* box = dynamic_cast<CheckParameter*>(&control.parameter);
        if (!box) continue;
        ++boxes;
        for (int round = 0; round < 2; ++round) {
            const bool on = !box->value;
            gf_showMessage("before", false);
            gf_controlClicked(box->controlId);
            EXPECT_EQ(box->value, on) << box->name;
            EXPECT_TRUE(saved(box->name, on ? "true" : "false")) << box->name;
            const auto texts = said.find(box->name);
            EXPECT_EQ(message(), texts == said.end() ? "before"
                                 : on                ? texts->second.first
                                                     : texts->second.second)
                << box->name << on;
        }
    }
    EXPECT_EQ(boxes, 24);
    EXPECT_FALSE(g_stopRequested);
}

TEST_F(CommandTest, BoxesSetWhatHangsOnThem) {
    gf_controlClicked(LIG_AUTOMATIC.controlId);
    EXPECT_FALSE(AI_PACKAGE_SELECTOR.enabled);
    gf_controlClicked(NAV_LIGHTS_WHILE_PARKED.controlId);
    EXPECT_TRUE(g_navLightsChanged);
    gf_controlClicked(LEARN_SOFT.controlId);
    EXPECT_FALSE(g_parkingChanged) << "no airport";
    gf_controlClicked(WEEK.controlId);
    EXPECT_FALSE(g_renewRequested) << "no airport";
    g_apfLoaded = true;
    gf_controlClicked(LEARN_SOFT.controlId);
    EXPECT_TRUE(g_parkingChanged);
    INITIAL_LOAD_ONLY.value = true;
    gf_controlClicked(WEEK.controlId);
    EXPECT_FALSE(g_renewRequested) << "filled once";
    INITIAL_LOAD_ONLY.value = false;
    gf_controlClicked(WEEK.controlId);
    EXPECT_TRUE(g_renewRequested);
}

TEST_F(CommandTest, AutomaticRangeGivesTheOldOneBack) {
    RANGE.value = 65;
    gf_controlClicked(AUTO_RANGE.controlId);  // on by default
    gf_controlSelected(RANGE.controlId, 17);
    EXPECT_EQ(rangeNm, 65);
    gf_controlClicked(AUTO_RANGE.controlId);
    EXPECT_TRUE(g_autoRangeRequested);
    EXPECT_FALSE(RANGE.enabled);
    EXPECT_TRUE(AR_ABOVE_HEIGHT.enabled);
    gf_applyRange(10);  // what the worker chooses
    gf_controlClicked(AUTO_RANGE.controlId);
    EXPECT_EQ(RANGE.value, 65);
    EXPECT_EQ(rangeNm, 65);
    EXPECT_TRUE(RANGE.enabled);
    EXPECT_FALSE(g_autoRangeRequested);
}

TEST_F(CommandTest, AScanBeginsAtOnceWhileNothingFlies) {
    SCAN_LIVERIES.value = false;
    gf_controlClicked(SCAN_LIVERIES.controlId);
    EXPECT_EQ(message(), "Your liveries will be scanned");
    EXPECT_EQ(g_exitReason, ExitReason::newSettings);
    EXPECT_EQ(g_restartSeconds, 2);
    EXPECT_TRUE(clearCatalogueRequested);
}

TEST_F(CommandTest, CombosTakeTheEntry) {
    struct Case {
        ComboIntParameter& box;
        int index, value;
    };
    for (const Case& c : {Case{MATCHING_DEPTH, 0, 1},
                          {MAX_PARK_SEL, 2, 25},
                          {RANGE, 4, 6},
                          {AR_ABOVE_HEIGHT, 1, 21000},
                          {AIRP_RANGE, 5, 30},
                          {AIRP_HEIGHT, 10, 48000},
                          {MAX_LIVE_SEL, 1, 10}}) {
        gf_controlSelected(c.box.controlId, c.index);
        EXPECT_EQ(c.box.value, c.value) << c.box.name;
        EXPECT_TRUE(saved(c.box.name, std::to_string(c.value))) << c.box.name;
    }
    EXPECT_EQ(rangeNm, 6);
    EXPECT_EQ(liveLimit, 10);
    EXPECT_TRUE(g_liveLimitChanged);
    g_apfLoaded = true;
    gf_controlSelected(MAX_LIVE_SEL.controlId, 3);
    EXPECT_EQ(liveLimit, 10) << "the airport's own from now on";
    gf_controlSelected(AI_PACKAGE_SELECTOR.controlId, 5);
    EXPECT_TRUE(saved("AI_PACKAGE_SELECTOR", "JF, FSLTL, AIG"));
    gf_controlSelected(MATCHING_DEPTH.controlId, 7);
    EXPECT_EQ(MATCHING_DEPTH.value, 1) << "no such entry";
    EXPECT_TRUE(test::logHas("===> lf_HandleWMCOMMAND exception"));
}

TEST_F(CommandTest, AnotherSimulatorIsANewRun) {
    gf_controlSelected(SIM_CHOICE.controlId, 0);
    EXPECT_FALSE(g_stopRequested) << "it was that already";
    SCAN_AIRPORTS.value = SCAN_LIVERIES.value = false;
    ALL_INSTALL_PATH.set("somewhere");
    MYSIMADDON24_VERSION.set("1.2.3");
    gf_controlSelected(SIM_CHOICE.controlId, 1);
    EXPECT_TRUE(saved("SIM_CHOICE", "MSFS 2024"));
    EXPECT_TRUE(saved("SCAN_LIVERIES", "true") && saved("SCAN_AIRPORTS", "true"));
    EXPECT_TRUE(saved("MYSIMADDON24_VERSION", ""));
    EXPECT_EQ(message(), "Switching Simulator to MSFS 2024");
    EXPECT_TRUE(ALL_INSTALL_PATH.empty());
    EXPECT_TRUE(g_simulatorSwitched);
    EXPECT_EQ(g_restartSeconds, 3);
}

TEST_F(CommandTest, Buttons) {
    gf_controlClicked(unblockButton.controlId);
    EXPECT_EQ(message(), "Nothing to block or unblock...");
    for (int click = 0; click < 2; ++click) {  // each one counts
        g_flushStatic = g_rereadParkAirports = false;
        gf_enableControl(rereadButton, true);
        gf_controlClicked(flushStaticButton.controlId);
        gf_controlClicked(rereadButton.controlId);
        EXPECT_TRUE(g_flushStatic && g_rereadParkAirports);
        EXPECT_FALSE(rereadButton.enabled || DESTINATION.enabled || flushStaticButton.enabled);
    }
    gf_controlClicked(12345);
}

TEST_F(CommandTest, ABlockedCallsign) {
    struct Case {
        std::string typed, said, stored;
    };
    for (const Case& c : {Case{"", "", ""},
                          {"klm", "callsign 'klm' is not valid", ""},
                          {"KLM123456", "callsign 'KLM123456' is not valid", ""},
                          {"klm1", "live aircraft with callsign 'KLM1' will be blocked", "KLM1"},
                          {"KLM1", "callsign 'KLM1' was already set ...", "KLM1"},
                          {"\xff\xfe\xfd\xfc", "callsign 'KLM1' was already set ...", "KLM1"},
                          {"", "no more blocking of live aircraft 'KLM1'", ""}}) {
        gf_controlEntered(BLOCK_CALLSIGN.controlId, c.typed);
        EXPECT_EQ(message(), c.said);
        EXPECT_EQ(BLOCK_CALLSIGN.get(), c.stored) << c.typed;
        EXPECT_EQ(unblockButton.enabled, !c.stored.empty());
    }
    EXPECT_TRUE(test::logHas("lf_HandleWMCOMMAND exception")) << "text that is no UTF-8";
    EXPECT_TRUE(g_blockChanged);
    EXPECT_TRUE(refreshed(BLOCK_CALLSIGN, "x")) << "the box shows the value in force";
    BLOCK_CALLSIGN.set("BAW12");
    gf_controlClicked(unblockButton.controlId);
    EXPECT_TRUE(saved("BLOCK_CALLSIGN", ""));
}

TEST_F(CommandTest, ADestination) {
    test::useAirports({{.code = "EHAM", .lat = 52.3, .lon = 4.76}});
    for (const auto& [typed, said] : {std::pair{"EHA", "destination 'EHA' is not valid"},
                                      {"ZZZZ", "destination 'ZZZZ' is unknown ..."}}) {
        EXPECT_TRUE(refreshed(DESTINATION, typed));
        EXPECT_EQ(message(), said);
        EXPECT_TRUE(DESTINATION.empty());
    }
    gf_enableControl(rereadButton, true);
    gf_controlEntered(DESTINATION.controlId, "eham");
    EXPECT_EQ(message(), "New destination: EHAM");
    EXPECT_TRUE(saved("DESTINATION", "EHAM"));
    EXPECT_TRUE(g_destinationChanged);
    EXPECT_FALSE(rereadButton.enabled);
    gf_controlEntered(DESTINATION.controlId, "EHAM");
    EXPECT_EQ(message(), "destination 'EHAM' was already set ...");
    gf_controlEntered(DESTINATION.controlId, "");
    EXPECT_EQ(message(), "destination set to empty");
    EXPECT_TRUE(DESTINATION.empty() && saved("DESTINATION", "EHAM")) << "the file keeps it";
    EXPECT_TRUE(rereadButton.enabled);
}

TEST_F(CommandTest, ACallsignQuery) {
    gf_controlEntered(CALLSIGN_2_OBJECTID.controlId, "");
    EXPECT_FALSE(g_callsignQuery);
    gf_controlEntered(CALLSIGN_2_OBJECTID.controlId, "klm12");
    EXPECT_TRUE(g_callsignQuery.exchange(false));
    EXPECT_EQ(CALLSIGN_2_OBJECTID.get(), "KLM12");
    gf_controlEntered(CALLSIGN_2_OBJECTID.controlId, "");
    EXPECT_FALSE(g_callsignQuery);
    EXPECT_TRUE(CALLSIGN_2_OBJECTID.empty());
}

TEST_F(CommandTest, TheParkingPercentage) {
    struct Case {
        std::string typed, said;
        int value;
    };
    for (const Case& c : {Case{"25", "The new parking_percentage is 25", 25},
                          {"25", "Same parking_percentage value 25, no changes made", 25},
                          {"40abc", "The new parking_percentage is 40", 40},
                          {"abc", "invalid input: abc", 40},
                          {"\xE2\x82\xAC", "invalid input: \xE2\x82\xAC", 40},
                          {"\t7\n", "The new parking_percentage is 7", 7},
                          {"99999999999", "", 7},
                          {"101", "The new parking_percentage is 100", 100},
                          {"-3", "The new parking_percentage is 0", 0},
                          {"50", "The new parking_percentage is 50", 50},
                          {"", "The new parking_percentage is 0", 0}}) {
        EXPECT_TRUE(refreshed(parking_percentage, c.typed));
        EXPECT_EQ(message(), c.said);
        EXPECT_EQ(parking_percentage.value, c.value) << c.typed;
    }
    EXPECT_TRUE(test::logHas("===> lf_processTbInt: stoi argument out of range, h=99999999999"));
}

TEST_F(CommandTest, TheLongestFit) {
    gf_controlEntered(MAX_FIT_FL.controlId, "5");
    EXPECT_EQ(MAX_FIT_FL.value, 24.0f) << "no airport";
    g_apfLoaded = true;
    struct Case {
        std::string typed, said;
        float value;
        int halfHours;
        bool renews;
    };
    for (const Case& c : {Case{"7.3", "The new MAX_FIT_FL is 7.5", 7.5f, 14, true},
                          {"7.5", "Same MAX_FIT_FL value 7.5, no changes made", 7.5f, 14, false},
                          {"nan", "", 7.5f, 14, false},
                          {"x", "", 7.5f, 14, false},
                          {"1e99", "", 7.5f, 14, false},
                          {"-1", "The new MAX_FIT_FL is 0.5", 0.5f, 0, true},
                          {"99", "The new MAX_FIT_FL is 24.0", 24.0f, 47, true},
                          {"1", "The new MAX_FIT_FL is 1.0", 1.0f, 1, true},
                          {"", "The new MAX_FIT_FL is 24.0", 24.0f, 47, true}}) {
        g_renewRequested = false;
        g_seconds = 15;  // a renewal has no message of its own then
        EXPECT_TRUE(refreshed(MAX_FIT_FL, c.typed));
        EXPECT_EQ(message(), c.said);
        EXPECT_EQ(MAX_FIT_FL.value, c.value) << c.typed;
        EXPECT_EQ(MAX_FIT.value, c.halfHours) << c.typed;
        EXPECT_EQ(g_renewRequested, c.renews) << c.typed;
    }
    for (const char* told : {"invalid stof argument, h=x", "stof argument out of range, h=1e99"})
        EXPECT_TRUE(test::logHas(std::string("lf_processTbFloat: ") + told));
}

TEST_F(CommandTest, AnInstallPath) {
    fs::create_directories("packages/Community/Community");
    fs::create_directories("other");
    const std::string here = gf_pathText(root);
    const std::string found = fmt::format("Community path found, {} will restart ...", programName);
    struct Case {
        std::string typed, said, stored;
    };
    for (const Case& c :
         {Case{here + "/nowhere", "This install path does not exist: " + here + "/nowhere", "old"},
          {here + "/other", "This path exists but is not a path to Community ...", "old"},
          {here + "/packages", found, here + "/packages"},
          {here + "/packages/Community/", found, here + "/packages"},
          {here + "/packages\\Community", found, here + "/packages"},
          {here + "/packages/Community/Community", found, here + "/packages/Community"},
          {"", "", ""}}) {
        gf_resetRunState();
        MSFS_INSTALL_PATH.set("old");
        gf_showError("150: No install path");
        gf_controlEntered(ALL_INSTALL_PATH.controlId, c.typed);
        EXPECT_EQ(gf_panelText(&PanelState::errorText), "");
        EXPECT_EQ(message(), c.said) << c.typed;
        EXPECT_EQ(MSFS_INSTALL_PATH.get(), c.stored) << c.typed;
        EXPECT_EQ(g_exitReason == ExitReason::newSettings, c.said == found) << c.typed;
    }
    SIM_CHOICE.set("MSFS 2024");
    gf_controlEntered(ALL_INSTALL_PATH.controlId, here + "/packages");
    EXPECT_TRUE(saved("MSFS_2024_INSTALL_PATH", here + "/packages"));
}

}  // namespace
}  // namespace skl
