// From the run to the climb, and what the aircraft's gear, flaps and throttle do in the air.
#include "engine/take_off.h"

#include <gtest/gtest.h>

#include <cmath>

#include "engine/air_schedule.h"
#include "engine/category_constants.h"
#include "engine/engine_state.h"
#include "engine/landing.h"
#include "tests/support/runway_world.h"

namespace skl::test {
namespace {

class TakeOff : public RunwayTest {};

/// Lines up, accelerates by 3 knots a second after 10 s, flies from 145 knots on.
LivePos departure(double t, double liftSpeed, double climbFpm, double elevation) {
    const double run = std::max(0.0, t - 10), speed = std::min(3 * run, liftSpeed + 20);
    const double ticks = run * 3 > liftSpeed + 20 ? run - (liftSpeed + 20) / 3 : 0;
    const double meters = (3 * (run - ticks) * (run - ticks) / 2 + ticks * speed) * 0.514444;
    const LaLo place = away(aimPoint, 90, meters);
    if (3 * run < liftSpeed) return groundReport(place, speed, 90);
    LivePos pos = airReport(place, speed, 90, elevation + (run - liftSpeed / 3) * climbFpm / 60);
    pos.vs = climbFpm;
    return pos;
}

TEST_F(TakeOff, TheHeightFollowsTheTableOfTicks) {
    groundFt = parkAirport.alt = 1400;
    const Path path = [](double t) { return departure(t, 145, 2400, 1400); };
    LiveAc& first = appear(path(0));
    int32_t rotated = 0, liftOff = 0, gearUp = 0, gearAt = 0;
    double before = first.simAlt, at299 = 0, onGroundMax = 0;
    bool flew = false;
    run(path, 150, [&](LiveAc& record) {
        const double height = record.simAlt - groundFt - cgFt;
        if (record.stage == FlightStage::take_off) {
            if (rotated == 0) rotated = engineTick;
            record.dAlt = 0.6;  // whatever the reports ask for
            EXPECT_GE(record.simAlt, before - 1e-9);
            if (record.groundCount >= 1) onGroundMax = std::max(onGroundMax, std::abs(height));
            if (record.groundCount == 0 && liftOff == 0) liftOff = engineTick;
            if (record.groundCount == -299) at299 = height;
            if (const int n = sent(ev::gearSet, 0); n > 0 && gearUp == 0) {
                gearUp = n;
                gearAt = record.groundCount;
            }
        }
        eventQueue.clear();
        before = record.simAlt;
        if (!flew && record.stage == FlightStage::flying) {
            flew = true;
            EXPECT_GE(record.agl, 800);
            EXPECT_EQ(record.groundCount, 1);
            return false;
        }
        return true;
    });
    ASSERT_GT(liftOff, 0);
    EXPECT_EQ(liftOff - rotated + 1, lf_findLive(flownHexid)->rotateTicks);
    EXPECT_LT(onGroundMax, 0.5);
    // 99 ticks of a tenth, 100 of a fifth, 100 of a half.
    EXPECT_NEAR(at299, 0.6 * (9.9 + 20 + 50), 1e-6);
    EXPECT_EQ(gearUp, 1);
    EXPECT_EQ(gearAt, -300);
    EXPECT_TRUE(flew);
}

TEST_F(TakeOff, WhenTheNoseComesUp) {
    struct Point {
        bool airborne;
        double speed, vs;
    };
    struct Case {
        const char* what;
        AcCategory category;
        bool frontAirborne;
        std::vector<Point> later;
        bool rotates;
        bool byReports;  ///< the climb is that to the next point
    };
    const Case cases[] = {
        {"all climb", AcCategory::Large, false, {{true, 120, 900}, {true, 130, 900}}, true, true},
        {"all climb, one still on the ground",
         AcCategory::Large,
         false,
         {{false, 120, 900}, {true, 130, 900}},
         true,
         false},
        {"exactly 256 is no climb",
         AcCategory::Large,
         false,
         {{true, 120, 256}, {true, 130, 900}},
         false,
         false},
        {"fast and airborne", AcCategory::Large, false, {{true, 200, 0}, {true, 200, 900}}, true, false},
        {"fast, one on the ground",
         AcCategory::Large,
         false,
         {{false, 200, 0}, {true, 200, 900}},
         false,
         false},
        {"a slow climber with one level report",
         AcCategory::Light,
         true,
         {{true, 75, 0}, {true, 75, 500}},
         true,
         false},
        {"the same, its front not yet reached",
         AcCategory::Light,
         false,
         {{true, 75, 0}, {true, 75, 500}},
         false,
         false},
        {"no speed is asked of a helicopter",
         AcCategory::Rotorcraft,
         false,
         {{true, 20, 0}, {true, 20, 0}},
         true,
         false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        gf_resetEngine();
        groundFt = 0;
        LiveAc& record = appear(groundReport(aimPoint, 60, 90), c.category);
        record.departing = true;
        record.derotating = true;
        record.flareState = 4;
        record.stream.front().airborne = c.frontAirborne;
        for (const Point& point : c.later) {
            LivePos pos = airReport(aimPoint, point.speed, 90, 112);
            pos.airborne = point.airborne;
            pos.vs = point.vs;
            record.stream.push_back(pos);
        }
        lf_rotationTest(record, 200);
        EXPECT_EQ(record.stage == FlightStage::take_off, c.rotates);
        if (!c.rotates) continue;
        EXPECT_DOUBLE_EQ(record.dAlt, c.byReports ? 100.0 / 200 : record.maxClimbPerTick);
        EXPECT_FALSE(record.derotating);
        EXPECT_EQ(record.flareState, 0);
    }
}

TEST_F(TakeOff, ATouchAndGoRotatesWithoutAStop) {
    groundFt = 0;
    LiveAc& record = appear(groundReport(aimPoint, 120, 90));
    record.simHeading = toRad(90);
    record.stage = FlightStage::flying;
    record.flareState = 4;
    lf_touchdown(record);
    gf_setStage(record, FlightStage::taxi);
    eventQueue.clear();
    lf_touchAndGo(record);
    EXPECT_EQ(record.prevStage, FlightStage::flying);
    EXPECT_TRUE(record.departing && record.rollout);
    EXPECT_EQ(sent(ev::throttleSet, 11468), 1);
    lf_rotate(record);
    EXPECT_FALSE(record.rollout || record.landed || record.derotating);
    EXPECT_EQ(sent(ev::throttleSet, 16383), 1);
    record.dAlt = 0.5;
    double before = record.simAlt;
    for (int i = 0; i < 1000; ++i) {
        lf_rotationStep(record);
        EXPECT_GE(record.simAlt, before);
        before = record.simAlt;
    }
    EXPECT_GT(record.simAlt, cgFt + 50);
}

TEST_F(TakeOff, TheScheduleInTheAir) {
    struct Case {
        const char* what;
        AcCategory category;
        double alt, agl, vs, airportNm;
        bool landing, cleaned;
        uint32_t flaps;
        bool landsAfter;
        uint32_t flapsAfter;
    };
    const Case cases[] = {
        {"high", AcCategory::Large, 10000, 2500, 0, 5, false, false, 1, false, 0},
        {"well above the ground: an approach is over", AcCategory::Large, 9000, 2051, -900, 5, true, false, 0,
         false, 1},
        {"low and down near the airport", AcCategory::Large, 2000, 2050, -250, 10, false, false, 1, true, 3},
        {"beyond ten miles", AcCategory::Large, 2000, 2050, -250, 10.1, false, false, 1, false, 1},
        {"not quite down", AcCategory::Large, 2000, 2050, -249, 5, false, false, 1, false, 1},
        {"light aircraft begin lower", AcCategory::Light, 2000, 626, -500, 5, false, false, 0, false, 2},
        {"and there they do", AcCategory::Light, 2000, 625, -500, 5, false, false, 0, true, 3},
        {"exactly 600 is no climb-out", AcCategory::Large, 2000, 500, 600, 5, true, false, 3, true, 3},
        {"a climb-out cleans up", AcCategory::Large, 2000, 500, 601, 5, true, false, 3, false, 0},
        {"once", AcCategory::Large, 2000, 500, 601, 5, true, true, 3, true, 3},
        {"an approach lost", AcCategory::Large, 2000, 500, 0, 12, true, false, 3, false, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        gf_resetEngine();
        const LaLo at = away(aimPoint, 270, c.airportNm * metersPerNm);
        LiveAc& record = appear(airReport(at, 140, 90, c.alt), c.category);
        record.stream.front().vs = c.vs;
        record.agl = c.agl;
        record.landing = c.landing;
        record.climbCleaned = c.cleaned;
        record.flapsIdx = c.flaps;
        record.standId = 7;
        lf_airSchedule(record);
        EXPECT_EQ(record.landing, c.landsAfter);
        // Flaps of light aircraft go a step at a time.
        EXPECT_EQ(record.flapsIdx, c.flaps == 0 && c.flapsAfter == 2 ? 1 : c.flapsAfter);
        EXPECT_EQ(record.standId, c.landsAfter && !c.landing ? 0u : 7u);
    }
}

}  // namespace
}  // namespace skl::test
