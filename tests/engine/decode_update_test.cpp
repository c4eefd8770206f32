// Which reports of the feed reach an aircraft's stream, and what they change there.
#include <gtest/gtest.h>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/update_cycle.h"
#include "parking/park_airport.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

constexpr LaLo home{47.5, 8.5};
constexpr FlightStage taxi = FlightStage::taxi, parked = FlightStage::parked;

class DecodeUpdate : public MotionTest {
  protected:
    /// The only aircraft, on the ground unless `first` is not.
    static LiveAc& aircraft(const LivePos& first, FlightStage stage = taxi) {
        gf_resetEngine();
        LiveAc& record = addFlying(first);
        record.onGround = !first.airborne;
        record.stage = stage;
        record.standPos = home;
        return record;
    }
    /// Whether a report `gap` seconds later joins.
    static bool second(const LivePos& first, const LivePos& next, double gap, int32_t predictLeft = 0) {
        aircraft(first).predictLeft = predictLeft;
        engineTick = engineTick + static_cast<int32_t>(gap * 100);
        return report(next);
    }
    static void add(LiveAc& record, LaLo place, double speed, bool stopped) {
        LivePos pos = groundReport(place, speed);
        pos.stopped = stopped;
        pos.time = record.stream().back().time + 500;
        record.stream().push_back(pos);
    }
};

