// What happens at the end of a stream: predicted points, their speeds and places, and when there are none.
#include <gtest/gtest.h>

#include "core/parameters.h"
#include "engine/engine_state.h"
#include "engine/slack.h"
#include "engine/update_cycle.h"
#include "panel/traffic_range.h"
#include "parking/stands.h"
#include "simlink/user_aircraft.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

constexpr LaLo home{47.5, 8.5};

class Prediction : public MotionTest {
  protected:
    static LiveAc& flight(double speed = 300, AcCategory category = AcCategory::Large) {
        gf_resetEngine();
        return addFlying(airReport(home, speed, 90), category);
    }
    static LiveAc& taxi(double speed) {
        LiveAc& record = flight(speed);
        record.stream().front() = groundReport(home, speed, 90);
        record.stream().front().time = 3000;
        record.onGround = true;
        record.stage = FlightStage::taxi;
        return record;
    }
    /// Predicts to the end, each point taken over as the next front; the points in their order.
    static std::vector<LivePos> toTheEnd(LiveAc& record) {
        std::vector<LivePos> points;
        while (lf_extendStream(record)) {
            points.push_back(record.stream().back());
            record.stream().pop_front();
        }
        return points;
    }
    static std::vector<double> speeds(const std::vector<LivePos>& points) {
        std::vector<double> knots;
        for (const LivePos& point : points) knots.push_back(point.speed);
        return knots;
    }
};

TEST_F(Prediction, InTheAir) {
    LiveAc& record = flight();
    std::vector<LivePos> points = toTheEnd(record);
    ASSERT_EQ(points.size(), 8u);
    EXPECT_EQ(record.predictLeft, -1);
    EXPECT_NEAR(points[1].speed, 285 * 0.95, 1e-9);
    EXPECT_NEAR(gf_distanceNm(home, points[0].pos()), 285 * 8 / 3600.0, 1e-4);
    EXPECT_NEAR(toDeg(bearingRad(home, points[0].pos())), 90, 1e-6);
    EXPECT_EQ(points[7].alt, 35000);

    LiveAc& final = flight(150);
    final.landing = true;
    final.stream().front().alt = 100;
    points = toTheEnd(final);
    EXPECT_NEAR(points[4].speed, 150 * std::pow(0.9, 5), 1e-9);
    EXPECT_EQ(points[5].speed, points[4].speed);
    EXPECT_NEAR(points[0].alt, 100 - 80.04, 1e-9);
    EXPECT_TRUE(points[0].airborne);
    EXPECT_FALSE(points[1].airborne);

    LiveAc& climbing = flight(150);
    climbing.stage = FlightStage::take_off;
    EXPECT_EQ(toTheEnd(climbing)[0].alt, 35200);
}

TEST_F(Prediction, RunsOnTheGround) {
    LiveAc& departing = taxi(30);
    departing.departing = true;
    std::vector<LivePos> points = toTheEnd(departing);
    EXPECT_EQ(speeds(points), (std::vector<double>{40, 80, 110, 150, 170, 180, 180, 180, 180, 180}));
    EXPECT_EQ(points[5].vs, 2400);
    LiveAc& rollout = taxi(140);
    rollout.rollout = true;
    rollout.stream().front().alt = 1400;  // as a point from a new object has it
    points = toTheEnd(rollout);
    EXPECT_EQ(speeds(points), (std::vector<double>{100, 80, 60, 30, 20, 20, 20, 20, 20, 20}));
    EXPECT_FALSE(points[0].airborne);
    LiveAc& nearlyStopped = taxi(3);
    nearlyStopped.rollout = true;
    EXPECT_EQ(toTheEnd(nearlyStopped)[0].speed, 3) << "nothing makes it faster";
}

TEST_F(Prediction, AParkedAircraftStandsForAWeek) {
    gf_resetStands();
    stands.assign(1, {});
    stands[0].sid = 1;
    stands[0].occupied = true;
    LiveAc& parked = taxi(0);
    parked.stage = FlightStage::parked;
    parked.parkedMoving = true;
    parked.standId = 1;
    ASSERT_TRUE(lf_extendStream(parked));
    EXPECT_TRUE(parked.stream()[1].stopped);
    EXPECT_EQ(parked.stream()[1].time, 3000 + 60480000);
    EXPECT_FALSE(parked.parkedMoving);
    EXPECT_FALSE(stands[0].occupied);
    EXPECT_FALSE(lf_extendStream(parked));
    gf_resetStands();
}

TEST_F(Prediction, OnlyWithinRangeOfTheUserAndForCategoriesThatAreOn) {
    const auto extends = [&](AcCategory category, double userMeters) {
        LiveAc& record = flight(300, category);
        const LaLo user = userMeters > 0 ? away(home, 0, userMeters) : LaLo{};
        engineUser.lat = user.lat;
        engineUser.lon = user.lon;
        return lf_extendStream(record);
    };
    rangeNm = 20;
    EXPECT_TRUE(extends(AcCategory::Large, 0)) << "nobody knows where the user is";
    EXPECT_TRUE(extends(AcCategory::Large, 19.4 * metersPerNm));
    EXPECT_FALSE(extends(AcCategory::Large, 19.6 * metersPerNm));
    for (const bool on : {true, false}) {
        LIGHT_AIRCRAFT.value = HELICOPTERS.value = HIGH_PERF_AIRCRAFT.value = on;
        for (const AcCategory category : {AcCategory::Light, AcCategory::Rotorcraft, AcCategory::HighPerf})
            EXPECT_EQ(extends(category, 0), on);
    }
    EXPECT_TRUE(extends(AcCategory::Buzjets, 0));
}

}  // namespace
}  // namespace skl::test
