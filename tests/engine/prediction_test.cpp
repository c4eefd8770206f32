// What happens at the end of a stream: predicted points, their speeds and places, and when there are none.
#include <gtest/gtest.h>

#include <vector>

#include "core/parameters.h"
#include "engine/engine_state.h"
#include "engine/slack.h"
#include "engine/update_cycle.h"
#include "panel/traffic_range.h"
#include "simlink/user_aircraft.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

constexpr LaLo home{47.5, 8.5};

class Prediction : public MotionTest {
  protected:
    LiveAc& flight(double speed = 300, AcCategory category = AcCategory::Large) {
        gf_resetEngine();
        return addFlying(airReport(home, speed, 90), category);
    }
    LiveAc& taxi(double speed) {
        LiveAc& record = flight(speed);
        record.stream.front() = groundReport(home, speed, 90);
        record.stream.front().time = 3000;
        record.onGround = true;
        record.stage = FlightStage::taxi;
        return record;
    }
    /// Predicts to the end, each point taken over as the next front; the points in their order.
    static std::vector<LivePos> toTheEnd(LiveAc& record) {
        std::vector<LivePos> points;
        while (lf_extendStream(record)) {
            points.push_back(record.stream.back());
            record.stream.pop_front();
        }
        return points;
    }
};

TEST_F(Prediction, InTheAir) {
    LiveAc& record = flight();
    const std::vector<LivePos> points = toTheEnd(record);
    ASSERT_EQ(points.size(), 8u);
    EXPECT_EQ(record.predictLeft, -1);
    EXPECT_FALSE(lf_extendStream(record));
    EXPECT_NEAR(points[0].speed, 285, 1e-9);
    EXPECT_NEAR(points[1].speed, 285 * 0.95, 1e-9);
    EXPECT_EQ(points[7].time, 3000 + 8 * 800);
    EXPECT_NEAR(gf_distanceNm(home, points[0].pos()), 285 * 8 / 3600.0, 1e-4);
    EXPECT_NEAR(toDeg(bearingRad(home, points[0].pos())), 90, 1e-6);
    EXPECT_EQ(points[7].alt, 35000);
    EXPECT_TRUE(points[7].airborne);
    EXPECT_FALSE(points[7].stopped);
    EXPECT_NEAR(toTheEnd(flight(1)).back().speed, 1, 1e-9) << "never below a knot";
}

TEST_F(Prediction, OnApproach) {
    LiveAc& record = flight(150);
    record.landing = true;
    record.stream.front().alt = 1000;
    std::vector<LivePos> points = toTheEnd(record);
    ASSERT_EQ(points.size(), 8u);
    // Slower while many points are left, then steady.
    EXPECT_NEAR(points[0].speed, 135, 1e-9);
    EXPECT_NEAR(points[4].speed, 150 * 0.9 * 0.9 * 0.9 * 0.9 * 0.9, 1e-9);
    EXPECT_EQ(points[5].speed, points[4].speed);
    EXPECT_EQ(points[0].vs, -667);
    EXPECT_NEAR(points[0].alt, 1000 - 80.04, 1e-9);

    LiveAc& low = flight(150);
    low.landing = true;
    low.stream.front().alt = 100;
    points = toTheEnd(low);
    EXPECT_TRUE(points[0].airborne);
    EXPECT_FALSE(points[1].airborne);
    EXPECT_EQ(points[1].alt, 0);

    LiveAc& flaring = flight(150);
    flaring.landing = true;
    flaring.flareState = 2;
    flaring.stream.front().alt = 900;
    EXPECT_EQ(toTheEnd(flaring)[0].alt, 900);

    LiveAc& climbing = flight(150);
    climbing.stage = FlightStage::take_off;
    climbing.stream.front().alt = 900;
    EXPECT_EQ(toTheEnd(climbing)[0].alt, 1100);
    EXPECT_EQ(climbing.stream.back().vs, 1500);
}