TEST_F(DecodeUpdate, Thinning) {
    struct Case {
        bool airborne;
        double before, now, turn, gap;  ///< knots, degrees, seconds
        bool kept;
    };
    const Case cases[] = {
        // Stamps and jumps of speed; steady in the air, 450 m; steady on the ground, 20 m or 15 s.
        {true, 300, 300, 90, 1.0, false}, {false, 4, 90, 90, 5, false},    {false, 4, 79, 90, 5, true},
        {false, 6, 59, 90, 5, true},      {false, 6, 60, 90, 5, false},    {true, 450, 450, 0, 1.94, false},
        {true, 450, 450, 0, 1.95, true},  {true, 450, 450, 1, 1.5, false}, {true, 450, 450, 1.1, 1.5, true},
        {false, 20, 20, 0, 1.94, false},  {false, 20, 20, 0, 1.95, true},  {false, 20, 20, 2, 1.5, false},
        {false, 20, 20, 2.1, 1.5, true},  {false, 0, 0, 0, 15, false},     {false, 1, 1, 0, 15.1, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        const auto at = [&](double meters, double speed, double track) {
            const LaLo place = away(home, 0, meters);
            return c.airborne ? airReport(place, speed, track) : groundReport(place, speed, track);
        };
        EXPECT_EQ(second(at(0, c.before, 359.5), at(c.airborne ? 300 : 100, c.now, c.turn - 0.5), c.gap),
                  c.kept);
    }
    EXPECT_TRUE(second(airReport(home, 450, 0), airReport(away(home, 0, 300), 450, 0), 1.5, 3))
        << "predicting";
}

TEST_F(DecodeUpdate, ImplausibleReports) {
    // 450 kn over 5 s and 10 s of slack, twice: 3.75 nm. Half a mile is always believed.
    const LivePos first = airReport(home, 450, 0), slow = groundReport(home, 10);
    const auto fast = [](double nm) { return airReport(away(home, 0, nm * metersPerNm), 450, 0); };
    EXPECT_TRUE(second(first, fast(3.7), 5));
    EXPECT_FALSE(second(first, fast(3.8), 5));
    EXPECT_TRUE(second(first, fast(9), 5, 2)) << "not while predicting";
    EXPECT_TRUE(second(slow, groundReport(away(home, 0, 0.49 * metersPerNm), 10, 90), 2));
    EXPECT_FALSE(second(slow, groundReport(away(home, 0, 0.51 * metersPerNm), 10, 90), 2));

    LiveAc& record = aircraft(first);
    for (const double nm : {160.0, 160.0, 1.9, 160.0, 160.0, 160.0}) {
        EXPECT_EQ(record.simState, SimObjectState::active) << "three in a row remove";
        engineTick = engineTick + 500;
        EXPECT_EQ(report(fast(nm)), nm == 1.9);
    }
    EXPECT_EQ(record.simState, SimObjectState::removingfromsim);
}

TEST_F(DecodeUpdate, AStandingAircraftHeardElsewhereGoes) {
    struct Case {
        FlightStage stage;
        bool holding;
        double meters;
        bool goes;
    };
    for (const Case& c :
         {Case{parked, false, 199, false}, Case{parked, false, 201, true},
          Case{FlightStage::pushed_back, false, 249, false}, Case{FlightStage::pushed_back, false, 251, true},
          Case{taxi, true, 251, true}, Case{taxi, false, 251, false}}) {
        SCOPED_TRACE(c.meters);
        LiveAc& record = aircraft(groundReport(home, 0), c.stage);
        record.holding = c.holding;
        report(airReport(away(home, 0, c.meters), 120, 0, 300));
        EXPECT_EQ(record.simState, SimObjectState::active) << "a stamp that is no later tells nothing";
        engineTick = engineTick + 1000;
        report(airReport(away(home, 0, c.meters), 120, 0, 300));
        EXPECT_EQ(record.simState == SimObjectState::removingfromsim, c.goes);
    }
}

TEST_F(DecodeUpdate, StagesAndStatesThatTakeNone) {
    const auto takes = [](FlightStage stage, SimObjectState state, double alt = 0, int points = 1) {
        LiveAc& record = aircraft(groundReport(home, 10), stage);
        record.simState = state;
        for (int i = 1; i < points; ++i) add(record, away(home, 0, i), 10, false);
        engineTick = 1000;
        return report(airReport(away(home, 0, 100 + points), 20, 90, alt));
    };
    parkAirport = {"LSZH", "ZRH", home.lat, home.lon, 1400};
    for (const int alt : {1279, 1280, 1520, 1521})
        EXPECT_EQ(takes(FlightStage::birth, SimObjectState::buffer, alt), alt == 1279 || alt == 1521) << alt;
    EXPECT_FALSE(takes(FlightStage::parking, SimObjectState::adding2sim));
    EXPECT_FALSE(takes(FlightStage::pushing_back, SimObjectState::active));
    EXPECT_TRUE(takes(taxi, SimObjectState::adding2sim));
    EXPECT_FALSE(takes(taxi, SimObjectState::active, 0, 201)) << "it does not progress";
    EXPECT_EQ(liveAcs[0].simState, SimObjectState::removingfromsim);
}

TEST_F(DecodeUpdate, StopsAndJitter) {
    constexpr double same = 0, jitter = 0.0001, moved = 0.001;  // degrees
    struct Case {
        double offset, lastSpeed, speed;
        bool flies, departing, kept, stopped;
    };
    const Case cases[] = {
        {same, 10, 3, false, false, true, true},    {same, 10, 3, true, false, false, true},
        {same, 30, 1, false, true, false, true},    {same, 29, 1, false, true, true, true},
        {jitter, 10, 3, false, false, true, true},  {jitter, 10, 3, true, false, false, false},
        {jitter, 50, 3, false, true, false, false}, {jitter, 49, 3, false, true, true, true},
        {moved, 200, 0, false, false, true, false}, {moved, 50, 0, true, true, false, false},
        {moved, 49, 0, true, true, true, false},    {moved, 50, 0, false, true, false, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        // On the date line, so that the two longitudes are 360 degrees apart.
        LiveAc& record = aircraft(groundReport({10, -180}, c.lastSpeed));
        record.onGround = !c.flies;
        record.departing = c.departing;
        LivePos pos = groundReport({10 + c.offset, 180 - c.offset}, c.speed);
        LivePos hover = pos;
        EXPECT_EQ(lf_filterPoint(record, pos), c.kept);
        EXPECT_EQ(pos.stopped, c.stopped);
        if (c.kept && c.stopped) {
            EXPECT_EQ(pos.pos(), c.offset == jitter ? LaLo({10, -180}) : LaLo({10, 180}));
        }
        record.category = AcCategory::Rotorcraft;
        EXPECT_TRUE(lf_filterPoint(record, hover));
        EXPECT_EQ(hover.stopped, c.offset == same);
    }
}

TEST_F(DecodeUpdate, HaltsAreCutOut) {
    struct Case {
        int stops;
        double meters;  ///< from the last motion
        size_t left;    ///< points before the new one
    };
    // Front, a moving point, then stops 5 seconds apart: a short halt, a near one, one too long to look
    // behind.
    for (const Case& c : {Case{2, 100, 2}, Case{3, 100, 5}, Case{3, 21.5, 2}, Case{3, 22.5, 5},
                          Case{5, 21.5, 2}, Case{6, 21.5, 8}}) {
        SCOPED_TRACE(c.stops);
        LiveAc& record = aircraft(groundReport(home, 10));
        add(record, away(home, 90, 50), 8, false);
        for (int i = 0; i < c.stops; ++i) add(record, away(home, 90, 51), 0, true);
        decodeExisting(record, groundReport(away(away(home, 90, 50), 0, c.meters), 8));
        EXPECT_EQ(record.stream().size(), c.left + 1);
    }
    // One that stands keeps two points, and switches to the new one at once.
    LiveAc& record = aircraft(groundReport(home, 10));
    record.stream().front().stopped = true;
    for (int i = 0; i < 3; ++i) add(record, home, 0, true);
    engineTick = 9000;
    decodeExisting(record, groundReport(home, 0));
    ASSERT_EQ(record.stream().size(), 2u);
    EXPECT_EQ(record.stream()[0].time, 9001);
    EXPECT_EQ(record.stream()[0].speed, 0);
}

TEST_F(DecodeUpdate, WhatStartsATakeOffAndEndsIt) {
    struct Case {
        const char* what;
        double before, now;
        bool airborneBefore, airborne, rollout, departing, departs;
    };
    const Case cases[] = {
        {"two at 43 knots", 43, 43, false, false, false, false, true},
        {"one at less", 42.9, 43, false, false, false, false, false},
        {"airborne", 10, 30, false, true, false, false, true},
        {"touch and go", 120, 120, true, true, true, false, true},
        {"roll-out", 120, 120, false, true, true, false, false},
        {"rejected", 40, 29, false, false, false, true, false},
        {"slower, still a run", 40, 30, false, false, false, true, true},
        {"a false report behind the lift-off", 40, 29, true, false, false, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        LiveAc& record = aircraft(groundReport(home, c.before));
        record.rollout = c.rollout;
        record.departing = c.departing;
        record.stream().front().airborne = c.airborneBefore;
        LivePos pos = groundReport(away(home, 0, 300), c.now);
        pos.airborne = c.airborne;
        decodeExisting(record, pos);
        EXPECT_EQ(record.stream().size(), 2u);
        EXPECT_EQ(record.departing, c.departs);
    }
}

TEST_F(DecodeUpdate, AReportEndsThePrediction) {
    for (const double bearing : {0.0, 90.0, 185.0, 195.0, 345.0}) {
        SCOPED_TRACE(bearing);
        const bool ahead = bearing < 190;
        LiveAc& record = aircraft(airReport(home, 300, 90), FlightStage::flying);
        record.predictLeft = 4;
        record.departing = bearing == 90;
        engineTick = 700;
        decodeExisting(record, airReport(away(home, bearing, 3000), 300, 90));
        EXPECT_EQ(record.stream().size(), ahead ? 2u : 1u);
        EXPECT_EQ(record.predictLeft, ahead ? 0 : 4);
        EXPECT_EQ(record.stream().front().time, ahead ? 701 : 3000);
        EXPECT_EQ(record.maxLate, !ahead ? 1000 : record.departing ? 5000 : 3000);
    }
}

}  // namespace
}  // namespace skl::test
