// From the glide path to the turn off the runway.
#include "engine/landing.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>

#include "engine/engine_state.h"
#include "engine/slack.h"
#include "tests/support/runway_world.h"

namespace skl::test {
namespace {

constexpr double knots = 140, startNm = 8;
constexpr double feetPerNmDown = 318.4;  // three degrees

/// Down the glide path to the aim point, then braking by 2 knots a second; altitudes as a feed tells them.
Path ils(double elevation, int pressure) {
    return [=](double t) {
        const double nm = startNm - knots * t / 3600;
        if (nm > 0) {
            LivePos pos = airReport(away(aimPoint, 270, nm * metersPerNm), knots, 90,
                                    elevation + nm * feetPerNmDown + (1013 - pressure) * 27.3);
            pos.vs = -740;
            return pos;
        }
        const double since = -nm / knots * 3600, stop = (knots - 20) / 2;
        const double braked = std::min(since, stop);
        const double meters = ((knots - braked) * braked + 20 * (since - braked)) / 3600 * metersPerNm;
        return groundReport(away(aimPoint, 90, meters), knots - 2 * braked, 90);
    };
}

struct Touch {
    double meters = 0;  ///< past the aim point
    double fpm = 0, steepest = 0, lowestPitch = 0;
    double lowest = 1e9;     ///< feet of the wheels over the ground, to the end of the run
    double derotation = -1;  ///< seconds
    int spoilersOut = 0;
    bool spoilersIn = false;
    std::array<double, 4> heights{}, sinks{};
};

class Landing : public RunwayTest {
  protected:
    static Touch land(double elevation, int pressure) {
        groundFt = parkAirport.alt = elevation;
        qnh = pressure;
        const Path path = ils(elevation, pressure);
        appear(path(0));
        Touch touch;
        double before = 0;
        int32_t touchedAt = 0, state = 0;
        run(path, 420, [&](LiveAc& record) {
            const double height = record.simAlt - groundAt(record);
            touch.lowest = std::min(touch.lowest, height - cgFt);
            if (record.onGround) {
                EXPECT_EQ(record.simVs, 0);
            }
            if (record.flareState != 0 && !record.onGround && touchedAt == 0) {
                EXPECT_NEAR(record.simVs, record.dAlt * 100, 1e-9) << "feet a second";
            }
            if (!record.onGround && touchedAt == 0 && before != 0) {
                touch.fpm = (record.simAlt - before) * 6000;
                touch.steepest = std::min(touch.steepest, touch.fpm);
            }
            if (record.flareState > state && record.flareState <= 4) {
                touch.heights[static_cast<size_t>(record.flareState - 1)] = height - cgFt;
                touch.sinks[static_cast<size_t>(record.flareState - 1)] = record.dAlt * 6000;
                state = record.flareState;
            }
            touch.lowestPitch = std::min(touch.lowestPitch, record.simPitch);
            if (record.onGround && touchedAt == 0) {
                touchedAt = engineTick;
                const double nm = gf_distanceNm(aimPoint, record.simPos());
                touch.meters = nm * metersPerNm * (record.simLon < aimPoint.lon ? -1 : 1);
                touch.spoilersOut = sent(ev::spoilersSet, 16383);
                eventQueue.clear();
            }
            if (touchedAt != 0 && touch.derotation < 0 && !record.derotating)
                touch.derotation = (engineTick - touchedAt) / 100.0;
            if (touchedAt != 0) touch.spoilersIn |= sent(ev::spoilersSet, 0) > 0;
            before = record.simAlt;
            return true;
        });
        return touch;
    }
};

TEST_F(Landing, FlaresByHeightAndTouchesDownSoftly) {
    const struct {
        double elevation, slope;
    } fields[] = {{-200, 0}, {0, 0}, {5400, 0}, {0, 0.01}, {0, -0.01}};
    for (const auto& field : fields) {
        SCOPED_TRACE(testing::Message() << field.elevation << " ft, slope " << field.slope);
        gf_resetEngine();
        slope = field.slope;
        const Touch touch = land(field.elevation, 1013);
        const double heights[] = {30, 20, 10, 3}, sinks[] = {-600, -450, -300, -150};
        for (size_t i = 0; i < 4; ++i) {
            // A flare begins over the field's height too, which a slope leaves.
            EXPECT_NEAR(touch.heights[i], heights[i], i == 0 && field.slope != 0 ? 8 : 2) << i;
            EXPECT_NEAR(touch.sinks[i], sinks[i], 1e-6) << i;
        }
        EXPECT_NEAR(touch.fpm, -150, 10);
        EXPECT_GT(touch.meters, 0);
        EXPECT_LT(touch.meters, field.slope < 0 ? 800 : 400);
        EXPECT_GE(touch.lowestPitch, toRad(-4) - 1e-9);
        EXPECT_GT(touch.derotation, 0.5);
        EXPECT_LE(touch.derotation, 3.6);
        EXPECT_EQ(touch.spoilersOut, 1);
        EXPECT_TRUE(touch.spoilersIn);
        EXPECT_GT(touch.steepest, -1500);
    }
}

/// Told, not gated: the altitudes of the feed are those of standard pressure.
TEST_F(Landing, AtOtherPressuresItComesDownSomewhere) {
    for (const int pressure : {960, 993, 1013, 1033, 1050}) {
        gf_resetEngine();
        const Touch touch = land(0, pressure);
        fmt::print("QNH {}: touch-down {:.0f} m past the aim point, {:.0f} fpm, steepest sink {:.0f} fpm\n",
                   pressure, touch.meters, touch.fpm, touch.steepest);
        EXPECT_GT(touch.lowest, -1.6) << "half a meter: not below the runway, then or later";
        const LiveAc* record = lf_findLive(flownHexid);
        EXPECT_TRUE(touch.meters != 0 || !record) << "it lands or is removed, but does not hang in the air";
    }
}

TEST_F(Landing, AGoAroundFromTheFlareClimbs) {
    groundFt = 0;
    const Path down = ils(0, 1013);
    double since = -1;
    const double turned = (startNm - 0.1) * 3600 / knots;  // 32 ft over the runway
    const Path path = [&](double t) {
        LivePos pos = down(t);
        if (t >= turned) {
            pos = airReport(away(aimPoint, 90, (t - turned) * knots / 3600 * metersPerNm), knots, 90,
                            32 + (t - turned) * 30);
            pos.vs = 1800;
        }
        if (t > turned - 2 && t < turned) pos.alt = 36;  // just into the flare
        // Else the thinning of steady reports would take the last one down, and those that climb.
        if (t > turned - 3) pos.track += std::fmod(t, 4) < 2 ? 0 : 3;
        return pos;
    };
    appear(path(0));
    double lowest = 1e9, heightLater = 0;
    run(path, 330, [&](LiveAc& record) {
        EXPECT_FALSE(record.onGround);
        if (record.flareState > 0 && since < 0) since = 0;
        if (since == 0 && record.flareState == 0) {
            since = engineTick / 100.0;
            EXPECT_NEAR(record.simAlt - cgFt, 25, 3);
        }
        if (since <= 0) return true;
        lowest = std::min(lowest, record.simAlt);
        heightLater = record.simAlt;
        return engineTick / 100.0 < since + 60;
    });
    ASSERT_GT(since, 0) << "a flare began and was given up";
    EXPECT_GT(lowest, cgFt);
    EXPECT_GT(heightLater, 500);
    const LiveAc& record = *lf_findLive(flownHexid);
    EXPECT_FALSE(record.derotating);
    EXPECT_FALSE(record.landing);
}

TEST_F(Landing, ATouchAndGoRotatesBeforeTheNoseIsDown) {
    groundFt = 0;
    const Path down = ils(0, 1013);
    const double gone = startNm * 3600 / knots + 2.5;
    const Path path = [&](double t) {
        LivePos pos = down(t);
        if (t >= gone) {
            pos = airReport(away(aimPoint, 90, (t - gone + 2.5) * knots / 3600 * metersPerNm), knots, 90,
                            20 + (t - gone) * 30);
            pos.vs = 1800;
        }
        pos.track += std::fmod(t, 4) < 2 ? 0 : 3;  // every report counts
        return pos;
    };
    appear(path(0));
    double touched = 0, rotated = 0, before = 0, later = 0;
    bool departing = false, noseComingDown = false;
    FlightStage prevStage{};
    run(path, 400, [&](LiveAc& record) {
        const double now = engineTick / 100.0;
        if (record.onGround && touched == 0) {
            touched = now;
            eventQueue.clear();
        }
        if (record.departing && !departing) {
            EXPECT_EQ(record.prevStage, prevStage);
        }
        if (record.stage == FlightStage::take_off && rotated == 0) {
            rotated = now;
            EXPECT_TRUE(noseComingDown) << "else this tells nothing of a rotation out of a landing";
            EXPECT_FALSE(record.derotating || record.rollout || record.landed || record.landing);
        }
        if (rotated != 0) {
            EXPECT_FALSE(record.onGround);
            EXPECT_GE(record.simAlt, before - 0.5);
            later = record.simAlt;
        }
        departing = record.departing;
        noseComingDown = record.derotating;
        prevStage = record.prevStage;
        before = record.simAlt;
        return rotated == 0 || now < rotated + 60;
    });
    ASSERT_GT(rotated, 0);
    EXPECT_NEAR(rotated - touched, 2, 1.5);
    EXPECT_GT(later, 500);
    EXPECT_EQ(sent(ev::throttleSet, 11468), 2) << "at the decision and again when the climb is over";
    EXPECT_GE(sent(ev::throttleSet, 16383), 1);
    const LiveAc& record = *lf_findLive(flownHexid);
    EXPECT_EQ(record.flareState, 0);
    EXPECT_EQ(record.stage, FlightStage::flying);
}

TEST_F(Landing, ReportsThatLeadBackDoNotJoin) {
    struct Case {
        const char* what;
        bool landing;
        int points;
        int32_t predict;
        double bearing, meters, speed;
        bool joins;
        size_t left;  ///< points of the stream afterwards
        bool stopped;
        double speedTaken;
    };
    const Case cases[] = {
        {"on the spot and fast", true, 3, 0, 0, 0, 60, false, 3, false, 60},
        {"on the spot and slow: the stop", false, 1, 4, 0, 0, 5, true, 1, true, 0},
        {"one point, ahead", true, 1, 0, 80, 500, 100, true, 1, false, 90},
        {"one point, abeam while landing", true, 1, 0, 185, 500, 100, false, 1, false, 100},
        {"one point, abeam in the roll-out", false, 1, 3, 185, 500, 60, true, 1, false, 60},
        {"one point, behind while predicting", false, 1, 3, 260, 500, 60, false, 1, false, 60},
        {"one point, behind: it is taken from here", false, 1, 0, 260, 500, 60, true, 1, false, 60},
        {"behind the last, before the one before", false, 3, 0, 270, 60, 30, true, 2, false, 30},
        {"behind both", false, 3, 0, 270, 160, 30, true, 1, false, 30},
        {"behind the only two", false, 2, 0, 270, 160, 30, true, 1, false, 30},
        {"no landing aircraft speeds up", false, 3, 0, 90, 100, 95, true, 3, false, 90},
        {"slow ones may", false, 3, 0, 90, 100, 40, true, 3, false, 40},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        gf_resetEngine();
        LiveAc& record = appear(groundReport(aimPoint, 90, 90));
        record.simHeading = toRad(90);
        record.landing = c.landing;
        record.rollout = !c.landing;
        record.predictLeft = c.predict;
        record.stream().resize(1);
        for (int i = 1; i < c.points; ++i) {
            record.stream().push_back(groundReport(away(aimPoint, 90, 100 * i), 90, 90));
            record.stream().back().time = record.stream().front().time + 100 * i;
        }
        const LaLo last = record.stream().back().pos();
        if (c.speed < 41 && c.points > 1) record.stream().back().speed = 30;
        LivePos pos = groundReport(c.meters == 0 ? last : away(last, c.bearing, c.meters), c.speed, 90);
        EXPECT_EQ(checkNewPosDuringLanding(record, pos), c.joins);
        EXPECT_EQ(record.stream().size(), c.left);
        if (!c.joins) continue;
        EXPECT_EQ(pos.stopped, c.stopped);
        EXPECT_EQ(pos.speed, c.speedTaken);
        EXPECT_EQ(record.predictLeft, 0);
    }
}

TEST_F(Landing, AStopOnTheLastButOnePointDropsOnlyTheLast) {
    for (const double heading : {0.0, 90.0, 180.0, 270.0}) {
        SCOPED_TRACE(heading);
        gf_resetEngine();
        LiveAc& record = appear(groundReport(aimPoint, 30, heading));
        record.simHeading = toRad(heading);
        record.rollout = true;
        for (int i = 1; i < 3; ++i)
            record.stream().push_back(groundReport(away(aimPoint, heading, 10 * i), 6, heading));
        LivePos pos = record.stream()[1];
        pos.speed = 5;
        EXPECT_TRUE(checkNewPosDuringLanding(record, pos));
        EXPECT_EQ(record.stream().size(), 2u);
        EXPECT_TRUE(pos.stopped);
        EXPECT_EQ(pos.speed, 0);
        LivePos hovering = record.stream().back();
        hovering.speed = 0;
        hovering.airborne = true;
        EXPECT_FALSE(checkNewPosDuringLanding(record, hovering)) << "no stop in the air";
    }
}

TEST_F(Landing, NoFlareOnTheWayToAReportThatClimbsAway) {
    for (const double vs : {600.0, 601.0}) {
        LiveAc& record = appear(airReport(aimPoint, 140, 90, 30));
        record.agl = 30;
        record.landing = true;
        record.stream().front().vs = vs;
        lf_flareStep(record);
        EXPECT_EQ(record.flareState, vs > 600 ? 0 : 1);
        gf_resetEngine();
    }
}

TEST_F(Landing, TheRollOutEndsWithATurnOffTheRunway) {
    LiveAc& record = appear(groundReport(aimPoint, 120, 90), AcCategory::Heavy);
    record.simHeading = toRad(90);
    record.simPitch = record.staticPitch;
    lf_touchdown(record);
    EXPECT_TRUE(record.rollout && record.landed && record.derotating);
    lf_derotate(record);
    EXPECT_FALSE(record.derotating) << "the nose is down already";
    eventQueue.clear();
    lf_rolloutStep(record);
    EXPECT_TRUE(eventQueue.empty()) << "fast and straight on";
    record.stream().front().speed = 90;
    lf_rolloutStep(record);
    EXPECT_EQ(sent(ev::spoilersSet, 0), 1);
    EXPECT_TRUE(record.rollout);
    record.simHeading = toRad(74.9);
    lf_rolloutStep(record);
    EXPECT_FALSE(record.rollout);
    EXPECT_EQ(sent(ev::taxiLights, 1), 1);
}

}  // namespace
}  // namespace skl::test
