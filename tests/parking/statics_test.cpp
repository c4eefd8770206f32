// Static aircraft from the plan into the simulator and out again.
#include <tuple>

#include "liveries/catalogue.h"
#include "panel/controls.h"
#include "panel/requests.h"
#include "tests/parking/statics_world.h"

namespace skl::test {

namespace {

TEST_F(StaticsTest, TheCallsignThatItShows) {
    const struct {
        bool stay;
        const char *cs, *cs2, *shown;
    } cases[] = {{true, "A1", "B2", "A1*"}, {false, "A1", "B2", "B2*"}, {false, "A1", "", "A1*"},
                 {true, "", "B2", "B2*"},   {true, "A1__", "", "A1*"},  {true, "A1*", "", "A1*"},
                 {true, "_", "B2", "B2*"},  {false, "A1", "__", "A1*"}};
    for (const auto& c : cases) {
        const Candidate candidate{.cs = c.cs, .cs2 = c.cs2, .stayFlag = c.stay};
        EXPECT_EQ(lf_detcs(candidate), c.shown) << c.cs << ' ' << c.cs2;
    }
    EXPECT_FALSE(logHas("callsign is empty.."));
    EXPECT_EQ(lf_detcs({.cs = "__"}), "");
    EXPECT_TRUE(logHas("===> lf_detcs callsign is empty.."));
}

TEST_F(StaticsTest, WhoeverHasComeSinceThePlanKeepsTheStand) {
    row(3);
    neighbours();
    const struct {
        const char* what;
        std::function<void()> come;
        const char* line;
        uint32_t sid = 1;
    } cases[] = {
        {"nobody", [] {}, ""},
        {"taxiing", [] { parkLive(1, Stage::taxi); }, ""},
        {"two stands on", [] { parkLive(3); }, ""},
        {"driving in", [] { parkLive(1, Stage::parking); }, "live aircraft KLM1 standing here"},
        {"beside", [] { parkLive(2); }, "live aircraft KLM2 is adjacent at S2"},
        {"a static", [] { staticAcs = {standing(1, "X", State::adding2sim)}; },
         "static aircraft X* is adjacent at S1"},
        {"a static beside", [] { staticAcs = {standing(2, "X")}; }, "static aircraft X* is adjacent at S2"},
        {"no such stand", [] {}, "===> stand with id 9 not found", 9},
    };
    for (const auto& c : cases) {
        gf_resetEngine();
        c.come();
        candidates = {planned(3, "LATER"), planned(c.sid, "A1")};
        lf_addNextStatic();
        EXPECT_EQ(creationQueueStatic.size(), *c.line ? 0u : 1u) << c.what;
        EXPECT_TRUE(logHas(c.line)) << c.what;
    }
    EXPECT_EQ(logCount("S1      : no static parking for A1, "), 4);
    EXPECT_EQ(logCount(", possibly colliding"), 3);
    gf_resetEngine();
    candidates = {{.sid = 1, .airl = "ZZZ", .type = "A320", .cs = "A1"}};
    lf_addNextStatic();
    EXPECT_TRUE(staticAcs.empty() && creationQueueStatic.empty()) << "no livery";
}

TEST_F(StaticsTest, IntoTheSimulatorAndOut) {
    row(4);
    staticCounter = 9998;
    candidates = {planned(4, "LATE"), planned(3, "NOTITLE"), planned(2, "", 21), planned(1, "A1_")};
    candidates[2].reg.clear();
    lf_addNextStatic();
    const CreateRequest& asked = creationQueueStatic.at(0);
    EXPECT_EQ(fmt::format("{} {} {}", asked.callsign, asked.title, asked.hexid), "A1* A320 BAW 9999");
    EXPECT_NEAR(asked.position.heading, 57.2958, 1e-4);
    EXPECT_TRUE(asked.position.onGround == 1 && asked.position.lat == stands[0].lat);
    sim.refused = {"NOTITLE*"};
    sim.run(1);
    EXPECT_EQ(candidates.size(), 2u) << "one in 50 ticks";
    settle();
    EXPECT_EQ(shown(), "A1*:1000:active BAW0*:1001:active LATE*:1002:active ");
    EXPECT_TRUE(staticAcs[1].parkedAt == (WeekSlot{7, 47}));
    EXPECT_TRUE(staticAcs[1].category == AcCategory::Large && staticAcs[1].halfSpanNm == 0.0097);
    EXPECT_EQ(lf_countStatics(true), 3u);
    EXPECT_FLOAT_EQ(g_panel.averageFitStatic, 21 / 6.0f + 0.5f);
    EXPECT_TRUE(logHas("S2      : BAW0*    parked"));
    EXPECT_TRUE(gf_isUncreatable("A320 BAW"));
    removeAircraftFromSim(staticAcs[0]);
    sim.run(30);
    EXPECT_EQ(shown(), "BAW0*:1001:active LATE*:1002:active ");
    // Removed before its object stands: it still goes.
    gf_clearUncreatable();
    candidates = {planned(1, "A1")};
    sim.run(120);
    removeAircraftFromSim(staticAcs.back());
    sim.run(300);
    EXPECT_TRUE(staticAcs.size() == 2 && sim.objects.size() == 2);
}

TEST_F(StaticsTest, ASimulatorThatDoesNotAnswer) {
    row(2);
    candidates = {planned(1, "A1")};
    sim.silent = true;
    sim.run(5900);
    EXPECT_EQ(staticAcs.size(), 1u);
    sim.run(300);
    EXPECT_TRUE(staticAcs.empty());
    EXPECT_TRUE(logHas("no answer of the simulator for 60 seconds, A1*"));
    gf_postSimMsg({.objectId = 1000, .hexid = 1, .kind = msgStaticIdentified});
    sim.run(30);
    EXPECT_TRUE(sim.objects.empty()) << "it came too late";
    // Its removal is lost: nothing is placed for 30 s, and after 60 s the record goes.
    staticAcs = {standing(2, "GONE", State::removingfromsim)};
    candidates = {planned(1, "A2")};
    sim.run(2990);
    EXPECT_EQ(candidates.size(), 1u);
    sim.run(100);
    EXPECT_EQ(candidates.size(), 0u);
    sim.silent = false;
    sim.run(3100);
    EXPECT_EQ(shown().substr(0, 4), "A2*:");
    EXPECT_TRUE(logHas("no removal of the simulator for 60 seconds, GONE*"));
}

TEST_F(StaticsTest, OneAirportAfterTheOther) {
    row(2);
    candidates = {planned(2, "A2"), planned(1, "A1")};
    settle();
    lf_announceStatics(true);
    EXPECT_EQ(g_panel.statusText, "Calculating static parked aircraft ...");
    candidates = {planned(2, "B2")};
    removalList = {{"X", 1}};
    loadPending = g_renewRequested = true;
    lf_leaveParkAirport();
    EXPECT_TRUE(candidates.empty() && removalList.empty() && !loadPending && !g_renewRequested);
    EXPECT_TRUE(staticAcs[0].standId == 0 && staticAcs[1].standId == 0)
        << "nobody's number at the next airport";
    lf_lockStatics(false);
    EXPECT_FALSE(flushStaticButton.enabled || parking_percentage.enabled) << "there is no airport";
    parkAirport = rotterdam;
    row(2);
    candidates = {planned(1, "C1")};
    lf_addNextStatic();
    EXPECT_EQ(candidates.size(), 1u) << "the others leave first";
    sim.run(400);
    EXPECT_EQ(shown(), "C1*:1002:active ");
}

TEST_F(StaticsTest, MadeUpAircraftFitTheirStands) {
    wingspanHalfNm = {
        {"EC35", 0.003}, {"B763", 0.0129}, {"B738", 0.00966}, {"C172", 0.003}, {"A320", 0.0097}};
    categoryAvgHalfNm[0] = 1;  // nothing else fits
    const auto gate = [](double meters) { return Stand{.radius = meters / metersPerNm}; };
    Stand heli = gate(1), cargo = gate(24), ramp = gate(6);
    heli.heli = cargo.cargo = ramp.ramp = true;
    const std::tuple<const char*, Stand, const char*> cases[] = {
        {"EHAM", heli, "PVT EC35"},     {"EHAM", cargo, "FDX B763"},    {"EHAM", ramp, "PVT C172"},
        {"EHAM", gate(18), "SAS A320"}, {"LFPG", gate(1), "ZZZ B738"},  {"EHAM", gate(15), ""},
        {"EHAM", gate(40), ""},         {"ZBAA", gate(18), "CSA A320"}, {"KJFK", gate(18), "FFT A320"},
        {"RJTT", gate(18), "JAL B738"}, {"", gate(18), "ZZZ B738"},     {"CYYZ", gate(18), ""}};
    PARK_FAKE.value = true;
    gf_storeNow({3, 47});
    for (const auto& [code, stand, expected] : cases) {
        std::vector<Stand> list{stand, heli};
        lf_addFakeOptions(code, list);
        const bool any = !list[0].options.empty();
        const StandOption& made = list[any ? 0 : 1].options.at(0);
        EXPECT_EQ(any ? made.airl + ' ' + made.type : "", expected) << code << stand.radius;
        EXPECT_EQ(made.reg + made.cs, "REGFAKE1FAKE1");
        EXPECT_TRUE(made.fromArchive && !made.real && made.optionId == 1);
        EXPECT_TRUE(made.day == 3 && made.hours == uint64_t{1} << 47);
    }
    PARK_FAKE.value = false;
    std::vector<Stand> none{heli};
    lf_addFakeOptions("EHAM", none);
    EXPECT_TRUE(none[0].options.empty());
}

}  // namespace

}  // namespace skl::test
