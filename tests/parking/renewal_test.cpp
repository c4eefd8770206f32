// What stays, goes and comes at a renewal, and when there is one.
#include "core/messages.h"
#include "core/parameters.h"
#include "core/random.h"
#include "core/run_sequence.h"
#include "panel/controls.h"
#include "panel/requests.h"
#include "tests/parking/statics_world.h"
#include "tests/support/stepped_world.h"

namespace skl::test {

namespace {

class RenewalTest : public StaticsTest {};

TEST_F(RenewalTest, WhatStaysAtARenewal) {
    const struct {
        const char* what;
        std::function<void()> given;
        const char* outcome;  // kept, to be removed, left in the plan
    } cases[] = {
        {"not due", [] {}, "0 1 0"},
        {"flying", [] { candidates = {planned(1, "A1")}, seenCallsigns = {"A1"}; }, "0 1 1"},
        {"the same", [] { candidates = {planned(1, "A1_", 30)}; }, "1 0 0"},
        {"another, later", [] { candidates = {planned(1, "B1", 9)}; }, "0 1 1"},
        {"another, as old", [] { candidates = {planned(1, "B1", 10)}; }, "1 0 0"},
        {"beside, later", [] { candidates = {planned(2, "B1", 9)}; }, "0 1 1"},
        {"beside, older", [] { candidates = {planned(2, "B1", 11)}; }, "1 0 0"},
        {"beside, room", [] { candidates = {planned(2, "B1", 11)}, stands[1].lat += 1; }, "0 1 1"},
        {"not adjacent", [] { candidates = {planned(3, "B1", 9)}; }, "0 1 1"},
        {"due now", [] { stands[0].options = {option("G-A1", 1u << 2)}; }, "1 0 0"},
        {"spent", [] { (stands[0].options = {option("G-A1", 4)})[0].optionId = 0; }, "0 1 0"},
        {"due before", [] { seenSunday(44); }, "1 0 0"},
        {"too long ago", [] { seenSunday(43); }, "0 1 0"},
        {"gone stand", [] { staticAcs[0].standId = 9; }, "0 1 0"},
    };
    for (const auto& c : cases) {
        stands.clear();
        row(3);
        neighbours();
        stands[1].lat = stands[0].lat + 0.0003;  // nearer than two half spans of 18 m
        gf_storeNow({7, 40});
        staticAcs = {standing(1, "A1"), standing(3, "NOT", State::adding2sim)};
        gf_storeNow({1, 2});
        keptStatics.clear();
        removalList.clear();
        gf_resetStandFit();
        c.given();
        lf_sortStatics({1, 2});
        EXPECT_EQ(fmt::format("{} {} {}", keptStatics.size(), removalList.size(), candidates.size()),
                  c.outcome)
            << c.what;
    }
}

TEST_F(RenewalTest, ARenewalOfTheSameIsStill) {
    for (const bool random : {false, true}) {
        RANDOM.value = random;
        gf_resetEngine();
        sim = {};
        stands.clear();
        row(10);
        for (Stand& stand : stands)
            for (int32_t day = 1; day <= 7; ++day)
                for (const char* kind : {"X", "Y"})
                    stand.options.push_back(option(kind + stand.id, allDay, day));
        lf_renewParking();
        settle();
        EXPECT_EQ(sim.created, 10);
        const std::string before = shown();
        for (int i = 0; i < 72; ++i) {
            if (i % 3 != 0) gf_storeNow(lf_slotNext(gf_weekSlotNow()));
            lf_renewParking();
            EXPECT_TRUE(candidates.empty() && removalQueue.empty() && removalList.empty());
        }
        EXPECT_EQ(shown(), before);
    }
}

TEST_F(RenewalTest, TheLastHalfHourShowsTheNextFlight) {
    row(2);
    stands[0].options = {option("G-A", 0b11 << 10), option("G-M", uint64_t{1} << 47, 1), option("G-M", 1, 2)};
    stands[0].options[0].cs2 = stands[0].options[1].cs2 = stands[0].options[2].cs2 = "B9";
    const struct {
        WeekSlot now;
        const char* shown;
        int objects;
    } steps[] = {{{1, 10}, "G-A1*", 1}, {{1, 10}, "G-A1*", 1}, {{1, 11}, "B9*", 2},
                 {{1, 11}, "B9*", 2},   {{1, 12}, "B9*", 2},   {{1, 13}, "", 2},
                 {{1, 47}, "G-M1*", 3}, {{1, 47}, "G-M1*", 3}, {{2, 0}, "B9*", 4}};
    for (const auto& step : steps) {
        gf_storeNow(step.now);
        lf_renewParking();
        settle();
        EXPECT_EQ(staticAcs.empty() ? "" : staticAcs.at(0).callsign, step.shown) << step.now.halfHour;
        EXPECT_EQ(sim.created, step.objects) << step.now.halfHour;
    }
}

TEST_F(RenewalTest, WithoutAnotherCallsignToShowItStays) {
    const struct {
        const char *cs, *cs2, *shown;
    } cases[] = {{"A1", "A1", "A1*"}, {"A1", "A1_", "A1*"}, {"A1", "__", "A1*"}, {"", "B9", "BAW1*"}};
    for (const auto& c : cases) {
        gf_resetEngine();
        gf_resetStatics();
        sim = {};
        stands.clear();
        row(1);
        stands[0].options = {option("G-A", 0b11 << 10)};
        stands[0].options[0].cs = c.cs;
        stands[0].options[0].cs2 = c.cs2;
        for (const int32_t halfHour : {10, 11, 11}) {
            gf_storeNow({1, halfHour});
            lf_renewParking();
            settle();
        }
        EXPECT_EQ(shown(), fmt::format("{}:1000:active ", c.shown)) << c.cs << ':' << c.cs2;
    }
}

TEST_F(RenewalTest, ANewCallsignDoesNotCostTheStand) {
    row(2);
    stands[0].options = {option("G-A1", 0b11 << 10)};
    stands[0].options[0].cs = "A1";
    stands[1].options = {option("G-B", allDay)};
    RANDOM.value = true;
    MAX_PARK_SEL.value = 1;
    gf_storeNow({1, 11});
    for (uint32_t seed = 0; seed < 10; ++seed) {
        gf_seedRandom(seed);
        staticAcs = {standing(1, "A1")};
        staticAcs[0].coupledOut = "B9";
        lf_renewParking();
        ASSERT_EQ(candidates.size(), 1u);
        EXPECT_EQ(candidates[0].sid, 1u) << "seed " << seed;
    }
}

TEST_F(RenewalTest, LiveAndStaticShareTheLimit) {
    const struct {
        int32_t most;
        uint32_t live;
        size_t liveLeft, planned;
    } cases[] = {{0, 7, 7, 0}, {10, 12, 10, 0}, {10, 10, 10, 0}, {10, 4, 4, 6}, {500, 4, 4, 16}};
    for (const auto& c : cases) {
        const SteppedWorld world;  // all have just come
        gf_resetEngine();
        stands.clear();
        row(20);
        for (Stand& stand : stands) stand.options = {option(stand.id, allDay)};
        staticAcs = {standing(20, "OLD")};
        staticAcs[0].parkedAt = {1, 10};
        for (uint32_t sid = 1; sid <= c.live; ++sid) parkLive(sid);
        MAX_PARK_SEL.value = c.most;
        lf_renewParking();
        EXPECT_EQ(lf_countLiveParked(false), c.liveLeft) << c.most;
        EXPECT_EQ(candidates.size(), c.planned) << c.most;
        EXPECT_EQ(staticAcs[0].simState, State::removingfromsim);
    }
    // The oldest go first.
    keptStatics = {{.callsign = "NEW"}, {.callsign = "OLD"}};
    candidates.clear();
    lf_trimToWanted(std::ssize(liveParkedList) + 1);
    EXPECT_TRUE(keptStatics.size() == 1 && removalList.at(0).callsign == "OLD");
}

TEST_F(RenewalTest, TheTwoPassesAndTheFlush) {
    row(1);
    stands[0].options = {option("G-A", allDay)};
    candidates = {planned(1, "A1")};
    g_renewRequested = true;
    gf_enableControlsAtStart();
    lf_serveRenewal();
    EXPECT_TRUE(lf_renewalUnderWay() && staticsLock && !WEEK.enabled && !flushStaticButton.enabled);
    lf_addNextStatic();
    EXPECT_TRUE(staticAcs.empty()) << "a new plan comes";
    lf_serveRenewal();
    EXPECT_FALSE(lf_renewalUnderWay() || g_renewRequested);
    EXPECT_EQ(g_panel.statusText, "Parking adjustments: 0 to be removed, 1 to be added");
    settle();
    g_flushStatic = g_renewRequested = true;
    lf_serveRenewal();
    lf_serveFlush();
    EXPECT_FALSE(lf_renewalUnderWay() || g_renewRequested || g_flushStatic);
    EXPECT_TRUE(INITIAL_LOAD_ONLY.value && staticAcs[0].simState == State::removingfromsim);
    lf_lockStatics(false);
    EXPECT_TRUE(WEEK.enabled && flushStaticButton.enabled && parking_percentage.enabled);
    EXPECT_TRUE(g_panel.minutesToRenewal == 19 && g_panel.statusText.empty());
}

TEST_F(RenewalTest, TheCycleRenewsEvery20Minutes) {
    for (const bool once : {true, false}) {
        INITIAL_LOAD_ONLY.value = once;
        g_seconds = 1200;
        lf_every15Seconds();
        EXPECT_EQ(g_renewRequested, !once);
    }
    g_seconds = 1215;
    lf_every15Seconds();
    EXPECT_TRUE(lf_renewalUnderWay());
    // Until the second pass airport and list stay as they are.
    loadPending = g_rereadParkAirports = true;
    g_flightRunning = g_secondTick = true;
    lf_cycleTick();
    EXPECT_TRUE(g_seconds == 1216 && loadPending);
    g_seconds = 1230;
    lf_every15Seconds();
    EXPECT_FALSE(lf_renewalUnderWay() || g_renewRequested);
    EXPECT_TRUE(g_rereadParkAirports) << "statics are being worked on";
    lf_lockStatics(false);
    for (const char* destination : {"", "EHAM"}) {
        DESTINATION.set(destination);
        g_rereadParkAirports = true;
        gf_enableControl(rereadButton, false);
        gf_enableControl(DESTINATION, false);
        gf_clearMessage();
        lf_every15Seconds();
        EXPECT_FALSE(g_rereadParkAirports);
        EXPECT_EQ(g_panel.statusText, "park airports and stands are okay");
        EXPECT_TRUE(DESTINATION.enabled && rereadButton.enabled == DESTINATION.empty());
    }
}

}  // namespace

}  // namespace skl::test
