// A turnaround: in, out of a hold, onto the stand, a long stay, and off it again by each of the ways.
#include "engine/leave_stand.h"

#include <gtest/gtest.h>

#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "parking/stands.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

constexpr LaLo home{47.5, 8.5};
constexpr double standHeading = 30, halfSpanMeters = 17;  // degrees, meters

class LeaveStand : public MotionTest {
  protected:
    void SetUp() override {
        MotionTest::SetUp();
        gf_resetStands();
    }
    void TearDown() override {
        gf_resetStands();
        MotionTest::TearDown();
    }
    static LiveAc& aircraft(LaLo place, FlightStage stage) {
        LiveAc& record = addFlying(groundReport(place, 8, standHeading));
        record.onGround = true;
        record.stage = stage;
        record.slowSpeed = 4;
        record.halfSpanNm = halfSpanMeters / metersPerNm;
        return record;
    }
    /// Ticks, with a report every 5 s if `hears` gives one.
    static void run(double seconds, const std::function<LivePos(double)>& hears = {}) {
        for (int i = 1; i <= seconds * 100; ++i) {
            const LiveAc* record = lf_findLive(flownHexid);
            for (const PosEntry& pose : tick()) {
                pushed |= pose.tas < 0;
                EXPECT_TRUE(pose.tas >= 0 || record->stage == FlightStage::pushing_back);
            }
            if (hears && i % 500 == 0) report(hears(i / 100.0));
        }
    }
    /// Reports end 8 m short of the stand: the aircraft holds, parks and stands for 45 minutes.
    static LiveAc& parkedOutOfAHold() {
        gf_resetEngine();
        stands.assign(1, {});
        stands[0].id = "A1";
        stands[0].sid = 1;
        stands[0].lat = home.lat;
        stands[0].lon = home.lon;
        stands[0].heading = toRad(standHeading);
        stands[0].radius = 22 / metersPerNm;
        lf_standsChanged();
        g_apfLoaded = true;
        pushed = false;
        LiveAc& record = aircraft(away(home, standHeading + 180, 148), FlightStage::taxi);
        run(35, [](double t) {
            return groundReport(away(home, standHeading + 180, 148 - 4 * t), 8, standHeading);
        });
        run(45 * 60);
        return record;
    }
    static inline bool pushed = false;
};

TEST_F(LeaveStand, TurnaroundOutOfAHold) {
    struct Way {
        const char* what;
        double bearing;               ///< of the reports that leave, degrees from the nose
        std::optional<double> swing;  ///< of the nose, by the reports
        double turned;                ///< what comes of it
    };
    const Way ways[] = {
        {"straight", 180, {}, 0}, {"right", 180, 5, 90}, {"left", 180, -5, -90}, {"out", 0, {}, 0}};
    for (const Way& way : ways) {
        SCOPED_TRACE(way.what);
        LiveAc& record = parkedOutOfAHold();
        ASSERT_EQ(record.stage, FlightStage::parked);
        EXPECT_LT(gf_distanceNm(record.simPos(), home), 2 / metersPerNm);
        EXPECT_NEAR(toDeg(record.simHeading), standHeading, 3);
        const double nose = toDeg(record.simHeading);
        // What a taxi in with a turn at its end leaves behind.
        record.turningOnGround = true;
        record.headingError = 60;
        record.holding = true;
        record.rollout = true;
        record.touchdownHeading = record.simHeading;

        const auto leaving = [&](double t) {
            LivePos pos = groundReport(away(home, standHeading + way.bearing, std::min(2 * t, 60.0)), 4);
            if (way.swing) pos.trueHeading = toRad(standHeading + *way.swing);
            return pos;
        };
        run(90, leaving);
        EXPECT_FALSE(record.turningOnGround && record.headingError == 60);
        EXPECT_FALSE(record.rollout);
        EXPECT_NEAR(toDeg(angleDiff(record.simHeading, toRad(nose))), way.turned, way.turned == 0 ? 1 : 5);
        if (way.bearing == 0) {
            EXPECT_EQ(record.stage, FlightStage::taxi);
            EXPECT_FALSE(pushed);
            for (int i = 0; i < 12; ++i)
                run(5), report(groundReport(away(home, standHeading, 600 + 40 * i), 16, standHeading));
            EXPECT_EQ(record.simState, SimObjectState::active);
            continue;
        }
        EXPECT_TRUE(pushed);
        ASSERT_EQ(record.stage, FlightStage::pushed_back);
        EXPECT_NEAR(gf_distanceNm(record.simPos(), home) * metersPerNm, way.turned == 0 ? 55 : 57.6, 3);
        const LaLo waits = record.simPos();
        run(600, [&](double t) { return groundReport(away(waits, t * 7, 10), 1, t); });
        EXPECT_EQ(record.simPos(), waits);
        ASSERT_EQ(record.stage, FlightStage::pushed_back);
        run(10, [&](double t) { return groundReport(away(waits, nose, 40 + t), 9, t); });
        EXPECT_EQ(record.stage, FlightStage::taxi);
        EXPECT_EQ(record.standId, 0u);
        EXPECT_FALSE(record.holding);
        run(1);
        EXPECT_NE(record.simPos(), waits);
    }
}

TEST_F(LeaveStand, BesidesTheUsualWay) {
    LiveAc& record = parkedOutOfAHold();
    STRAIGHT_PBS_ONLY.value = true;
    record.pushCount = 2;
    lf_pushbackReport(record, groundReport(home, 4, 35));
    EXPECT_FALSE(record.pushTurnRight);
    STRAIGHT_PBS_ONLY.value = false;
    lf_pushbackReport(record, groundReport(home, 4, 0));
    EXPECT_FALSE(record.pushTurnRight) << "a track of 0 tells nothing";
    lf_pushbackReport(record, groundReport(home, 4, 35));
    lf_pushbackReport(record, groundReport(home, 4, 25));
    EXPECT_EQ(record.pushTurnRight, true) << "the first direction counts";

    stands.clear();
    lf_standsChanged();
    run(60, [&](double t) { return groundReport(away(home, standHeading + 180, 2 * t), 4); });
    EXPECT_EQ(record.stage, FlightStage::taxi) << "nobody knows where to push it";
    EXPECT_EQ(record.standId, 0u);
    EXPECT_FALSE(pushed);
}

TEST_F(LeaveStand, ReportsBehindAPushback) {
    struct Case {
        double before, meters;  ///< before: of the last report, 0 for none
        bool taxis;
    };
    constexpr double r = halfSpanMeters;
    const Case cases[] = {{0, 2.8 * r, false},   {0, 5.99 * r, false}, {0, 6.01 * r, true},
                          {10, 2.74 * r, false}, {10, 2.76 * r, true}, {60, 59, false},
                          {60, 61, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.meters);
        gf_resetEngine();
        LiveAc& record = aircraft(home, FlightStage::pushed_back);
        record.pushedDistance = c.before == 0 ? 900.0 : c.before / metersPerNm;
        record.standId = 1;
        record.predictLeft = 1;
        engineTick = 700;
        EXPECT_EQ(report(groundReport(away(home, 90, c.meters), 5)), c.taxis);
        EXPECT_EQ(record.holding, !c.taxis);
        EXPECT_EQ(record.holdStart, c.taxis ? 0 : 700);
        EXPECT_EQ(record.stream().front().time == 701 && record.predictLeft == 0, c.taxis);
        if (c.taxis) continue;
        EXPECT_NEAR(record.pushedDistance * metersPerNm, c.meters, 0.1);
    }
}

}  // namespace
}  // namespace skl::test
