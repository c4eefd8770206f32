// From the run to the climb.
#include "engine/take_off.h"

#include <gtest/gtest.h>

#include <cmath>

#include "engine/category_constants.h"
#include "engine/engine_state.h"
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
        record.stream().front().airborne = c.frontAirborne;
        for (const Point& point : c.later) {
            LivePos pos = airReport(aimPoint, point.speed, 90, 112);
            pos.airborne = point.airborne;
            pos.vs = point.vs;
            record.stream().push_back(pos);
        }
        lf_rotationTest(record, 200);
        EXPECT_EQ(record.stage == FlightStage::take_off, c.rotates);
        if (!c.rotates) continue;
        EXPECT_DOUBLE_EQ(record.dAlt, c.byReports ? 100.0 / 200 : record.maxClimbPerTick);
        EXPECT_FALSE(record.derotating);
        EXPECT_EQ(record.flareState, 0);
    }
}

TEST_F(TakeOff, NoReportBringsItDownBeforeItHasClimbed) {
    const struct {
        const char* what;
        double until;    ///< seconds, from lift-off on
        double alt, vs;  ///< as told until then
        bool onGround;
    } cases[] = {
        {"one noisy report", 4, 60, -600, false},
        {"half a minute of them", 30, 60, -600, false},
        {"back on the ground", 30, 0, 0, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        gf_resetEngine();
        groundFt = 0;
        const Path path = [&](double t) {
            LivePos pos = departure(t, 145, 2400, 0);
            const double since = t - 10 - 145 / 3.0;
            if (since > 6 && since < 6 + c.until) {
                pos.alt = c.alt;
                pos.vs = c.vs;
                pos.airborne = !c.onGround;
            }
            pos.track += std::fmod(t, 4) < 2 ? 0 : 3;
            return pos;
        };
        double before = appear(path(0)).simAlt;
        bool rotated = false;
        run(path, 200, [&](LiveAc& record) {
            if (record.stage == FlightStage::take_off) {
                rotated = true;
                EXPECT_FALSE(record.landing);
                EXPECT_GE(record.simAlt, before - 0.5);
            }
            before = record.simAlt;
            return true;
        });
        EXPECT_TRUE(rotated);
        EXPECT_EQ(lf_findLive(flownHexid)->stage, FlightStage::flying);
        EXPECT_GT(before, 2000);
    }
}

TEST_F(TakeOff, ASlowClimberWithLevelReportsLeavesTheGround) {
    groundFt = 0;
    const Path path = [](double t) {
        LivePos pos = departure(t, 55, 500, 0);
        if (std::fmod(t, 10) < 2) pos.vs = 0;  // one in every five: never do all ahead climb
        return pos;
    };
    appear(path(0), AcCategory::Light);
    double lifted = 0;  // meters down the runway
    run(path, 240, [&](LiveAc& record) {
        if (lifted == 0 && record.stage == FlightStage::take_off)
            lifted = gf_distanceNm(aimPoint, record.simPos()) * metersPerNm;
        return true;
    });
    EXPECT_NEAR(lifted, 259, 65) << "where its reports do, to a report's spacing";
    EXPECT_EQ(lf_findLive(flownHexid)->stage, FlightStage::flying);
}

}  // namespace
}  // namespace skl::test
