// Whole flights through the motion core, on a clock of ticks: does the aircraft follow its reports, and
// smoothly?
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/random.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/slack.h"
#include "engine/update_cycle.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

constexpr LaLo home{47.5, 8.5};
constexpr double knotsToMs = 1852.0 / 3600;

class Flight : public MotionTest {};

Path straight(LaLo from, double bearing, double knots, double reported) {
    return [=](double t) { return airReport(away(from, bearing, knots * knotsToMs * t), reported, bearing); };
}

TEST_F(Flight, EnRouteIsOnTheLineAndOnTime) {
    const Path path = straight(home, 70, 450, 450);
    addFlying(path(0));
    const FlightLog log = fly(path, 1200, 5);
    ASSERT_EQ(log.poses.size(), 120000u);
    double worstCross = 0, worstAlong = 0;
    for (size_t i = 3000; i < log.poses.size(); i += 7) {
        const LaLo at{log.poses[i].lat, log.poses[i].lon};
        worstCross = std::max(worstCross, crossTrackMeters(home, 70, at));
        // Pose i has made the move of tick i.
        const LaLo due = path((static_cast<double>(i) + 1 - 3000) / 100).pos();
        worstAlong = std::max(worstAlong, gf_distanceNm(at, due) * metersPerNm);
    }
    EXPECT_LT(worstCross, 1.0);
    EXPECT_LT(worstAlong, 450 * knotsToMs / 100 + 1);
    EXPECT_LE(log.worstStep, 1.02);
    EXPECT_NEAR(log.segments, (1200 - 30) / 5, 1);
    EXPECT_GE(log.shortestSegment, 25);
    EXPECT_LT(log.worstTurn, 0.1);
    EXPECT_NEAR(log.poses.back().tas, 450, 1e-9);
}

TEST_F(Flight, SpeedReportedTooLowMakesItLateButNotForEver) {
    const Path path = straight(home, 70, 450, 405);
    addFlying(path(0));
    const FlightLog log = fly(path, 1200, 5);
    ASSERT_EQ(log.poses.size(), 120000u);
    for (const size_t i : {60000u, 119000u}) {
        const double way = gf_distanceNm(home, {log.poses[i].lat, log.poses[i].lon});
        const double lateness = (static_cast<double>(i) + 1 - 3000) / 100 - way / 450 * 3600;
        EXPECT_NEAR(lateness, 10, 0.6) << i;
    }
    EXPECT_LE(log.worstStep, 1.12);
}

/// A minute straight north, a turn by 90 degrees at 3 degrees a second to the given side, then straight on.
struct Turn {
    LaLo center;
    double side;  ///< 1 right, -1 left
    static constexpr double knots = 250, rate = 3, straightSeconds = 60, turnSeconds = 30;
    double radius() const { return knots * knotsToMs / toRad(rate); }

    LivePos operator()(double t) const {
        const double turned = std::clamp(t - straightSeconds, 0.0, turnSeconds) * rate;
        const double in = std::max(straightSeconds - t, 0.0) * knots * knotsToMs;
        const double out = std::max(t - straightSeconds - turnSeconds, 0.0) * knots * knotsToMs;
        const double a = toRad(turned);
        const double north = radius() * std::sin(a) - in;
        const double east = side * (radius() * (1 - std::cos(a)) + out);
        return airReport(place(north, east), knots, normalizeDegrees(side * turned), 8000);
    }
    static double normalizeDegrees(double d) { return d < 0 ? d + 360 : d; }
    LaLo place(double north, double east) const {
        const double lat = center.lat + north / 111120.0;
        return {lat, wrapLon(center.lon + east / (111120.0 * std::cos(toRad(center.lat))))};
    }
    /// Meters between a pose and the path.
    double off(LaLo at) const {
        const double north = (at.lat - center.lat) * 111120.0;
        const double east = side * wrapLon(at.lon - center.lon) * 111120.0 * std::cos(toRad(center.lat));
        if (north <= 0) return std::abs(east);
        if (east >= radius()) return std::abs(north - radius());
        return std::abs(std::hypot(north, east - radius()) - radius());
    }
};

