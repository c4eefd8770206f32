// What stays on stands and stories without one teach, and what of it survives on the disk.
#include "parking/learning.h"

#ifndef _WIN32
#include <sys/resource.h>
#endif

#include <array>
#include <csignal>
#include <tuple>

#include "core/parameters.h"
#include "engine/live_parking.h"
#include "engine/spawning.h"
#include "engine/take_off.h"
#include "engine/update_cycle.h"
#include "panel/panel_state.h"
#include "tests/airports/airport_file_world.h"
#include "tests/support/stand_field.h"

namespace skl::test {
namespace {

using Stage = FlightStage;
using enum AcCategory;

/// "1 20,21 real; " for each option.
std::string optionsOf(const Stand& stand) {
    std::string all;
    for (const StandOption& each : stand.options)
        all += fmt::format("{} {} {}; ", each.day, gf_bitset2hours(each.hours), each.real ? "real" : "soft");
    return all;
}

class Learning : public StandTest {
  protected:
    /// An airport with stands of these radii.
    static void fresh(std::initializer_list<double> radii = {}) {
        anew();
        gf_resetLearning();
        gf_clearDbase();
        parkAirport = {.code = "KJFK", .lat = standHome.lat, .lon = standHome.lon};
        RANDOM.value = false;
        LEARN_SOFT.value = true;
        for (const double radius : radii) addStand(fmt::format("S{}", stands.size()), standHome, radius);
    }
    static LiveAc& aircraft(Stage stage, uint32_t hexid = flownHexid) {
        LiveAc& it = onGround(stage, standHome, 0, hexid);
        it.regcode = hexid == flownHexid ? "HB-1" : "HB-2";
        return it;
    }
    static void readFiles() {
        writeFile(archivedName,
                  apf(usualRows, parkpos("A1", R"(radius="25")", R"(<opt reg="ARCH" hh="4"/>)") +
                                     parkpos("A2", R"(radius="25")")));
        fresh();
        parkAirport = {.code = "EHAM", .lat = 52, .lon = 4};
        ASSERT_EQ(gf_readApf(archivedName, airportFile, qualityFactors, stands), "");
    }
    static std::string message() { return gf_panelText(&PanelState::statusText); }
};

TEST_F(Learning, AStayFillsItsHalfHours) {
    for (const auto& [category, cargo, start, end, expected] :
         std::vector<std::tuple<AcCategory, bool, WeekSlot, WeekSlot, std::string>>{
             {Heavy, false, {1, 20}, {1, 27}, "1 20,21,22,23,24,25,26,27 real; "},
             {Heavy, false, {1, 20}, {1, 28}, "1 20 real; 1 28 real; "},
             {Large, false, {1, 20}, {1, 25}, "1 20,21,22,23,24,25 real; "},
             {Large, false, {1, 20}, {1, 26}, "1 20 real; 1 26 real; "},
             {Large, true, {3, 0}, {3, 11}, "3 0,1,2,3,4,5,6,7,8,9,10,11 real; "},
             {Heavy, true, {3, 0}, {3, 12}, "3 0 real; 3 12 real; "},
             {Large, false, {2, 46}, {3, 0}, "2 46,47 real; 3 0 real; "},
             {Large, false, {7, 46}, {1, 1}, "7 46,47 real; 1 0,1 real; "},
             {Large, false, {2, 40}, {3, 10}, "2 40 real; 3 10 real; "},
             {Large, false, {4, 20}, {4, 20}, "4 20 real; "},
             {Large, false, {4, 20}, {4, 19}, "4 20 real; 4 19 real; "}}) {
        fresh({25});
        LiveAc& it = aircraft(Stage::parking);
        it.category = category;
        it.cargo = it.standCargo = stands[0].cargo = cargo;
        gf_storeNow(start);
        lf_arrival(it);
        EXPECT_EQ(stands[0].realStays.size(), 1u);
        gf_storeNow(end);
        lf_leavingStand(it);
        EXPECT_EQ(optionsOf(stands[0]), expected);
        EXPECT_TRUE(stands[0].realStays.empty() && updatesCount == 2) << expected;
    }
}

TEST_F(Learning, WhatAStayTeachesAndWhatNot) {
    fresh({25});
    LiveAc& it = aircraft(Stage::parked);
    it.standCargo = true;  // no stand of its kind
    lf_leavingStand(it);
    EXPECT_EQ(updatesCount, 0);
    // The archive tells other times of the airframe on Monday; what is spent tells nothing.
    stands[0].options.resize(
        2, {.reg = "HB-1", .hours = 3, .optionId = 1, .day = 1, .fromArchive = true, .real = true});
    stands[0].options[1].optionId = 0;
    EXPECT_FALSE(lt_addStandOption(1, it, false, {1, 20}, false, true));
    dbaseRecords["HB-1"] = {.airl = "EDW", .type = "A343", .opr = "", .cargo = false};
    EXPECT_TRUE(lt_addStandOption(1, it, false, {2, 20}, false, true));
    const StandOption& learned = stands[0].options.back();
    EXPECT_EQ(learned.optionId, 3) << "not counted from the last one, which may be spent";
    EXPECT_EQ(learned.airl + learned.type + learned.cs, "EDWA343SWR344");
    // It goes as another flight, and later on as a third one.
    for (const int32_t halfHour : {21, 22}) {
        it.callsign = fmt::format("SWR{}_", halfHour);
        stands[0].realStays[flownHexid] = {flownHexid, 2, 20, 3};
        EXPECT_TRUE(lt_addStandOption(1, it, false, {2, halfHour}, true, true));
    }
    EXPECT_EQ(learned.cs2 + ' ' + gf_bitset2hours(learned.hours), "SWR21 20,21,22");
    it.regcode = it.callsign = "";
    EXPECT_FALSE(lt_addStandOption(1, it, false, {2, 30}, false, true)) << "nobody";
}

TEST_F(Learning, AStoryWithoutAStand) {
    for (int reason = 0; reason < 8; ++reason) {
        fresh({25, 25});
        LiveAc& it = aircraft(Stage::flying);
        it.onGround = false;
        it.predictLeft = -1;  // the stream has ended
        it.stream().front().time = engineTick;
        gf_storeNow({1, 0});
        LEARN_SOFT.value = reason != 0;
        learningAllowed = reason != 1;
        if (reason == 2) parkAirport = {};
        if (reason == 3) it.simLat += 5.01 / 60;
        it.agl = reason == 4 ? 2500 : 2499;
        it.standId = reason == 5;
        if (reason == 6)  // surely elsewhere
            stands[1].options = {{.reg = "HB-1", .hours = 1ull << 47, .optionId = 1, .day = 1, .real = true}};
        updateLiveAc(it);
        EXPECT_EQ(updatesCount, reason == 7 ? 1 : 0) << reason;
    }
    EXPECT_EQ(optionsOf(stands[0]), "1 0 soft; ");
}

TEST_F(Learning, ASoftStayGoesOnAndIsLimited) {
    fresh({25, 25, 25});
    LiveAc& it = aircraft(Stage::taxi);
    it.agl = 100;
    int step = 0;
    for (const WeekSlot now : {WeekSlot{7, 45}, {7, 45}, {7, 47}, {1, 2}, {1, 4}, {2, 0}, {2, 2}, {2, 3}}) {
        gf_storeNow(now);
        if (step == 5) {  // over one more midnight, and away; then a new fact after one and a half hours
            stands[0].softStays.at(flownHexid).halfHour = 45;
            lf_learnSoft(it, false);
            EXPECT_TRUE(stands[0].softStays.empty());
        } else {
            lf_startDeparture(it);
        }
        EXPECT_EQ(updatesCount, (std::array{1, 1, 2, 3, 4, 5, 5, 6}.at(step++))) << step;
    }
    EXPECT_EQ(optionsOf(stands[0]), "7 45,46,47 soft; 1 0,1,2,3,4,45,46,47 soft; 2 0,3 soft; ");
}

TEST_F(Learning, TheStandThatFits) {
    enum Kind { gate = 0, ramp = 1, cargo = 2, heli = 4 };
    for (const auto& [category, airline, halfSpan, list, expected] : std::vector<
             std::tuple<AcCategory, std::string, double, std::vector<std::pair<int, double>>, uint32_t>>{
             {Large, "SWR", 17, {{gate, 60}, {gate, 30}, {gate, 18}, {ramp, 17}}, 3},
             {Large, "SWR", 17, {{gate, 15.1}, {gate, 15.3}}, 2},
             {Large, "SWR", 30, {{ramp, 17}, {gate, 17}}, 2},
             {HighPerf, "SWR", 7, {{cargo, 17}, {ramp | cargo, 17}, {ramp, 8}}, 3},
             {Large, "PVT", 17, {{gate, 17}, {ramp, 30}}, 2},
             {Light, "SWR", 6, {{gate, 17}, {ramp | heli, 8}}, 0},
             {Large, "FDX", 17, {{gate, 17}, {cargo | heli, 17}, {cargo, 15}}, 3},
             {Large, "FDX", 17, {{heli, 17}, {ramp, 17}}, 2},
             {Rotorcraft, "PVT", 8, {{heli, 5}, {ramp, 8}, {gate, 8}}, 2},
             {Heavy, "SWR", 30, {{gate, 41}, {gate, 30}}, 2},
             {Heavy, "SWR", 30, {{gate, 40}, {gate, 30}}, 1}}) {
        fresh();
        for (const auto& [kind, radius] : list) {
            Stand& stand = addStand("S", standHome, radius);
            stand.ramp = kind & ramp;
            stand.cargo = kind & cargo;
            stand.heli = kind & heli;
        }
        LiveAc& it = aircraft(Stage::taxi);
        it.category = category;
        it.airline = airline;
        it.cargo = airline == "FDX";
        it.halfSpanNm = halfSpan / metersPerNm;
        EXPECT_EQ(lf_softStand({1, 47}, it, true), expected) << airline << list.size() << halfSpan;
    }
    // Its own stand goes before the best one; a full airport has none, but a small one half an hour later.
    fresh({31, 17, 17});
    const LiveAc& it = aircraft(Stage::taxi);
    StandOption option{.airl = "SWR", .type = "A320", .optionId = 1, .day = 1, .real = true};
    stands[0].options = {option};
    EXPECT_EQ(lf_softStand({1, 47}, it, true), 1u);
    option.hours = 1ull << 47;
    for (Stand& stand : stands) stand.options = {option};
    EXPECT_EQ(lf_softStand({1, 47}, it, false), 0u);
    EXPECT_NE(lf_softStand({1, 47}, it, true), 0u);
    while (stands.size() < 11) addStand("S", standHome).options = {option};
    EXPECT_EQ(lf_softStand({1, 47}, it, true), 0u);
}

TEST_F(Learning, EachVisitKnowsMoreThanTheLast) {
    for (const int32_t day : {1, 2, 3}) {
        readFiles();
        EXPECT_EQ(qualityFactors.soft > 0, day > 1);
        gf_storeNow({day, 20});
        // One appears on a stand, without an airline; another one goes and has been on none.
        LiveAc& it = aircraft(Stage::birth);
        it.simState = SimObjectState::buffer;
        it.airline.clear();
        it.title = "A320 SWR";
        it.stream().assign(2, groundReport({52, 4}, 0));
        it.stream()[1].stopped = true;
        spawnLiveAc(it);
        EXPECT_TRUE(!lf_rateOk({day, 22}, flownHexid) && lf_rateOk({day, 23}, flownHexid));
        LiveAc& other = aircraft(Stage::taxi, 20001);
        other.simLat = 52;
        other.simLon = 4;
        lf_learnSoft(other, true);
        lf_closeParkAirport();
        EXPECT_TRUE(message().ends_with(" '" + learnedName + "' saved with 2 updates ")) << message();
    }
    readFiles();
    EXPECT_EQ(optionsOf(stands[0]) + optionsOf(stands[1]),
              "0 4 real; 1 20 real; 2 20 real; 3 20 real; 1 20 soft; 2 20 soft; 3 20 soft; ");
    std::filesystem::remove(learnedName);
    lf_closeParkAirport();
    EXPECT_FALSE(std::filesystem::exists(learnedName)) << "a visit that taught nothing";
}

TEST_F(Learning, WhatIsSavedAndWhatNot) {
    readFiles();
    addStand("M1", standHome).manual = true;
    addStand("R1", standHome).radiusChanged = true;
    stands[1].options = {{.reg = "REGFAKE1", .optionId = 1}, {.reg = "SPENT", .optionId = 0}};
    stands[3].options = {{.reg = "MINE", .optionId = 1}};
    updatesCount = 1;
    g_parkingChanged = true;
    const auto saved = [] {
        lf_saveLearned();
        std::string all;
        for (const char* each : {"\"A1\"", "\"M1\"", "\"R1\"", "ARCH", "REGFAKE", "SPENT", "MINE", "Qf_real"})
            if (readFile(learnedName).find(each) != std::string::npos) all += each + std::string(" ");
        return all;
    };
    EXPECT_EQ(saved(), "\"M1\" \"R1\" MINE ");
    EXPECT_TRUE(message().ends_with("saved with 1 update and one or more parameter changes")) << message();
    EXPECT_TRUE(updatesCount == 0 && !g_parkingChanged && logHas("saved with 1 update and"));
    airportFile.handmade = true;
    EXPECT_EQ(saved(), "\"A1\" \"M1\" \"R1\" ARCH MINE Qf_real ");
#ifndef _WIN32
    // A limit on the size of files stands for the full disk. Windows has no such limit.
    const std::string old = readFile(learnedName);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{100, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    addStand("new", standHome);
    lf_saveLearned();
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_TRUE(message().ends_with(fmt::format(" saving '{}' did not succeed", learnedName))) << message();
    EXPECT_EQ(readFile(learnedName), old);
#endif
}

}  // namespace
}  // namespace skl::test
