// Aircraft that wait on the ground: in a queue, too near to each other, and for too long.
#include <gtest/gtest.h>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

constexpr LaLo home{47.5, 8.5};

class Holding : public MotionTest {
  protected:
    static void queue(double meters) {
        gf_resetEngine();
        for (const uint32_t i : {0u, 1u}) {
            LiveAc& record =
                addFlying(groundReport(away(home, 90, meters * i), 5, 90), AcCategory::Large, flownHexid + i);
            record.onGround = true;
            record.stage = FlightStage::taxi;
            record.halfSpanNm = 17.9 / metersPerNm;
            record.stream().front().stopped = true;
        }
    }
    static void run(double seconds) {
        for (int i = 0; i < seconds * 100; ++i) tick();
    }
};

TEST_F(Holding, AQueueStandsStillThenGoesOnOrGoes) {
    queue(60);
    run(40);
    const std::vector<LiveAc> before = liveAcs;
    const auto pose = [](const LiveAc& record) {
        return std::tuple(record.simLat, record.simLon, record.simHeading);
    };
    for (int i = 0; i < 120; ++i) {
        for (const uint32_t k : {0u, 1u})
            report(groundReport(away(before[k].simPos(), i * 77, 8), i % 3, i * 20), flownHexid + k);
        for (int t = 0; t < 500; ++t) {
            tick();
            for (const size_t k : {0u, 1u}) ASSERT_EQ(pose(liveAcs[k]), pose(before[k])) << i;
        }
    }
    for (const LiveAc& record : liveAcs) {
        EXPECT_EQ(record.simState, SimObjectState::active);
        EXPECT_TRUE(record.holding);
    }
    for (const uint32_t k : {0u, 1u})
        report(groundReport(away(before[k].simPos(), 0, 25), 8, 0), flownHexid + k);
    run(1);
    for (const size_t k : {0u, 1u}) EXPECT_NE(pose(liveAcs[k]), pose(before[k]));
    // Both are heard no more; the one that goes first leaves the other where it is.
    run(60);
    for (LiveAc& record : liveAcs) {
        const int32_t since = record.holdStart;
        while (record.simState == SimObjectState::active && engineTick < since + 200000) tick();
        EXPECT_GE(engineTick - since, 21 * 6000);
        EXPECT_LE(engineTick - since, 21 * 6000 + 301);
    }
}

TEST_F(Holding, OneOfTwoThatOverlapGoes) {
    for (const double meters : {42.5, 43.5}) {
        queue(meters);
        run(60);
        const auto stays = [](const LiveAc& record) { return record.simState == SimObjectState::active; };
        EXPECT_EQ(std::count_if(liveAcs.begin(), liveAcs.end(), stays), meters < 42.96 ? 1 : 2);
    }
}

TEST_F(Holding, ARejectedTakeOffEndsInAHold) {
    LiveAc& record = addFlying(groundReport(home, 10, 90));
    record.onGround = true;
    record.stage = FlightStage::taxi;
    record.simHeading = toRad(90);
    double meters = 0, fastest = 0;
    bool ran = false;
    for (const double knots : {10, 20, 35, 50, 60, 60, 45, 30, 20, 12, 8, 8, 8, 8, 8, 8}) {
        run(4);
        meters += knots * 4 * 0.514;
        report(groundReport(away(home, 90, meters), knots, 90));
        ran |= record.departing;
    }
    EXPECT_TRUE(ran);
    EXPECT_FALSE(record.departing);
    run(60);
    for (int i = 0; i < 6000; ++i)
        for (const PosEntry& pose : tick()) fastest = std::max(fastest, pose.tas);
    EXPECT_TRUE(record.holding);
    EXPECT_EQ(fastest, 0);
    EXPECT_NEAR(crossTrackMeters(home, 90, record.simPos()), 0, 1);
}

}  // namespace
}  // namespace skl::test
