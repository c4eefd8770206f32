// Driving through the ticks: round corners, onto a stand off the end of the reports, and what else begins
// with a segment.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "engine/engine.h"
#include "engine/ground_segment.h"
#include "tests/support/stand_field.h"

namespace skl::test {
namespace {

using enum FlightStage;
constexpr LaLo home{47.5, 8.5};

class GroundDrive : public StandTest {
  protected:
    static LiveAc& taxiing(LaLo place, double speed, double track = 0) {
        anew();
        LiveAc& record = onGround(taxi, place, track);
        record.stream()[0].speed = speed;
        return record;
    }
};

/// What a drive looked like. The slip is the nose against the motion above 5 kn, in degrees.
struct Drive {
    double speed = 0;           ///< greatest, as a multiple of the reports'
    double slip = 0;            ///< off the curves and 3 s after them
    double slipOnCurves = 0;    ///< and there
    double skatingSeconds = 0;  ///< with more than 25 degrees, anywhere
};

void drive(const Path& path, double interval, Drive& worst) {
    constexpr int quietAfterCurve = 300;
    const LiveAc& record = *lf_findLive(flownHexid);
    LaLo before = record.simPos();
    int offCurve = quietAfterCurve, skating = 0;
    for (int i = 1; i <= 15000; ++i) {
        tick();
        offCurve = record.curve.set() ? 0 : offCurve + 1;
        const double knots = gf_distanceNm(before, record.simPos()) * 360000;
        worst.speed = std::max(worst.speed, knots / path(0).speed);
        if (knots > 5) {
            const double motion = bearingRad(before, record.simPos());
            const double slip = std::abs(toDeg(angleDiff(motion, record.simHeading)));
            double& seen = offCurve > quietAfterCurve ? worst.slip : worst.slipOnCurves;
            seen = std::max(seen, slip);
            if (slip > 25) ++skating;
        }
        before = record.simPos();
        if (i % static_cast<int>(interval * 100) == 0) report(path(i / 100.0));
    }
    worst.skatingSeconds = std::max(worst.skatingSeconds, skating / 100.0);
}

/// North to `home`, there within `radius` meters to the right, and on.
Path corner(double turn, double knots, double radius, double secondsToCorner) {
    return [=](double t) {
        const double way = knots * metersPerNm / 3600 * (t - secondsToCorner), arc = radius * toRad(turn);
        if (way <= 0) return groundReport(away(home, 180, -way), knots, 0);
        const double turned = arc > 0 ? std::min(way / arc, 1.0) * turn : turn;
        const LaLo at = away(home, turned / 2, 2 * radius * std::sin(toRad(turned) / 2));
        return groundReport(away(at, turn, std::max(way - arc, 0.0)), knots, turned);
    };
}

TEST_F(GroundDrive, Corners) {
    for (const double knots : {8.0, 12.0, 15.0, 20.0, 12.5})
        for (const double interval : {2.0, 5.0}) {
            const bool back = knots == 12.5;
            Drive worst;
            for (const double phase : {0.0, 0.25, 0.5, 0.75}) {
                const Path path = corner(back ? 180 : 90, knots, back ? 15 : 0, 60 + phase * interval);
                taxiing(path(0).pos(), knots);
                drive(path, interval, worst);
                EXPECT_LT(gf_distanceNm(lf_findLive(flownHexid)->simPos(), path(120).pos()),
                          60 / metersPerNm);
            }
            std::printf(
                "%s at %.1f kn, every %.0f s: %.2f x speed, slip %.1f, on curves %.1f, "
                "above 25 for %.1f s\n",
                back ? "back" : "corner", knots, interval, worst.speed, worst.slip, worst.slipOnCurves,
                worst.skatingSeconds);
            // A curve is fastest at an end where one leg is twice the other, as thinned reports leave them.
            EXPECT_LE(worst.speed, interval == 5 ? 1.6 : 4 / std::sqrt(5) + 0.01);
            if (!back) {
                EXPECT_LE(worst.slip, 25);
            }
        }
}

TEST_F(GroundDrive, OntoTheStand) {
    struct Case {
        double nose, meters;  ///< degrees off the stand's heading; from the stand to the last report
        bool bend = false;    ///< a corner shortly before it
    };
    for (const Case& c : {Case{0, 4}, {60, 4}, {90, 10}, {170, 19}, {120, 0}, {-60, 0.2}, {0, 10, true}}) {
        SCOPED_TRACE(testing::Message() << c.nose << " degrees off, " << c.meters << " m, bend " << c.bend);
        const double course = 30 + c.nose;
        const LaLo last = away(home, course + 180, c.meters), near = away(last, course + 180, 20);
        LiveAc& record =
            taxiing(c.bend ? away(near, course + 90, 12) : near, 4, c.bend ? course - 90 : course);
        addStand("A1", home).heading = toRad(30);
        if (c.bend) record.stream().push_back(groundReport(near, 4));
        record.stream().push_back(groundReport(last, 4));
        record.stream().push_back(groundReport(last, 0));
        record.stream().back().stopped = true;
        for (int i = 0; i < 9000 && record.stage != parked; ++i) {
            tick();
            EXPECT_FALSE(record.curve.set()) << "the drive replaces the curve";
        }
        ASSERT_EQ(record.stage, parked);
        EXPECT_LT(gf_distanceNm(record.simPos(), home), 2 / metersPerNm);
        EXPECT_NEAR(toDeg(angleDiff(record.simHeading, toRad(30))), 0, 0.51);
    }
}

TEST_F(GroundDrive, ParkingIsTriedWhereReportsEnd) {
    struct Case {
        bool parks;
        double speed, meters;  ///< of the next point; from the pose to the last one
        int32_t predictLeft;
        FlightStage before = flying, stage = taxi;
        bool towed = false, loaded = true, stopped = true;
    };
    for (const Case& c : {Case{true, 5, 34.9, 0},
                          {false, 5.1, 34.9, 0},
                          {false, 5, 35.1, 0},
                          {true, 5.1, 35.1, 1},
                          {false, 5, 20, 1, parked},
                          {false, 5, 20, 1, pushed_back},
                          {true, 5, 20, 0, pushing_back, taxi, true},
                          {false, 5, 20, 1, pushing_back, pushed_back},
                          {false, 5, 20, 0, flying, taxi, false, false},
                          {false, 5, 20, 0, flying, taxi, false, true, false}}) {
        LiveAc& record = taxiing(away(home, 180, c.meters), 5);
        addStand("A1", home);
        g_apfLoaded = c.loaded;
        record.prevStage = c.before;
        record.stage = c.stage;
        record.towed = c.towed;
        record.predictLeft = c.predictLeft;
        record.stream().push_back(groundReport(away(home, 180, 3), c.speed));
        record.stream().push_back(groundReport(home, 0));
        record.stream().back().stopped = c.stopped;
        nextPosGround(record);
        EXPECT_EQ(record.stage == parking, c.parks) << c.speed << ' ' << c.meters << ' ' << c.predictLeft;
    }
}

TEST_F(GroundDrive, WhatBeginsWithASegment) {
    struct Case {
        double from, to;
        uint32_t departing;
    };
    for (const Case& c : {Case{14.9, 19.9, 0}, {15, 0, 1}, {0, 25, 2}, {0, 30, 4}})
        for (const bool departing : {false, true}) {
            LiveAc& record = taxiing(home, c.from);
            record.stream().push_back(groundReport(away(home, 0, 50), c.to));
            record.stage = departing ? taxi : pushing_back;
            record.departing = departing;
            record.maxLate = 1150;
            record.vsFpm = -600;
            lf_setupGroundSegment(record);
            EXPECT_EQ(record.throttleIdx, departing ? c.departing : 0) << c.from << ' ' << c.to;
            EXPECT_EQ(record.tasKn, departing ? c.to : -c.to);
            EXPECT_EQ(record.maxLate, departing ? 1150 : 1050);
            EXPECT_EQ(record.vsFpm, 0);
        }
    // Reports that came while it had no object have left the ground: no later one may tell it so.
    for (const bool airborne : {false, true}) {
        LiveAc& record = taxiing(home, 60);
        record.stream().push_back(groundReport(away(home, 0, 400), 90));
        record.stream().push_back(airReport(away(home, 0, 900), 120, 0, 400));
        record.stream()[1].airborne = airborne;
        record.stream()[1].vs = record.stream()[2].vs = 1500;
        lf_setupGroundSegment(record);
        EXPECT_EQ(record.stage, airborne ? take_off : taxi);
    }
}

}  // namespace
}  // namespace skl::test
