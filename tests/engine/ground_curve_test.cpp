// A curve round a corner: where it begins, where it ends, and which way the nose points in it.
#include "engine/ground_curve.h"

#include <gtest/gtest.h>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

using GroundCurveTest = MotionTest;

TEST_F(GroundCurveTest, LeadsFromThePoseRoundTheCornerToTheEnd) {
    for (const LaLo home : {LaLo{47.5, 8.5}, LaLo{-16.7, 179.9999}}) {
        const LaLo corner = away(home, 30, 40), end = away(corner, 120, 60);
        LiveAc record;
        record.simLat = home.lat;  // not on the front: the curve begins where the aircraft is
        record.simLon = home.lon;
        record.stream() = {groundReport(away(home, 180, 9), 20), groundReport(corner, 10),
                           groundReport(end, 0)};
        lf_makeCurve(record);
        ASSERT_EQ(record.stream().size(), 2u);
        EXPECT_EQ(record.stream()[1].pos(), end);
        EXPECT_EQ(record.stream()[1].speed, 15) << "an end without a speed takes the mean before it";
        struct Case {
            double t;
            LaLo at;
            double course;
        };
        // Half-way: half of the way to the corner and a quarter of that to the end.
        const LaLo middle = away(away(home, 30, 30), 120, 15);
        LaLo at;
        double course = 0;
        for (const Case& c :
             {Case{0, home, 30}, {0.5, middle, 30 + toDeg(std::atan2(60, 40))}, {1, end, 120}}) {
            ASSERT_TRUE(lf_curveAt(record.curve, c.t, at, course));
            EXPECT_LT(gf_distanceNm(at, c.at) * metersPerNm, 0.1) << c.t;
            EXPECT_NEAR(toDeg(angleDiff(course, toRad(c.course))), 0, 0.2) << c.t;
        }
        for (const double t : {-1e-9, 1.000001, std::nan("")})
            EXPECT_FALSE(lf_curveAt(record.curve, t, at, course)) << t;
        record.curve.ctrlNorth = std::nan("");
        EXPECT_FALSE(lf_curveAt(record.curve, 0.5, at, course));
        EXPECT_FALSE(lf_curveAt({}, 0.5, at, course));
    }
}

TEST_F(GroundCurveTest, TheNoseFollowsTheCourseEvenly) {
    const LaLo home{47.5, 8.5}, corner = away(home, 0, 25);
    for (const double turn : {-60.0, 30.0, 60.0}) {
        gf_resetEngine();
        LiveAc& record = addFlying(groundReport(home, 8));
        record.onGround = true;
        record.stage = FlightStage::taxi;
        record.stream().push_back(groundReport(corner, 8));
        record.stream().push_back(groundReport(away(corner, turn, 25), 8));
        for (size_t i = 0; i < 3; ++i) record.stream()[i].time = static_cast<int32_t>(500 * i);
        int ticks = 0;
        for (; ticks < 200 || record.curve.set(); ++ticks) {
            tick();
            LaLo at;
            double course = 0;
            if (!lf_curveAt(record.curve, record.curveT, at, course)) continue;
            ASSERT_LT(std::abs(toDeg(angleDiff(course, record.simHeading))), 0.6) << turn << ' ' << ticks;
        }
        EXPECT_GT(ticks, 800);
        EXPECT_NEAR(toDeg(angleDiff(record.simHeading, toRad(turn))), 0, 0.6);
    }
}

}  // namespace
}  // namespace skl::test
