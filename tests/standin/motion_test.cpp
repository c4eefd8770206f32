// The figures of motion that the simulator stand-in works out.
#include "standin/simulator/motion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>

#include "standin/simulator/overlaps.h"

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

TEST_F(MotionTest, JudgesTouchDowns) {
    const auto report = fly(40, [](double t, simulator::Pose& pose) {
        // 1800 feet a minute down to the ground; later 20 s on the ground end in a hop of a foot, which is
        // none.
        pose.height = std::max(0.4, t < 30 ? 300 - 30 * t + 0.4 : 1.0 - (t - 30));
    });
    const auto& touchDown = report["onGround"]["touchDown"];
    EXPECT_EQ(touchDown["count"], 1);
    EXPECT_EQ(touchDown["tooHard"], 1);
    EXPECT_NEAR(touchDown["hardest"]["feetPerMinute"].get<double>(), 1800, 60);
    EXPECT_EQ(touchDown["outside"][0]["tail"], "FLY1");
    EXPECT_NEAR(touchDown["longestFloat"]["seconds"].get<double>(), 0.33, 0.1);
}

TEST_F(MotionTest, TellsWheelsOffTheGroundFromALiftOff) {
    struct Case {
        const char* what;
        std::function<double(double)> feet;
        int breaches;
        double worst;  // metres
    };
    const Case cases[] = {
        {"lifts off within some seconds", [](double t) { return t < 5 ? 0.0 : 5 * (t - 5); }, 0, 1.52},
        {"hovers", [](double t) { return t > 5 && t <= 9 ? 3.0 : 0.0; }, 120, 0.914},
        {"hovers to the end", [](double t) { return t > 5 ? 3.0 : 0.0; }, 301, 0.914},
        {"rolls in the ground", [](double t) { return t > 5 && t <= 6 ? -2.0 : 0.0; }, 30, -0.61},
        {"stands a foot too high", [](double) { return 1.0; }, 0, 0.305},
        {"appears in the air and floats there", [](double) { return 15.0; }, 0, 0},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        const auto report = fly(20, [&](double t, simulator::Pose& pose) { pose.height = test.feet(t); });
        if (!report.contains("onGround")) {
            EXPECT_EQ(test.worst, 0);
            continue;
        }
        const auto& wheels = report["onGround"]["wheels"];
        EXPECT_NEAR(wheels["breaches"].get<int>(), test.breaches, 1);
        if (test.breaches > 0) {
            EXPECT_NEAR(wheels["worst"]["metres"].get<double>(), test.worst, 0.01);
            EXPECT_NEAR(wheels["worst"]["t"].get<double>(), 5.03, 0.05);
        }
    }
}

TEST_F(MotionTest, TellsSlidingFromCurvesAndPushbacks) {
    struct Case {
        const char* what;
        double knots;
        std::function<double(double)> course, heading;  // degrees at a second
        int sideways, inCurves, backwards;
    };
    const auto straight = [](double) { return 90.0; };
    const auto corner = [](double t) { return t < 10 ? 90.0 : 0.0; };
    const auto bend = [](double t) { return t < 10 ? 90.0 : 90 - 3 * std::min(t - 10, 20.0); };
    const Case cases[] = {
        {"rolls straight", 15, straight, straight, 0, 0, 0},
        {"24 degrees off", 15, straight, [](double) { return 114.0; }, 0, 0, 0},
        {"30 degrees off", 15, straight, [](double) { return 60.0; }, 30, 0, 0},
        {"at walking pace", 4, straight, [](double) { return 150.0; }, 0, 0, 0},
        {"pushed back", 6, straight, [](double) { return 280.0; }, 0, 0, 30},
        {"the nose comes too late: 3 s are forgiven", 15, corner,
         [](double t) { return t < 17 ? 90.0 : 0.0; }, 3, 4, 0},
        {"wide bend with the nose straight on", 15, bend, [](double) { return 90.0; }, 0, 15, 0},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        double east = 0;
        double north = 0;
        const auto report = fly(30, [&](double t, simulator::Pose& pose) {
            pose.lat = north / kDegree;
            pose.lon = east / kDegree;
            pose.height = 0;
            pose.heading = test.heading(t);
            const double way = test.knots * 1852 / 3600 / 30;
            east += way * std::sin(test.course(t) * 3.14159265 / 180);
            north += way * std::cos(test.course(t) * 3.14159265 / 180);
        });
        const auto& sideways = report["onGround"]["sideways"];
        EXPECT_NEAR(sideways["seconds"].get<int>(), test.sideways, 1);
        EXPECT_NEAR(sideways["inCurves"].get<int>(), test.inCurves, test.inCurves > 4 ? 5 : 1);
        EXPECT_NEAR(sideways["backwards"].get<int>(), test.backwards, 1);
        EXPECT_EQ(sideways.contains("worst"), test.sideways > 0);
    }
}

TEST(OverlapsTest, FindsAircraftInOneAnotherWhateverTheirStaticHeights) {
    simulator::World world{simulator::Options{}};
    const auto put = [&world](const char* tail, const char* title, double metresNorth, double feet) {
        simulator::SimObject object;
        object.title = title;
        object.tail = tail;
        object.lat = world.user.lat + metresNorth / 111195;
        object.lon = world.user.lon;
        object.alt = feet;
        return world.add(object, feet == 0).id;
    };
    put("A", "A320 one", 500, 0);
    put("B", "A320 two", 529, 0);  // wing tip to wing tip with room
    simulator::Overlaps overlaps;
    overlaps.look(1, world);
    EXPECT_EQ(overlaps.report()["pairs"], 0);

    const auto on = put("C", "B777 three", 560, 0);
    const auto over = put("D", "B777 four", 560, 80);
    overlaps.look(2, world);
    overlaps.look(3, world);
    auto report = overlaps.report();
    EXPECT_EQ(report["pairs"], 1);
    EXPECT_EQ(report["places"][0]["tails"], nlohmann::json({"B", "C"}));
    EXPECT_NEAR(report["worst"]["metres"].get<double>(), 31, 0.1);
    EXPECT_EQ(report["worst"]["seconds"], 2);

    // One with high legs on the ground and one with short legs.
    auto& high = *world.find(on);
    auto& low = *world.find(over);
    high.staticHeight = 35;
    low.staticHeight = 1;
    high.alt = world.ground(high.lat, high.lon) + 35;
    low.alt = world.ground(low.lat, low.lon) + 1;
    overlaps.look(4, world);
    EXPECT_NEAR(overlaps.report()["worst"]["metres"].get<double>(), 0, 0.01);
}

}  // namespace