void checkTurn(const Turn& turn) {
    addFlying(turn(0));
    const FlightLog log = fly(turn, 200, 5);
    ASSERT_EQ(log.poses.size(), 20000u);
    double worst = 0, right = 0, left = 0;
    for (const PosEntry& pose : log.poses) {
        worst = std::max(worst, turn.off({pose.lat, pose.lon}));
        right = std::min(right, toDeg(pose.bank));
        left = std::max(left, toDeg(pose.bank));
    }
    EXPECT_LT(worst, 30);
    EXPECT_LE(log.worstTurn, 3.2);
    EXPECT_LT(log.worstLonStep, 0.001);
    EXPECT_LE(log.worstStep, 1.05);
    // A bank to the right is negative.
    EXPECT_NEAR(turn.side > 0 ? right : left, turn.side * -15, 1);
    EXPECT_NEAR(turn.side > 0 ? left : right, 0, 1);
    const size_t tenSecondsAfter = 3000 + 9000 + 1000;
    EXPECT_NEAR(toDeg(log.poses[tenSecondsAfter].bank), 0, 1);
    EXPECT_NEAR(toDeg(angleDiff(log.poses.back().heading, toRad(turn.side * 90))), 0, 0.5);
}

TEST_F(Flight, TurnsKeepToTheArcAndBankTheRightWay) {
    for (const double lon : {8.5, 179.97, -179.97})
        for (const double side : {1.0, -1.0}) {
            SCOPED_TRACE(testing::Message() << "longitude " << lon << " side " << side);
            SetUp();
            checkTurn({{47.5, lon}, side});
            TearDown();
        }
    SetUp();
}

TEST_F(Flight, CrossesTheDateLineWestAndEast) {
    for (const double bearing : {90.0, 270.0}) {
        SCOPED_TRACE(bearing);
        SetUp();
        const LaLo start{52, bearing < 180 ? 179.9 : -179.9};
        const Path path = straight(start, bearing, 450, 450);
        addFlying(path(0));
        const FlightLog log = fly(path, 240, 5);
        ASSERT_EQ(log.poses.size(), 24000u);
        EXPECT_LT(log.worstLonStep, 0.001);
        EXPECT_LE(log.worstStep, 1.02);
        EXPECT_LT(gf_distanceNm({log.poses.back().lat, log.poses.back().lon}, path(210).pos()), 0.01);
        TearDown();
    }
    SetUp();
}

TEST_F(Flight, GapsOfTheFeedAreFlownThrough) {
    for (const double gap : {20.0, 60.0}) {
        SCOPED_TRACE(gap);
        SetUp();
        const Path path = straight(home, 70, 450, 450);
        addFlying(path(0));
        const FlightLog log = fly(path, 600, 5, [=](double t) { return t < 200 || t >= 200 + gap; });
        ASSERT_EQ(log.poses.size(), 60000u);
        EXPECT_LE(log.worstStep, 1.5);
        LiveAc* record = lf_findLive(flownHexid);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->simState, SimObjectState::active);
        EXPECT_EQ(record->predictLeft, 0);
        EXPECT_LT(crossTrackMeters(home, 70, record->simPos()), 30);
        // Late by the slack at most.
        EXPECT_LT(gf_distanceNm(record->simPos(), path(570).pos()), 450 * 10.5 / 3600);
        TearDown();
    }
    SetUp();
}

TEST_F(Flight, SilenceEndsInRemovalAfterEightPredictedPoints) {
    const Path path = straight(home, 70, 450, 450);
    addFlying(path(0));
    const FlightLog log = fly(path, 400, 5, [](double t) { return t <= 100; });
    // Each covers 8 seconds at the new speed, flown at the mean of the old and the new one.
    EXPECT_NEAR(static_cast<double>(log.poses.size()), 13000 + 8 * 800 * 0.95 / 0.975, 8);
    EXPECT_LE(log.worstStep, 1.1);
    EXPECT_EQ(lf_findLive(flownHexid)->simState, SimObjectState::removingfromsim);
}

TEST_F(Flight, AfterALongPauseItIsReplacedAndNotDraggedAlong) {
    const Path path = straight(home, 70, 450, 450);
    LiveAc& record = addFlying(path(0));
    FlightLog log = fly(path, 200, 5);
    // The ticks stand still for ten minutes while the feed goes on.
    const Path later = [&](double t) { return path(t + 600); };
    record.lastFeedTime -= 600;
    log = fly(later, 10, 5);
    EXPECT_LE(log.worstStep, 1.02);
    EXPECT_EQ(record.simState, SimObjectState::active);
    log = fly(later, 10, 5);
    EXPECT_LE(log.worstStep, 1.02);
    EXPECT_EQ(record.simState, SimObjectState::removingfromsim);
}

