// How reports join the stream of an aircraft: stops, jitter, short halts, the order of times, the end of
// predictions.
#include <gtest/gtest.h>

#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/update_cycle.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

constexpr LaLo home{47.5, 8.5};
constexpr double same = 0, jitter = 0.0001, moved = 0.001;  // degrees

class FilterPoint : public MotionTest {};

TEST_F(FilterPoint, Table) {
    struct Case {
        const char* what;
        double offset;
        double lastSpeed, speed;
        bool airborne, activeInAir, departing;
        bool kept, stopped;
    };
    const Case cases[] = {
        {"stands on the ground", same, 10, 3, false, false, false, true, true},
        {"stands in the air", same, 10, 3, true, false, false, false, true},
        {"the object flies", same, 10, 3, false, true, false, false, true},
        {"take-off run does not stop", same, 30, 1, false, false, true, false, true},
        {"slow take-off run may", same, 29, 1, false, false, true, true, true},
        {"take-off run without speed may", same, 90, 0, false, false, true, true, true},
        {"jitter on the ground", jitter, 10, 3, false, false, false, true, true},
        {"jitter in the air", jitter, 10, 3, true, false, false, false, false},
        {"jitter, the object flies", jitter, 10, 3, false, true, false, false, false},
        {"jitter in a take-off run", jitter, 50, 3, false, false, true, false, false},
        {"jitter in a slow take-off run", jitter, 49, 3, false, false, true, true, true},
        {"moves", moved, 10, 3, false, false, false, true, false},
        {"moves in the air", moved, 200, 200, true, true, false, true, false},
        {"moves without speed on the ground", moved, 200, 0, false, false, false, true, false},
        {"moves without speed in the air, fast", moved, 50, 0, true, true, false, false, false},
        {"moves without speed in the air, slow", moved, 49, 0, true, true, false, true, false},
        {"moves without speed in a take-off run", moved, 50, 0, false, false, true, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        LiveAc record;
        record.category = AcCategory::Large;
        record.simState = SimObjectState::active;
        record.onGround = !c.activeInAir;
        record.departing = c.departing;
        // On the date line, so that the two longitudes are 360 degrees apart.
        LivePos last = groundReport({10, -180}, c.lastSpeed);
        last.time = 77;
        record.stream.push_back(last);
        LivePos pos = groundReport({10 + c.offset, 180 - c.offset}, c.speed);
        pos.airborne = c.airborne;
        pos.time = 500;
        pos.stopped = !c.stopped;
        EXPECT_EQ(lf_filterPoint(record, pos), c.kept);
        EXPECT_EQ(pos.stopped, c.stopped);
        if (c.kept && c.stopped) {
            EXPECT_EQ(pos.speed, 0);
            EXPECT_EQ(pos.time, c.offset == jitter ? 77 : 500);
            EXPECT_EQ(pos.lat, 10);
        }
        record.category = AcCategory::Rotorcraft;
        pos = groundReport({10 + c.offset, 180 - c.offset}, c.speed);
        EXPECT_TRUE(lf_filterPoint(record, pos));
        EXPECT_EQ(pos.stopped, c.offset == same);
        EXPECT_EQ(pos.speed, c.speed);
    }
}

class Extending : public MotionTest {
  protected:
    LiveAc& standing(int points) {
        LiveAc& record = addFlying(groundReport(home, 10));
        record.stage = FlightStage::taxi;
        record.onGround = true;
        for (int i = 1; i < points; ++i) add(record, home, 0, true);
        return record;
    }
    static void add(LiveAc& record, LaLo place, double speed, bool stopped) {
        LivePos pos = groundReport(place, speed);
        pos.stopped = stopped;
        pos.time = record.stream.back().time + 500;
        record.stream.push_back(pos);
    }
    static LivePos timed(LivePos pos, int32_t time) {
        pos.time = time;
        return pos;
    }
};

TEST_F(Extending, AStandingAircraftKeepsTwoPoints) {
    LiveAc& record = standing(4);
    record.stream.front().stopped = true;
    engineTick = 9000;
    decodeExisting(record, timed(groundReport(home, 0), 12000));
    ASSERT_EQ(record.stream.size(), 2u);
    EXPECT_EQ(record.stream[0].time, 9001) << "switches to its new point at once";
    EXPECT_EQ(record.stream[0].speed, 0);
    EXPECT_EQ(record.stream[1].time, 12000);
}

TEST_F(Extending, StopsStayWhileTheAircraftHasNotComeToThem) {
    LiveAc& record = standing(4);
    decodeExisting(record, timed(groundReport(home, 0), 12000));
    EXPECT_EQ(record.stream.size(), 5u);
    EXPECT_EQ(record.stream[0].time, 3000);
}

TEST_F(Extending, AShortHaltIsCutOut) {
    struct Case {
        const char* what;
        int stops;
        double metersFromMotion;
        size_t left;  ///< points before the new one
    };
    // Front, a moving point, then stops 5 seconds apart.
    const Case cases[] = {
        {"two stops, 10 s", 2, 100, 2},        {"three stops, 15 s", 3, 100, 5},
        {"three stops, yet near", 3, 21.5, 2}, {"three stops, not near enough", 3, 22.5, 5},
        {"four stops, near", 4, 21.5, 2},      {"five stops reach the sixth to last", 5, 21.5, 2},
        {"six stops hide it", 6, 21.5, 8},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        gf_resetEngine();
        LiveAc& record = standing(1);
        const LaLo motion = away(home, 90, 50);
        add(record, motion, 8, false);
        for (int i = 0; i < c.stops; ++i) add(record, away(motion, 90, 1), 0, true);
        LivePos go = groundReport(away(motion, 0, c.metersFromMotion), 8);
        decodeExisting(record, timed(go, record.stream.back().time + 500));
        EXPECT_EQ(record.stream.size(), c.left + 1);
        EXPECT_FALSE(record.stream.back().stopped);
    }
}

TEST_F(Extending, TimesRiseAtTheEnd) {
    LiveAc& record = standing(1);
    decodeExisting(record, timed(groundReport(away(home, 0, 100), 20), 2000));
    ASSERT_EQ(record.stream.size(), 2u);
    EXPECT_EQ(record.stream[1].time, 3001);
    LivePos jittered = groundReport({record.stream[1].lat + jitter, record.stream[1].lon}, 20);
    decodeExisting(record, timed(jittered, 9000));
    EXPECT_EQ(record.stream.back().time, 3002) << "a copy carries the time of its original";
}

TEST_F(Extending, NoStreamGrowsWithoutEnd) {
    LiveAc& record = standing(1);
    for (int i = 1; i <= 200; ++i) add(record, away(home, 0, i * 50), 20, false);
    ASSERT_EQ(record.stream.size(), 201u);
    decodeExisting(record, timed(groundReport(away(home, 0, 20000), 20), 999999));
    EXPECT_EQ(record.stream.size(), 201u);
    EXPECT_EQ(record.simState, SimObjectState::removingfromsim);
}

TEST_F(Extending, HoldingEndsWhenTheReportsAreElsewhere) {
    LiveAc& record = standing(2);
    const auto hold = [&](double meters) {
        record.holding = true;
        record.holdStart = 50;
        decodeExisting(record, timed(groundReport(away(home, 0, meters), 20), 999999));
    };
    hold(HOLDING_THRESHOLD_METERS.value - 0.1);
    EXPECT_EQ(record.simState, SimObjectState::active);
    EXPECT_TRUE(record.holding);
    hold(HOLDING_THRESHOLD_METERS.value + 0.1);
    EXPECT_EQ(record.simState, SimObjectState::removingfromsim);
    EXPECT_FALSE(record.holding);
    EXPECT_EQ(record.holdStart, 0);
}

TEST_F(Extending, AReportEndsThePrediction) {
    const auto predicted = [](double bearing, bool departing = false) {
        gf_resetEngine();
        LiveAc& record = addFlying(airReport(home, 300, 90));
        record.predictLeft = 4;
        record.departing = departing;
        engineTick = 700;
        decodeExisting(record, timed(airReport(away(home, bearing, 3000), 300, 90), 3700));
        return &record;
    };
    for (const double backwards : {195.0, 270.0, 345.0}) {
        EXPECT_EQ(predicted(backwards)->stream.size(), 1u) << backwards;
        EXPECT_EQ(predicted(backwards)->predictLeft, 4);
    }
    for (const double ahead : {0.0, 90.0, 185.0}) {
        LiveAc* record = predicted(ahead);
        EXPECT_EQ(record->stream.size(), 2u) << ahead;
        EXPECT_EQ(record->predictLeft, 0);
        EXPECT_EQ(record->stream.front().time, 701);
        EXPECT_EQ(record->maxEarly, 3000);
        EXPECT_EQ(record->maxLate, 3000);
    }
    EXPECT_EQ(predicted(90, true)->maxLate, 5000);
}

TEST_F(Extending, StagesThatTakeNoReports) {
    struct Case {
        FlightStage stage;
        SimObjectState state;
        size_t points;
    };
    for (const Case& c : {Case{FlightStage::parked, SimObjectState::buffer, 1},
                          Case{FlightStage::parking, SimObjectState::adding2sim, 1},
                          Case{FlightStage::pushing_back, SimObjectState::active, 1},
                          Case{FlightStage::taxi, SimObjectState::adding2sim, 2}}) {
        gf_resetEngine();
        LiveAc& record = standing(1);
        record.stage = c.stage;
        record.simState = c.state;
        decodeExisting(record, timed(groundReport(away(home, 0, 100), 20), 9000));
        EXPECT_EQ(record.stream.size(), c.points);
    }
}

TEST_F(Extending, NewcomersGatherTheirStream) {
    LiveAc& record = standing(1);
    record.stage = FlightStage::birth;
    record.simState = SimObjectState::buffer;
    decodeExisting(record, timed(groundReport(away(home, 0, 100), 20), 3000));
    ASSERT_EQ(record.stream.size(), 2u);
    EXPECT_EQ(record.stream[1].time, 3001);
    record.stream.clear();
    decodeExisting(record, timed(groundReport(home, 20), 4000));
    EXPECT_TRUE(record.stream.empty());
}

}  // namespace
}  // namespace skl::test
