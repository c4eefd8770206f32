// The figures of motion that the simulator stand-in works out.
#include "standin/simulator/motion.h"

#include <gtest/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>

namespace {

// Poses of one aircraft into the figures.
class MotionTest : public ::testing::Test {
  protected:
    void SetUp() override {
        for (int i = 0; i <= 20; ++i) {  // eastwards along the equator at 100 m/s, with a gap of 60 s
            feed.add("RTTFC,1,0," + std::to_string(i * 200 / kDegree) +
                     ",3000,0,0,90,194.4,FLY1,A320,REG,,," +
                     std::to_string(1000 + 2 * i + (i > 10 ? 60 : 0)) +
                     ",X,,adsb,0,-1,-1,-1,0,-1,-1,-1,0,none,A3");
        }
        feed.add("RTTFC,1,5,5,0,0,0,0,0,SHORT");
        feed.order();
        object.id = 1000;
        object.tail = "FLY1";
    }
    // Flies straight; `change` may bend the pose of a moment.
    nlohmann::json fly(double seconds, const std::function<void(double, simulator::Pose&)>& change) {
        simulator::Motion motion(1 / 30.0, 0.2, feed);
        motion.created(object);
        for (int i = 0; i <= seconds * 30; ++i) {
            simulator::Pose pose{i / 30.0, 0, 100 * (i / 30.0) / kDegree, 0, 90, 194.4, 3000};
            change(pose.t, pose);
            motion.pose(1000, pose);
        }
        return motion.report();
    }
    static constexpr double kDegree = 111194.93;
    simulator::FeedPaths feed;
    simulator::SimObject object;
};

TEST_F(MotionTest, AStraightFlightHasNoFault) {
    const auto report = fly(20, [](double, simulator::Pose&) {});
    EXPECT_EQ(report["step"]["breaches"], 0);
    EXPECT_EQ(report["step"]["poses"], 600);
    EXPECT_EQ(report["heading"]["breaches"], 0);
    EXPECT_EQ(report["pitch"]["breaches"], 0);
    EXPECT_LT(report["air"]["Large"]["accelerationG"]["max"], 0.01);
    EXPECT_LT(report["crossTrack"]["max"], 0.1);
    EXPECT_EQ(report["crossTrack"]["flights"], 1);
    EXPECT_LT(report["crossTrack"]["leftOutShare"], 0.02);
    EXPECT_FALSE(report.contains("onGround"));
}

TEST_F(MotionTest, FindsJumpsTurnsAndSpeedChangesWithTheirSecond) {
    auto report = fly(20, [](double t, simulator::Pose& pose) { pose.lon += t > 9.99 ? 15 / kDegree : 0; });
    EXPECT_EQ(report["step"]["breaches"], 1);
    EXPECT_NEAR(report["step"]["worst"]["t"].get<double>(), 10, 0.05);
    EXPECT_NEAR(report["step"]["worst"]["value"].get<double>(), 18.3, 0.1);
    EXPECT_EQ(report["step"]["worst"]["tail"], "FLY1");
    EXPECT_NEAR(report["air"]["all"]["accelerationG"]["max"].get<double>(), 15 / 9.80665, 0.1);

    report = fly(20, [](double t, simulator::Pose& pose) {
        pose.heading += t > 4.99 ? 2 : 0;  // allowed are 1.83 degrees
        pose.pitch -= t > 6.99 ? 0.6 : 0;  // and 0.67
    });
    EXPECT_EQ(report["heading"]["breaches"], 1);
    EXPECT_EQ(report["pitch"]["breaches"], 0);
    EXPECT_NEAR(report["air"]["all"]["yawRate"]["max"].get<double>(), 2, 0.1);

    // Its own speed counts, the report's as well.
    report = fly(20, [](double, simulator::Pose& pose) { pose.airspeed = 50; });
    EXPECT_EQ(report["step"]["breaches"], 0);
    object.tail = "OTHER";
    report = fly(20, [](double, simulator::Pose& pose) { pose.airspeed = 50; });
    EXPECT_GT(report["step"]["breaches"], 500);
}

TEST_F(MotionTest, MeasuresTheDistanceFromThePathAndLeavesGapsOut) {
    auto report = fly(20, [](double, simulator::Pose& pose) { pose.lat = 20 / kDegree; });
    EXPECT_NEAR(report["crossTrack"]["p95"].get<double>(), 20, 1);
    EXPECT_NEAR(report["crossTrack"]["max"].get<double>(), 20, 0.05);
    // From 2000 to 2200 m there was no report, and nothing of a path a minute past the end.
    report = fly(
        100, [](double t, simulator::Pose& pose) { pose.lat = t > 20.1 && t < 21.9 ? 500 / kDegree : 0; });
    EXPECT_LT(report["crossTrack"]["max"], 0.1);
    EXPECT_NEAR(report["crossTrack"]["leftOutShare"].get<double>(), 0.32, 0.03);
}

TEST_F(MotionTest, JudgesTouchDownWheelsAndSliding) {
    const auto report = fly(40, [](double t, simulator::Pose& pose) {
        pose.height = t < 10 ? 300 - 30 * t + 0.4 : 0.4;  // 1800 feet a minute down to the ground
        if (t > 20) {
            pose.height = 3;  // hovers
        }
        if (t > 30) {
            pose.height = 0;
            pose.heading = t > 35 ? 270 : 150;  // slides, then goes backwards
        }
    });
    const auto& ground = report["onGround"];
    EXPECT_EQ(ground["touchDown"]["count"], 1);
    EXPECT_NEAR(ground["touchDown"]["hardest"]["feetPerMinute"].get<double>(), 1800, 60);
    EXPECT_EQ(ground["touchDown"]["tooHard"], 1);
    EXPECT_NEAR(ground["wheels"]["breaches"].get<double>(), 9, 1);
    EXPECT_NEAR(ground["wheels"]["worst"]["metres"].get<double>(), 0.914, 0.01);
    EXPECT_NEAR(ground["sideways"]["seconds"].get<double>(), 5, 1);
    EXPECT_NEAR(ground["sideways"]["backwards"].get<double>(), 4, 1);
    // The window of the turn lies between 60 and 180 degrees.
    EXPECT_NEAR(ground["sideways"]["worst"]["degrees"].get<double>(), 120, 1);
}

}  // namespace