TEST_F(Flight, OneReportFromNowhereIsForgottenAfterTheNextGoodOne) {
    const Path path = straight(home, 70, 450, 450);
    LiveAc& record = addFlying(path(0));
    const Path poisoned = [&](double t) {
        LivePos pos = path(t);
        const int k = static_cast<int>(t / 5) % 5;
        if (k == 1 || k == 2) pos.lat += 3;
        return pos;
    };
    const FlightLog log = fly(poisoned, 600, 5);
    EXPECT_EQ(record.simState, SimObjectState::active);
    EXPECT_LE(log.worstStep, 1.02);
    EXPECT_LT(crossTrackMeters(home, 70, record.simPos()), 1);
}

TEST_F(Flight, PoisonInOneStreamLeavesTheOthersAlone) {
    const auto run = [&](bool poison) {
        const Path path = straight(home, 70, 450, 450);
        const Path other = straight({46, 7}, 200, 300, 300);
        addFlying(path(0));
        LiveAc& second = addFlying(other(0), AcCategory::Heavy, 0x777777);
        FlightLog log = fly(
            [&](double t) {
                report(other(t), 0x777777);
                LivePos pos = path(t);
                const int k = static_cast<int>(t / 2);
                if (!poison) return pos;
                if (k % 7 == 1) pos.speed = -50;
                if (k % 7 == 2) pos = path(t - 10);
                if (k % 7 == 3) pos.lat = -pos.lat;
                if (k % 7 == 4) report(path(t));
                if (k % 7 == 5) pos.alt = 1e9;
                return pos;
            },
            300, 2);
        // Between two poses a tick apart, whatever the feed says.
        EXPECT_LE(log.worstPitchRate, 5);
        EXPECT_FALSE(logHas("motion is not finite"));
        EXPECT_EQ(lf_findLive(flownHexid)->simState, SimObjectState::active);
        return second.simPos();
    };
    const LaLo clean = run(false);
    SetUp();
    EXPECT_EQ(run(true), clean);
}

TEST_F(Flight, ASegmentThatIsNoNumberRemovesTheAircraftOnce) {
    const Path path = straight(home, 70, 450, 450);
    LiveAc& record = addFlying(path(0));
    LivePos broken = path(5);
    broken.lat = std::nan("");
    broken.time = 3500;
    record.stream().push_back(broken);
    const FlightLog log = fly(path, 60, 5);
    EXPECT_EQ(log.poses.size(), 3000u);
    EXPECT_EQ(record.simState, SimObjectState::removingfromsim);
    EXPECT_EQ(logCount("nextPosMain: "), 1);
    EXPECT_EQ(logCount("updateLiveAc: "), 0);
    EXPECT_TRUE(logHas(", fs:flying, st:removingfromsim") || logHas(", fs:flying, st:active"));
}

TEST_F(Flight, StoppedPointsInTheAirAreSkippedExceptForHelicopters) {
    const auto run = [](AcCategory category) {
        LiveAc& record = addFlying(airReport(home, 60, 90, 2000), category);
        for (int i = 1; i <= 3; ++i) {
            LivePos hover = airReport(away(home, 90, i < 3 ? 77 : 300), i < 3 ? 0 : 60, 90, 2000);
            hover.stopped = i == 2;
            hover.time = 3000 + i * 500;
            record.stream().push_back(hover);
        }
        for (int i = 0; i < 3900; ++i) tick();
        const double before = record.simLon;
        for (int i = 0; i < 100; ++i) tick();
        return record.simLon - before;
    };
    EXPECT_GT(run(AcCategory::Large), 0);
    SetUp();
    EXPECT_EQ(run(AcCategory::Rotorcraft), 0);
}

TEST_F(Flight, HelicopterThatStandsInItsReportsComesDown) {
    LiveAc& record = addFlying(airReport(home, 40, 90, 1000), AcCategory::Rotorcraft);
    record.agl = 900;
    const LaLo pad = away(home, 90, 100);
    for (int i = 0; i < 2; ++i) {
        LivePos stand = groundReport(pad, i == 0 ? 20 : 0, 90);
        stand.stopped = i == 1;
        stand.time = 3500 + i * 3000;
        record.stream().push_back(stand);
    }
    for (int i = 0; i < 3700; ++i) tick();
    EXPECT_GE(record.simAlt, 1000 - 0.25 * 700) << "no steeper than 1,500 fpm";
    const double height = record.simAlt, lon = record.simLon;
    std::vector<PosEntry> poses;
    for (int i = 0; i < 1000; ++i) poses = tick();
    EXPECT_NEAR(record.simAlt, height - 100, 1);
    EXPECT_EQ(record.simLon, lon);
    EXPECT_NEAR(poses.at(0).vs, -10, 1e-9);
    EXPECT_EQ(poses.at(0).tas, 0);
    record.onGround = true;
    tick();
    const double stood = record.simAlt;
    for (int i = 0; i < 100; ++i) tick();
    EXPECT_EQ(record.simAlt, stood);
}

