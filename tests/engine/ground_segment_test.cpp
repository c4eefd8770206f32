// How a ground segment is shaped and timed, each rule at its bounds.
#include "engine/ground_segment.h"

#include <gtest/gtest.h>

#include "engine/engine_state.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

constexpr LaLo home{47.5, 8.5};

class GroundSegment : public MotionTest {
  protected:
    /// Taxiing north from `home`, with these points ahead, six seconds apart.
    static LiveAc taxiing(std::vector<LivePos> ahead, double speed = 20) {
        LiveAc record;
        record.onGround = true;
        record.stage = FlightStage::taxi;
        record.groundTurnRate = 0.001;
        record.simLat = home.lat;
        record.simLon = home.lon;
        record.stream() = {groundReport(home, speed)};
        for (LivePos& pos : ahead) {
            pos.time = record.stream().back().time + 600;
            record.stream().push_back(pos);
        }
        return record;
    }
};

TEST_F(GroundSegment, CornersAndMidpoints) {
    enum Shape { none, midpoint, curve };
    struct Case {
        double turn, meters;  ///< at the corner, from the front to it
        Shape shape;
        double speed = 20, cornerSpeed = 20;  ///< knots
        int32_t ticks = 600;                  ///< from the front to the corner
        double back = 60, nose = 0;           ///< meters from the corner to the point behind it; degrees
    };
    // The last two: back to where it came from, the nose across.
    for (const Case& c : {Case{2.99, 90, none},
                          {3.01, 40, curve},
                          {2.99, 101, midpoint, 20, 25.1},
                          {2.99, 101, none, 20, 25},
                          {2.99, 99, none, 20, 26},
                          {44.9, 90, curve},
                          {45.1, 50.1, midpoint},
                          {45.1, 49.9, curve},
                          {90, 90, midpoint, 43},
                          {90, 90, curve, 43.1},
                          {90, 90, curve, 20, 20, 599},
                          {159.9, 40, curve},
                          {160.1, 40, none},
                          {170, 90, midpoint},
                          {180, 4, none, 20, 20, 600, 4, 90},
                          {180, 4, curve, 20, 20, 600, 4.01, 90}}) {
        SCOPED_TRACE(testing::Message() << c.turn << " degrees after " << c.meters << " m at " << c.speed);
        const LaLo corner = away(home, 0, c.meters);
        LiveAc record = taxiing(
            {groundReport(corner, c.cornerSpeed), groundReport(away(corner, c.turn, c.back), 20)}, c.speed);
        record.stream()[1].time = c.ticks;
        record.simHeading = toRad(c.nose);
        nextPosGround(record);
        EXPECT_EQ(record.curve.set(), c.shape == curve);
        ASSERT_EQ(record.stream().size(), c.shape == curve ? 2u : c.shape == midpoint ? 4u : 3u);
        EXPECT_NEAR(record.curveAngle, c.shape == curve ? c.turn - c.nose : 0, 0.01);
        if (c.shape != midpoint) continue;
        EXPECT_NEAR(gf_distanceNm(home, record.stream()[1].pos()) * metersPerNm, c.meters / 2, 0.01);
        EXPECT_EQ(record.stream()[1].speed, (c.speed + c.cornerSpeed) / 2);
    }
}

TEST_F(GroundSegment, WaysWithoutACorner) {
    const LivePos slow = groundReport(away(home, 0, 150), 5);
    for (const int32_t predictLeft : {0, 1})
        for (const bool stops : {false, true}) {
            LiveAc record = stops ? taxiing({slow, slow}) : taxiing({slow});
            record.stream().back().stopped = stops;
            record.predictLeft = predictLeft;
            record.targetHeading = toRad(359);
            record.simHeading = toRad(stops ? 1.99 : 2.01);
            const size_t before = record.stream().size();
            nextPosGround(record);
            EXPECT_EQ(record.stream().size() > before, stops || predictLeft == 0);
            EXPECT_NEAR(record.headingError, stops ? 2.99 : 3.01, 1e-9);
            EXPECT_EQ(record.turningOnGround, !stops);
        }
    // Points that were made where the aircraft stood carry the height of the ground.
    for (const int airborne : {0, 1, 2}) {
        LiveAc record = taxiing({slow});
        LivePos &from = record.stream()[0], &to = record.stream()[1];
        from.lon = -179.9999, to.lon = 179.9997;
        from.alt = 700, to.alt = 500;
        from.airborne = airborne == 1, to.airborne = airborne == 2;
        from.time = 1;
        lf_insertMidpoint(record);
        EXPECT_EQ(record.stream()[1].alt, airborne ? 600 : 0);
        EXPECT_EQ(record.stream()[1].airborne, airborne != 0);
        EXPECT_NEAR(record.stream()[1].lon, 179.9999, 1e-9);
        EXPECT_EQ(record.stream()[1].time, 301);  // 300.5
    }
}

TEST_F(GroundSegment, TurnRateAndTime) {
    // Degrees; ticks at 36 kn, where the turn asks for ten times the degrees; factor of the category's rate.
    // Too short; just enough; ample; ample, but long; ample, but much to turn; the bound; more than a square
    // counts as one; the least.
    constexpr double rates[][3] = {{30, 150, 2},
                                   {30, 300, 1},
                                   {5, 100, 1 / 2.0},
                                   {30, 600, 111.12 / 60},
                                   {40, 481, 4 / (481 / 400.0)},
                                   {45, 900, 166.68 / 60},
                                   {45.1, 900, 45.1 / 30},
                                   {60, 300, 0.5},
                                   {60, 1800, 2},
                                   {120, 6000, 3},
                                   {0.04, 25, 1 / 25.0}};
    for (const auto& [angle, ticks, factor] : rates)
        for (const bool onCurve : {false, true}) {
            SCOPED_TRACE(testing::Message() << angle << " degrees, curve " << onCurve);
            LiveAc record = taxiing({groundReport(away(home, 0, ticks / 10000 * metersPerNm), 36)}, 36);
            record.turningOnGround = !onCurve;
            (onCurve ? record.curveAngle : record.headingError) = angle;
            if (onCurve) record.curve.ctrlEast = record.curve.ctrlNorth = 0;
            lf_timeGroundSegment(record);
            EXPECT_NEAR(record.turnRate, 0.001 * factor, 1e-6);
            EXPECT_EQ(record.maxLate, angle >= 90 ? 2000 : 1000);
            EXPECT_NEAR(record.stream()[1].time, std::min(ticks, 600.0 + record.maxLate), 1);
            record.predictLeft = 1;  // knows no slack
            lf_timeGroundSegment(record);
            EXPECT_NEAR(record.stream()[1].time, ticks, 1);
        }
    // Times of the front, of the stop and now; when it is due.
    constexpr int32_t stops[][4] = {{0, 600, 0, 600},     {0, 600, 590, 615},   {0, 10, 0, 25},
                                    {500, 300, 400, 525}, {0, 600, 1590, 1600}, {0, 600, 1700, 1700}};
    for (const auto& [front, next, now, due] : stops) {
        LiveAc record = taxiing({groundReport(home, 0)});
        record.stream()[0].time = front;
        record.stream()[1].time = next;
        record.stream()[1].stopped = true;
        engineTick = now;
        lf_timeGroundSegment(record);
        EXPECT_EQ(record.stream()[1].time, due) << front << ' ' << next << ' ' << now;
    }
}

}  // namespace
}  // namespace skl::test