TEST_F(Prediction, OnTheGround) {
    // Neither taking off nor rolling out: it stands.
    LiveAc& record = taxi(20);
    std::vector<LivePos> points = toTheEnd(record);
    ASSERT_EQ(points.size(), 10u);
    EXPECT_TRUE(points[0].stopped);
    EXPECT_EQ(points[0].speed, 0);
    EXPECT_EQ(points[0].pos(), home);
    EXPECT_EQ(points[9].time, 3000 + 10 * 300);

    LiveAc& departing = taxi(30);
    departing.departing = true;
    points = toTheEnd(departing);
    const double speeds[] = {40, 80, 110, 150, 170, 180}, climbs[] = {0, 0, 0, 600, 1200, 2400};
    for (size_t i = 0; i < std::size(speeds); ++i) {
        EXPECT_EQ(points.at(i).speed, speeds[i]);
        EXPECT_EQ(points.at(i).vs, climbs[i]);
    }
    EXPECT_NEAR(gf_distanceNm(home, points[0].pos()), 40 * 3 / 3600.0, 1e-5);
    EXPECT_FALSE(points[0].airborne);

    LiveAc& rollout = taxi(140);
    rollout.rollout = true;
    rollout.stream.front().vs = -600;
    points = toTheEnd(rollout);
    const double slower[] = {100, 80, 60, 30, 20, 20};
    for (size_t i = 0; i < std::size(slower); ++i) EXPECT_EQ(points.at(i).speed, slower[i]);
    EXPECT_EQ(points[0].vs, 0);
}

TEST_F(Prediction, StandingOnes) {
    LiveAc& parked = taxi(0);
    parked.stage = FlightStage::parked;
    parked.parkedMoving = true;
    ASSERT_TRUE(lf_extendStream(parked));
    EXPECT_EQ(parked.predictLeft, 1);
    EXPECT_TRUE(parked.stream[1].stopped);
    EXPECT_EQ(parked.stream[1].time, 3000 + 60480000);
    EXPECT_FALSE(parked.parkedMoving);
    EXPECT_FALSE(lf_extendStream(parked));

    LiveAc& hovering = flight(40, AcCategory::Rotorcraft);
    hovering.stream.front().stopped = true;
    const std::vector<LivePos> points = toTheEnd(hovering);
    ASSERT_EQ(points.size(), 8u);
    EXPECT_EQ(points[7].pos(), home);
    EXPECT_EQ(points[0].speed, 0);
}

TEST_F(Prediction, OnlyWithinRangeOfTheUserAndForCategoriesThatAreOn) {
    const auto extends = [&](AcCategory category, double userMeters) {
        LiveAc& record = flight(300, category);
        engineUser = {};
        if (userMeters > 0) {
            const LaLo user = away(home, 0, userMeters);
            engineUser.lat = user.lat;
            engineUser.lon = user.lon;
        }
        return lf_extendStream(record);
    };
    rangeNm = 20;
    EXPECT_TRUE(extends(AcCategory::Large, 0)) << "nobody knows where the user is";
    EXPECT_TRUE(extends(AcCategory::Large, 19.4 * metersPerNm));
    EXPECT_FALSE(extends(AcCategory::Large, 19.6 * metersPerNm));
    LIGHT_AIRCRAFT.value = false;
    HELICOPTERS.value = HIGH_PERF_AIRCRAFT.value = true;
    EXPECT_FALSE(extends(AcCategory::Light, 0));
    EXPECT_TRUE(extends(AcCategory::Rotorcraft, 0));
    HELICOPTERS.value = HIGH_PERF_AIRCRAFT.value = false;
    EXPECT_FALSE(extends(AcCategory::Rotorcraft, 0));
    EXPECT_FALSE(extends(AcCategory::HighPerf, 0));
    EXPECT_TRUE(extends(AcCategory::Buzjets, 0));
    LiveAc& running = flight(300, AcCategory::Light);
    running.predictLeft = 4;
    EXPECT_TRUE(lf_extendStream(running)) << "a prediction that runs is not cut off";
}

TEST_F(Prediction, AnActiveAircraftWithoutAStreamOrAnObjectGoes) {
    LiveAc& record = flight();
    record.stream.clear();
    EXPECT_TRUE(tick().empty());
    EXPECT_EQ(record.simState, SimObjectState::removingfromsim);
    tick();
    EXPECT_EQ(logCount("updateLiveAc stream empty ? "), 1);

    LiveAc& nobody = flight();
    nobody.objectId = 0;
    EXPECT_TRUE(tick().empty());
    EXPECT_EQ(nobody.simState, SimObjectState::removingfromsim);
    EXPECT_EQ(logCount("updateLiveAc objectid=0? hexid: "), 1);
}

}  // namespace
}  // namespace skl::test