TEST_F(Flight, RandomReportsNeverBreakThePose) {
    gf_seedRandom(20251);
    std::uniform_real_distribution<double> share(0, 1);
    const auto pick = [&](double from, double to) { return from + (to - from) * share(mt()); };
    constexpr AcCategory kinds[] = {AcCategory::Light, AcCategory::Heavy, AcCategory::HighPerf,
                                    AcCategory::Rotorcraft};
    constexpr LaLo homes[] = {{47.5, 8.5}, {-33, 179.99}, {89.99, 20}, {-89.99, -170}};
    for (size_t i = 0; i < std::size(kinds); ++i)
        addFlying(airReport(homes[i], 200, 90, 5000), kinds[i], flownHexid + static_cast<uint32_t>(i));
    for (int i = 0; i < 100000; ++i) {
        for (const PosEntry& pose : tick()) {
            const double sum =
                pose.lat + pose.lon + pose.pitch + pose.bank + pose.heading + pose.alt + pose.vs;
            ASSERT_TRUE(std::isfinite(sum)) << i;
            ASSERT_LE(std::abs(pose.lat), 90) << i;
            ASSERT_LE(std::abs(pose.lon), 180) << i;
            ASSERT_GE(pose.heading, 0) << i;
            ASSERT_LT(pose.heading, 2 * pi) << i;
        }
        const size_t which = static_cast<size_t>(pick(0, 3.999));
        const uint32_t hexid = flownHexid + static_cast<uint32_t>(which);
        LiveAc& record = *lf_findLive(hexid);
        ASSERT_LE(record.stream().size(), 201u);
        if (record.simState != SimObjectState::active) {
            // Back from its removal, with other manners.
            record.simState = SimObjectState::active;
            record.predictLeft = 0;
            record.stream().resize(1, airReport(record.simPos(), 100, 0));
            record.stream()[0].lat = record.simLat;
            record.stream()[0].lon = record.simLon;
            record.implausibleReports = 0;
        }
        if (i % 40 != 0) continue;
        record.agl = pick(0, 2500);
        record.landing = pick(0, 1) > 0.8;
        record.departing = pick(0, 1) > 0.8;
        record.onGround = pick(0, 1) > 0.9;
        const LaLo at = away(record.simPos(), pick(0, 360), pick(0, 1) > 0.3 ? pick(0, 4000) : 0);
        LivePos pos = airReport(at, pick(0, 1) > 0.2 ? pick(0, 500) : 0, pick(0, 360), pick(-100, 45000));
        pos.vs = pick(-8000, 8000);
        pos.airborne = pick(0, 1) > 0.3;
        if (pick(0, 1) > 0.7) pos.roll = pick(-pi, pi);
        if (pick(0, 1) > 0.7) pos.trueHeading = pick(0, 2 * pi);
        pos.hasTrueHeading = pos.trueHeading.has_value();
        report(pos, hexid);
    }
    EXPECT_FALSE(logHas("exception"));
    EXPECT_FALSE(logHas("nextPosMain"));
}

// Between the times of its points a tick looks at no stream, unless somebody has laid hands on it.
TEST_F(Flight, AChangedStreamIsLookedAtByTheNextTick) {
    LiveAc& record = addFlying(straight(home, 70, 450, 450)(0));
    for (int k = 1; k <= 3; ++k) {
        LivePos point = straight(home, 70, 450, 450)(5.0 * k);
        point.time = record.stream().back().time + 500;
        record.stream().push_back(point);
    }
    record.stream().front().time = engineTick + 1000;
    const LiveAc& seen = record;
    updateLiveAc(record);
    EXPECT_EQ(record.lookAt, engineTick + 1000);
    const size_t before = seen.stream().size();
    updateLiveAc(record);
    EXPECT_EQ(seen.stream().size(), before);
    record.stream().front().time = engineTick;
    updateLiveAc(record);
    EXPECT_EQ(seen.stream().size(), before - 1) << "the next segment has begun";
    EXPECT_EQ(record.lookAt, seen.stream().front().time);
}

}  // namespace
}  // namespace skl::test
