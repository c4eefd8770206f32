// Which aircraft of the history is planned on which stand: what is due, what is around already, and how many.
#include "parking/stand_fit.h"

#include <fmt/format.h>

#include <set>

#include "core/parameters.h"
#include "core/random.h"
#include "engine/conflicts.h"
#include "feed/traffic_reader.h"
#include "liveries/reference_db.h"
#include "panel/panel_state.h"
#include "panel/traffic_range.h"
#include "parking/statics.h"
#include "simlink/user_aircraft.h"
#include "tests/support/stand_field.h"

namespace skl::test {

namespace {

constexpr uint64_t allDay = (uint64_t{1} << 48) - 1;
constexpr WeekSlot monday2{1, 2};

uint64_t bit(int halfHour) {
    return uint64_t{1} << halfHour;
}

class StandFitTest : public StandTest {
  protected:
    void SetUp() override {
        StandTest::SetUp();
        gf_clearDbase();
        RANDOM.value = false;
        fresh();
    }
    static void fresh() {
        anew();
        gf_resetStandFit();
        gf_resetStatics();
        gf_storeNow(monday2);
    }
    /// A real option of a flight with a registration of its own, "R" and its callsign.
    static StandOption& addOption(Stand& stand, const std::string& cs, uint64_t hours = allDay) {
        StandOption option{.airl = "KLM", .type = "A320", .reg = "R" + cs, .cs = cs, .cs2 = cs + "B"};
        option.hours = hours;
        option.optionId = static_cast<int32_t>(stand.options.size() + 1);
        option.day = 1;
        option.real = true;
        return stand.options.emplace_back(option);
    }
    /// Stands far from each other, each named as its option.
    static void standsWith(const std::string& flights, bool real = true, uint64_t hours = allDay) {
        for (const char flight : flights) {
            const LaLo place = away(standHome, 90, 100.0 * static_cast<double>(stands.size()));
            addOption(addStand({flight}, place), {flight}, hours).real = real;
        }
    }
    static StaticAc& standing(const StandOption& option, uint32_t sid) {
        StaticAc& parked = staticAcs.emplace_back();
        parked.airline = option.airl;
        parked.model = option.type;
        parked.coupledIn = option.cs;
        parked.callsign = option.cs + "*";
        parked.regcode = option.reg;
        parked.standId = sid;
        parked.simState = SimObjectState::active;
        return parked;
    }
    static std::string text(const std::vector<Candidate>& plan) {
        std::string all;
        for (const Candidate& each : plan) all += fmt::format("{}@{} ", each.cs, each.offset);
        return all;
    }
    static std::string search(int32_t offset = 0) {
        std::vector<Candidate> found;
        lf_searchStands(StandSearch(gf_weekSlotNow(), true), offset, found);
        return text(found);
    }
    /// What a pass finds for the stand of A, beside which B is held free, after a change.
    template <class Change>
    static std::string after(const Change& change, int32_t offset = 0) {
        fresh();
        standsWith("AB");
        stands[1].reserved = true;
        change(stands[0], stands[0].options[0]);
        return search(offset);
    }
};

TEST_F(StandFitTest, TheWeekIsARing) {
    for (int32_t slot = 0; slot < 336; ++slot)
        for (int32_t back = 0; back < 48; ++back) {
            WeekSlot at = lf_slotBack({slot / 48 + 1, slot % 48}, back);
            ASSERT_EQ((at.day - 1) * 48 + at.halfHour, (slot + 336 - back) % 336);
            ASSERT_EQ(lf_slotAge(at, {slot / 48 + 1, slot % 48}), back);
            for (int32_t i = 0; i < back; ++i) at = lf_slotNext(at);
            ASSERT_EQ(at, (WeekSlot{slot / 48 + 1, slot % 48}));
        }
}

TEST_F(StandFitTest, HowManyAreWanted) {
    const struct {
        size_t stands;
        int percent, custom, most, wanted, shown;
    } cases[] = {{10, 30, -1, 0, 0, 0},   {10, 0, -1, 500, 0, 0},  {10, 0, 40, 500, 4, 40},
                 {10, 90, 0, 500, 0, 0},  {0, 30, -1, 500, 1, 0},  {3, 30, -1, 500, 1, 33},
                 {3, 50, -1, 500, 2, 67}, {4, 30, -1, 500, 1, 25}, {250, 30, -1, 50, 50, 20},
                 {5, 50, -1, 500, 3, 60}};
    for (const auto& each : cases) {
        stands.assign(each.stands, {});
        parking_percentage.value = each.percent;
        CUSTOM_PARKING_PERCENTAGE.value = each.custom;
        MAX_PARK_SEL.value = each.most;
        EXPECT_EQ(lf_wantedStatics(), each.wanted) << each.stands << " stands, " << each.percent;
        EXPECT_EQ(g_panel.maxParkPercent, each.shown);
    }
}

TEST_F(StandFitTest, WhatIsDue) {
    using S = Stand;
    using O = StandOption;
    EXPECT_EQ(after([](S&, O&) {}), "A@0 ");
    EXPECT_EQ(after([](S&, O& it) { it.optionId = 0; }), "");
    EXPECT_EQ(after([](S&, O& it) { it.real = false; }), "");
    EXPECT_EQ(after([](S&, O& it) { it.hours = bit(1); }), "");
    EXPECT_EQ(after([](S&, O& it) { it.hours = bit(1); }, 1), "A@1 ");
    EXPECT_EQ(after([](S&, O& it) { it.hours = bit(45), it.day = 7; }, 5), "A@5 ");
    EXPECT_EQ(after([](S&, O& it) { it.day = 4; }), "");
    WEEK.value = true;
    EXPECT_EQ(after([](S&, O& it) { it.day = 4; }), "A@0 ");
    EXPECT_EQ(after([](S&, O& it) { it.hours = bit(3); }), "");
    for (bool Stand::*flag : {&S::filled, &S::reserved, &S::blocked, &S::heli}) {
        HELICOPTERS.value = false;
        EXPECT_EQ(after([flag](S& stand, O&) { stand.*flag = true; }), "");
        HELICOPTERS.value = true;
        EXPECT_EQ(search(), flag == &S::heli ? "A@0 " : "");
    }
    const auto beside = [](S& stand, O&) {
        stand.adjacent = {2};
        standing(stands[1].options[0], 2).standPos = away(standHome, 0, 34.01);
    };
    wingspanHalfNm["A320"] = 17.00 / metersPerNm;
    EXPECT_EQ(after(beside), "A@0 ");
    wingspanHalfNm["A320"] = 17.01 / metersPerNm;
    EXPECT_EQ(after(beside), "");
    staticAcs[0].simState = SimObjectState::removingfromsim;
    EXPECT_EQ(search(), "A@0 ");
}

TEST_F(StandFitTest, WhatIsAroundAlready) {
    const auto used = [](void (*around)(StandOption& a, StandOption& b)) {
        const bool found = !after([=](Stand&, StandOption& a) { around(a, stands[1].options[0]); }).empty();
        EXPECT_NE(found, stands[0].options[0].optionId == 0) << "spent until the next renewal";
        return !found;
    };
    using O = StandOption;
    EXPECT_TRUE(used([](O&, O&) { seenCallsigns = {"A"}; }));
    EXPECT_TRUE(used([](O&, O&) { seenCallsigns = {"AB_"}; }));
    EXPECT_TRUE(used([](O&, O&) { candidates = {{.cs = "AB", .reg = "R"}}; }));
    EXPECT_TRUE(used([](O&, O&) { candidates = {{.cs = "B", .reg = "RA"}}; }));
    EXPECT_FALSE(used([](O&, O&) { candidates = {{.cs = "B", .cs2 = "A", .reg = "RB"}}; }));
    EXPECT_FALSE(used([](O& a, O&) { a.cs2 = "", seenCallsigns = {"", "_", "B"}; }));
    EXPECT_TRUE(used([](O& a, O&) { standing(a, 2).regcode = "R"; }));
    EXPECT_TRUE(used([](O&, O& b) { standing(b, 2).regcode = "RA"; }));
    EXPECT_FALSE(used([](O& a, O&) { standing(a, 1); })) << "it stands here";
    EXPECT_TRUE(used([](O&, O&) { liveParkedList = {{"AB", 5, 2}}; }));
    EXPECT_TRUE(used([](O& a, O&) { a.cs2 = "", candidates = {{.reg = "RB"}}; })) << "empty is as empty";
}

TEST_F(StandFitTest, OneAirframeOneStand) {
    standsWith("ABCDE");
    for (Stand& stand : stands) stand.options[0].reg = "PH-ONE";
    addOption(stands[1], "F");
    addOption(stands[3], "G");
    stands[1].adjacent = {4};
    EXPECT_EQ(search(), "A@0 ");
    EXPECT_EQ(search(1), "F@1 ") << "the next option in the next pass, and nobody beside it";
    EXPECT_EQ(search(2), "");
}

TEST_F(StandFitTest, TheLastHalfHourOfAStay) {
    const auto stays = [](WeekSlot now, uint64_t hours, uint64_t tomorrow, const std::string& cs2) {
        fresh();
        standsWith("A", true, hours);
        stands[0].options[0].day = now.day;
        stands[0].options[0].cs2 = cs2;
        addOption(stands[0], "A", tomorrow);
        std::vector<Candidate> found;
        lf_searchStands(StandSearch(now, true), 0, found);
        return found.at(0).stayFlag;
    };
    EXPECT_TRUE(stays({1, 14}, bit(14) | bit(15), 0, "B"));
    EXPECT_FALSE(stays({1, 15}, bit(14) | bit(15), 0, "B"));
    EXPECT_TRUE(stays({1, 15}, bit(15), 0, ""));
    EXPECT_TRUE(stays({7, 47}, bit(47), bit(0), "B"));
    EXPECT_FALSE(stays({7, 47}, bit(47) | bit(0), bit(1), "B"));
}

TEST_F(StandFitTest, AStandKeepsItsAircraftWhateverTheDice) {
    std::set<std::string> results[3];  // an empty stand, one with D, one with an aircraft that is not due
    RANDOM.value = true;
    for (uint32_t seed = 0; seed < 120; ++seed) {
        fresh();
        gf_seedRandom(seed);
        standsWith("A");
        for (const char* cs : {"B", "C", "D_"}) addOption(stands[0], cs);
        addOption(stands[0], "E", bit(40));
        if (seed % 3 == 1) standing(stands[0].options[3], 1).callsign = "D*";
        if (seed % 3 == 2) standing(stands[0].options[4], 1);
        results[seed % 3].insert(search());
    }
    const std::set<std::string> all{"A@0 ", "B@0 ", "C@0 ", "D_@0 "};
    EXPECT_EQ(results[0], all);
    EXPECT_EQ(results[1], std::set<std::string>{"D_@0 "});
    EXPECT_EQ(results[2], all);
}

TEST_F(StandFitTest, BetterFitsAreTakenWhole) {
    const auto fill = [](int64_t wanted, int64_t keep, int32_t maxFit) {
        fresh();
        MAX_FIT.value = maxFit;
        standsWith("A", true, bit(1));
        standsWith("BC", true, bit(2));
        standsWith("DEF", true, bit(0));
        standsWith("ST", false, bit(2));
        lf_fillStands(monday2, wanted, keep);
        return fmt::format("{}/ {} {} {}", text(candidates), lastFitReal, lastFitSoft,
                           g_panel.softMark.load());
    };
    EXPECT_EQ(fill(5, 0, 47), "B@0 C@0 A@1 D@2 E@2 / 2 -1 false");
    EXPECT_EQ(fill(5, 4, 47), "B@0 / 2 -1 false") << "the filled stands, not those kept, end the search";
    EXPECT_EQ(fill(2, 5, 47), "/ 0 -1 false");
    EXPECT_EQ(fill(4, 0, 0), "B@0 C@0 S@0 T@0 / 1 0 true");
    EXPECT_TRUE(logHas("2 real positions found, Max fit=0.5 hours, day 1, hh:2 or 1.5 hrs, fit: 1 hour"));
    EXPECT_TRUE(logHas("2 soft positions found, Max fit=0.5 hours, day 1, hh:2 or 1.5 hrs, fit: 0.5 hour"));
    EXPECT_EQ(fill(9, 0, 47), "B@0 C@0 A@1 D@2 E@2 F@2 S@0 T@0 / 48 48 true");
    PARK_SOFT.value = false;
    EXPECT_EQ(fill(9, 0, 1), "B@0 C@0 A@1 / 2 -1 false");
    PARK_FAKE.value = true;
    EXPECT_EQ(fill(4, 0, 1), "B@0 C@0 A@1 S@0 / 2 0 true");
    RANDOM.value = true;
    std::set<std::string> cuts;
    for (int i = 0; i < 40; ++i) cuts.insert(fill(4, 0, 47).substr(0, 16));
    EXPECT_EQ(cuts, (std::set<std::string>{"B@0 C@0 A@1 D@2 ", "B@0 C@0 A@1 E@2 ", "B@0 C@0 A@1 F@2 "}));
}

TEST_F(StandFitTest, TheFirstFill) {
    const auto fillWhileHearing = [](const char* callsign) {
        lf_announceStatics(true);
        lf_trafficReader().processText(
            fmt::format("RTTFC,4921633,51,1,9000,0,0,137,280,{},A320,,,,1,,,,0,-1,310,,,,,,,,A3", callsign));
        lf_firstFill();
    };
    rangeNm = 40;
    gf_setFilterPos(standHome);
    parking_percentage.value = 100;
    standsWith("A", true, bit(1));
    standsWith("BCD");
    stands[3].filled = stands[0].blocked = true;
    reservedStand = "B";
    engineUser = {.lat = stands[2].lat, .lon = stands[2].lon};
    userOnGround = true;
    fillWhileHearing("X");
    EXPECT_EQ(text(candidates), "A@1 D@0 ") << "the best fit at the end; B and C are held free";
    EXPECT_TRUE(staticsLock);
    EXPECT_TRUE(g_panel.statusText.starts_with("Making changes to airport parking parameters is disabled"));
    EXPECT_TRUE(logHas("(utc) It is day 1 (Mon), 1.5 hours"));
    EXPECT_TRUE(logHas("2 positions (50% vs wanted 100%, with Max fit=24 hours)"));
    stands[0].options.clear();
    fillWhileHearing("DB");
    EXPECT_EQ(seenCallsigns, StringSet{"DB"});
    EXPECT_TRUE(logHas("no parking positions found"));
    EXPECT_FALSE(staticsLock || !candidates.empty());
}

TEST_F(StandFitTest, TheTwoCallsignsOfAStay) {
    const auto coupled = [](const std::string& callsign, AcCategory category, int32_t seenAt, int32_t now) {
        fresh();
        standsWith("SNAA", false, bit(seenAt));
        stands[0].options[0].optionId = 0;
        stands[1].options[0].cs2 = "";
        stands[3].options[0].cs2 = "second";
        LiveAc record;
        record.airline = "KLM";
        record.callsign = callsign;
        record.category = category;
        lf_searchForCoupledCsAroundThisTime({1, now}, record);
        return record.coupledIn + record.coupledOut;
    };
    EXPECT_EQ(coupled("A", AcCategory::Large, 30, 20), "AAB");
    EXPECT_EQ(coupled("AB_", AcCategory::Large, 10, 20), "AAB");
    EXPECT_EQ(coupled("A", AcCategory::Large, 31, 20), "");
    EXPECT_EQ(coupled("A", AcCategory::Heavy, 6, 20), "AAB");
    EXPECT_EQ(coupled("A", AcCategory::Heavy, 5, 20), "");
    EXPECT_EQ(coupled("A", AcCategory::Large, 47, 1), "") << "not over midnight";
    for (const char* other : {"A__", "S", "N"}) EXPECT_EQ(coupled(other, AcCategory::Large, 20, 20), "");
    LiveAc& newcomer = addFlying(groundReport(standHome, 8));
    newcomer.airline = "KLM";
    for (const auto& [callsign, next] : {std::pair{"A", "AB"}, {"second", "AB"}}) {
        newcomer.callsign = callsign;
        gf_storeNow({1, 20});
        newAcList = {flownHexid};
        lf_serveNewAcList();
        EXPECT_EQ(newcomer.coupledOut, next) << "it is searched once";
    }
}

}  // namespace

}  // namespace skl::test
