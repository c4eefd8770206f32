// The set-up of segments in the air: their duration and slack, climb, pitch, heading and bank.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "engine/air_segment.h"
#include "engine/category_constants.h"
#include "engine/engine_state.h"
#include "engine/slack.h"
#include "engine/update_cycle.h"
#include "feed/feed.h"
#include "parking/park_airport.h"
#include "simlink/sim_queues.h"
#include "simlink/user_aircraft.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

constexpr LaLo home{47.5, 8.5};

TEST(Slack, SchedulesWithinBounds) {
    struct Case {
        int32_t due, wanted, predictLeft, got;
    };
    engineTick = 5000;
    for (const Case& c : {Case{6000, 6500, 0, 6500}, Case{6000, 7001, 0, 7000}, Case{6000, 5100, 0, 5100},
                          Case{7000, 5500, 0, 6000}, Case{4500, 4600, 0, 5000}, Case{3000, 9000, 0, 5000},
                          Case{3000, 9000, -1, 5000}, Case{6000, 9999, 1, 9999}, Case{9000, 100, 8, 5000}}) {
        LiveAc record;
        record.predictLeft = c.predictLeft;
        record.stream().resize(2);
        record.stream()[1].time = c.due;
        lf_scheduleNext(record, c.wanted);
        EXPECT_EQ(record.stream()[1].time, c.got) << c.due << " " << c.wanted;
    }
    engineTick = 0;
}

TEST(Slack, WidensAndDecays) {
    LiveAc record;
    record.maxEarly = 400;
    record.maxLate = 1050;
    lf_decaySlack(record);
    EXPECT_EQ(record.maxEarly, 400);
    EXPECT_EQ(record.maxLate, 1000);
    record.departing = true;
    lf_widenSlack(record);
    for (int i = 0; i < 21; ++i) lf_decaySlack(record);
    EXPECT_EQ(record.maxEarly, 1000);
    EXPECT_EQ(record.maxLate, 2900);
}

TEST(Slack, SpeedOfASegment) {
    LiveAc record;
    record.stream().push_back(groundReport(home, 0));
    record.stream().push_back(groundReport(away(home, 90, 1852), 0));
    record.stream()[0].time = 100;
    record.stream()[1].time = 36100;
    EXPECT_NEAR(lf_segmentSpeed(record), 10, 0.01) << "both 0: distance by time";
    record.stream()[1].time = 50;
    EXPECT_NEAR(lf_segmentSpeed(record), 14400, 10) << "never less than 25 ticks";
    record.stream()[1] = groundReport(away(home, 90, 1), 0);
    record.stream()[1].time = 100000;
    EXPECT_EQ(lf_segmentSpeed(record), 1) << "never below a knot";
    record.stream()[1].speed = 30;
    EXPECT_EQ(lf_segmentSpeed(record), 15);
    record.stream()[0].speed = -30;
    EXPECT_EQ(lf_segmentSpeed(record), 0.1) << "opposite speeds";
    EXPECT_EQ(lf_travelTicks(100, 0.0), ticksOfAWeek);
    EXPECT_EQ(lf_travelTicks(0.001, 450), 25);
    EXPECT_EQ(lf_travelTicks(0.625, 450), 500);
    EXPECT_THROW(lf_travelTicks(std::nan(""), 450), std::range_error);
}

class AirSegment : public MotionTest {
  protected:
    void SetUp() override {
        MotionTest::SetUp();
        eventQueue.clear();
    }
    /// 150 kn, 500 ticks from the front to each following point.
    LiveAc& flight(AcCategory category = AcCategory::Large) {
        gf_resetEngine();
        engineTick = 3000;
        LiveAc& record = addFlying(airReport(home, 150, 90, 3000), category);
        record.stream().front().time = 3000;
        return record;
    }
    static LivePos& add(LiveAc& record, double alt, double vs = 0, double bearing = 90) {
        const LaLo from = record.stream().back().pos();
        LivePos pos = airReport(away(from, bearing, 150 * 1852 / 720.0), 150, bearing, alt);
        pos.airborne = alt > 0;
        pos.vs = vs;
        pos.time = record.stream().back().time + 500;
        record.stream().push_back(pos);
        return record.stream().back();
    }
    static bool gearWentDown(const LiveAc& record) {
        const bool sent = std::any_of(eventQueue.begin(), eventQueue.end(), [&](const SimEvent& e) {
            return e.objectId == record.objectId && e.event == ev::gearSet && e.data == 1;
        });
        eventQueue.clear();
        return sent;
    }
};

TEST_F(AirSegment, ClimbBetweenAirborneReports) {
    struct Case {
        const char* what;
        AcCategory category;
        double agl, next, frontVs, airportNm;  ///< airport: 0 none
        double dAlt;
    };
    const Case cases[] = {
        {"climbs by the reports", AcCategory::Large, 2500, 3100, 0, 0, 0.2},
        {"no faster than its kind", AcCategory::Large, 2500, 3400, 0, 0, 0.6},
        {"descends as told", AcCategory::Large, 2500, 2000, -2000, 0, -2.0},
        {"just above a thousand feet", AcCategory::Large, 1001, 2900, 0, 0, -0.2},
        {"near the ground it climbs", AcCategory::Large, 1000, 2900, 0, 0, 0.2},
        {"near the ground, climbing more", AcCategory::Large, 1000, 3150, 500, 0, 0.3},
        {"descending to the airport", AcCategory::Large, 1000, 2900, -250, 9.9, -0.2},
        {"descending too slowly", AcCategory::Large, 1000, 2900, -249, 9.9, 0.2},
        {"descending elsewhere", AcCategory::Large, 1000, 2900, -700, 10.1, 0.2},
        {"a helicopter stays low", AcCategory::Rotorcraft, 500, 2900, 0, 0, -0.2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        LiveAc& record = flight(c.category);
        parkAirport = {};
        if (c.airportNm > 0) {
            const LaLo at = away(home, 180, c.airportNm * metersPerNm);
            parkAirport = {"LSZH", "ZRH", at.lat, at.lon, 1400};
        }
        record.agl = c.agl;
        record.stream().front().vs = c.frontVs;
        add(record, c.next);
        lf_nextSegment(record);
        EXPECT_NEAR(record.dAlt, c.dAlt, 1e-3);
        EXPECT_EQ(gearWentDown(record), record.landing);
    }
    LiveAc& helicopter = flight(AcCategory::Rotorcraft);
    helicopter.agl = 100;
    helicopter.stage = FlightStage::take_off;
    add(helicopter, 2900);
    lf_nextSegment(helicopter);
    EXPECT_EQ(helicopter.dAlt, 0.2) << "the floor ends a take-off";
    EXPECT_EQ(helicopter.stage, FlightStage::take_off);
}

TEST_F(AirSegment, ComingDownToReportsOnTheGround) {
    struct Case {
        const char* what;
        int qnh;
        bool airport;
        double agl, vs0, vs1;
        double fpm, nextVs;
    };
    const Case cases[] = {
        {"no airport", 1013, false, 2500, -900, -900, -601, -601},
        {"low pressure, no airport", 1000, false, 2500, -900, -900, -601, -601},
        {"high pressure", 1023, true, 2500, -700, -900, -860, -860},
        {"high pressure, no airport", 1023, false, 2500, -100, -200, -601, -601},
        {"high pressure, close", 1023, true, 100, -900, -900, -600, -600},
        {"too steep", 1023, true, 2500, -3000, -3000, -1500, -1500},
        {"to the airport's height", 1013, true, 2500, -900, -800, -1200, -800},
        {"low pressure, to the airport's height", 1000, true, 2500, -900, -800, -1200, -800},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        LiveAc& record = flight();
        qnh = c.qnh;
        parkAirport = {};
        if (c.airport) parkAirport = {"LSZH", "ZRH", home.lat, home.lon, 2900};
        record.agl = c.agl;
        record.stream().front().vs = c.vs0;
        add(record, 0, c.vs1);
        lf_nextSegment(record);
        EXPECT_NEAR(record.dAlt * 6000, c.fpm, 0.1);
        EXPECT_EQ(record.stream().front().vs, c.nextVs) << "the sink stays for the next segment";
        EXPECT_EQ(record.vsFpm, c.nextVs);
        EXPECT_TRUE(gearWentDown(record));
    }
    parkAirport = {"LSZH", "ZRH", home.lat, home.lon, 0};
    LiveAc& steep = flight(AcCategory::Rotorcraft);
    add(steep, 0);
    lf_nextSegment(steep);
    EXPECT_EQ(steep.dAlt, -0.25) << "from 3000 ft in 5 s";
    EXPECT_FALSE(gearWentDown(steep)) << "a helicopter has none to lower";
}

TEST_F(AirSegment, FromTheGroundUp) {
    for (const auto& [alt, dAlt] : {std::pair{3100.0, 0.2}, {4000.0, 0.6}, {2900.0, 0.0}}) {
        LiveAc& record = flight();
        record.stream().front().airborne = false;
        add(record, alt);
        lf_nextSegment(record);
        EXPECT_NEAR(record.dAlt, dAlt, 1e-9);
    }
}

TEST_F(AirSegment, FlyingWhileTheReportsAreOnTheGround) {
    const auto onGroundReports = [&](double vs) -> LiveAc& {
        LiveAc& record = flight();
        record.stream().front().airborne = false;
        for (int i = 0; i < 2; ++i) add(record, 0, vs);
        return record;
    };
    LiveAc& sinking = onGroundReports(0);
    lf_nextSegment(sinking);
    EXPECT_NEAR(sinking.dAlt, -601 / 6000.0, 1e-9);
    EXPECT_TRUE(gearWentDown(sinking));

    LiveAc& climbing = onGroundReports(60);
    lf_nextSegment(climbing);
    EXPECT_NEAR(climbing.dAlt, 601 / 6000.0, 1e-9);
    EXPECT_EQ(climbing.stream().front().vs, 601);
    EXPECT_TRUE(gearWentDown(climbing));

    LiveAc& landing = onGroundReports(60);
    landing.landing = true;
    lf_nextSegment(landing);
    EXPECT_LT(landing.dAlt, 0);

    // The third point is airborne, and a fourth follows: straight to the third, at its distance.
    LiveAc& skipping = onGroundReports(60);
    skipping.stream().pop_back();
    add(skipping, 3100, 60, 0);
    add(skipping, 3200, 60);
    lf_nextSegment(skipping);
    ASSERT_EQ(skipping.stream().size(), 2u);
    EXPECT_EQ(skipping.stream().front().alt, 3100);
    EXPECT_NEAR(skipping.stream().front().time, 3000 + 500 * std::sqrt(2.0), 1);
    const double ticks = skipping.stream().front().time - engineTick;
    EXPECT_NEAR(skipping.dAlt * ticks, 100, 1e-6);
    EXPECT_NEAR(skipping.simLon + ticks * skipping.dLon, skipping.stream().front().lon, 1e-9);
    EXPECT_NEAR(skipping.simLat + ticks * skipping.dLat, skipping.stream().front().lat, 1e-9);
}

TEST_F(AirSegment, LandingFollowsTheReports) {
    struct Case {
        double agl, next, vs;
        double dAlt;
    };
    for (const Case& c :
         {Case{900, 2900, -600, -0.2}, Case{900, 3000, 50, -601 / 6000.0}, Case{900, 3000, 51, 0.0},
          Case{1001, 3000, 0, 0.0}, Case{900, 3000, -800, -800 / 6000.0}}) {
        LiveAc& record = flight();
        record.landing = true;
        record.agl = c.agl;
        record.stream().front().vs = c.vs;
        add(record, c.next, c.vs);
        lf_nextSegment(record);
        EXPECT_NEAR(record.dAlt, c.dAlt, 1e-9) << c.agl << " " << c.next << " " << c.vs;
    }
}

TEST_F(AirSegment, Pitch) {
    // Degrees that the pitch aims at; the change of a segment is limited by the category.
    for (const auto& [vs, degrees] : {std::pair{0.0, -3.0},
                                      {1200.0, -7.4},
                                      {2400.0, -11.8},
                                      {9000.0, -11.8},
                                      {-1200.0, -0.8},
                                      {-3000.0, 2.5},
                                      {-9000.0, 2.5}}) {
        LiveAc& record = flight(AcCategory::HighPerf);
        record.simPitch = toRad(-4);
        add(record, 3000, vs);
        lf_nextSegment(record);
        EXPECT_NEAR(toDeg(record.simPitch + 500 * record.dPitch), degrees, 1e-6) << vs;
    }
    LiveAc& heavy = flight(AcCategory::Heavy);
    add(heavy, 3000, 2400);
    lf_nextSegment(heavy);
    EXPECT_NEAR(toDeg(heavy.dPitch) * 100, -0.5, 1e-9);
    LiveAc& flaring = flight();
    flaring.flareState = 1;
    flaring.dPitch = 0.123;
    flaring.dAlt = -0.1;
    add(flaring, 0, -700);
    lf_nextSegment(flaring);
    EXPECT_EQ(flaring.dPitch, 0.123);
    EXPECT_EQ(flaring.dAlt, -0.1);
}

TEST_F(AirSegment, HeadingAndBank) {
    const auto turning = [&](double degrees, AcCategory category = AcCategory::HighPerf) -> LiveAc& {
        LiveAc& record = flight(category);
        add(record, 3000);
        add(record, 3000, 0, 90 + degrees);
        return record;
    };
    LiveAc& right = turning(30);
    lf_nextSegment(right);
    EXPECT_NEAR(toDeg(right.dHeading) * 500, 30, 0.05);
    EXPECT_NEAR(toDeg(right.dBank) * 500, -30, 0.05);

    LiveAc& last = turning(30);
    last.stream().pop_back();
    lf_nextSegment(last);
    EXPECT_EQ(last.dHeading, 0) << "no leg behind the next point";

    LiveAc& heavy = turning(-60, AcCategory::Heavy);
    heavy.simBank = toRad(18);
    lf_nextSegment(heavy);
    EXPECT_NEAR(toDeg(heavy.dBank) * 500, 2, 1e-6) << "at most 20 degrees";
    heavy = turning(-60, AcCategory::Heavy);
    lf_nextSegment(heavy);
    EXPECT_NEAR(toDeg(heavy.dBank) * 100, 1.5, 1e-6) << "at most 1.5 degrees a second";

    // Near the ground a reported attitude is taken as it is.
    struct Case {
        double agl;
        bool landing, trueHeading;
    };
    for (const Case& c : {Case{999, false, true}, Case{1000, false, false}, Case{1999, true, true},
                          Case{2000, true, false}}) {
        LiveAc& record = turning(30);
        record.agl = c.agl;
        record.landing = c.landing;
        LivePos& next = record.stream()[1];
        next.hasTrueHeading = true;
        next.trueHeading = toRad(80);
        next.roll = toRad(5);
        lf_nextSegment(record);
        EXPECT_NEAR(toDeg(record.dHeading) * 500, c.trueHeading ? -10 : 30, 0.05) << c.agl;
        EXPECT_NEAR(toDeg(record.dBank) * 500, 5, 1e-6);
    }
}

TEST_F(AirSegment, ALatePointTakesAQuarterOfASecond) {
    LiveAc& record = flight();
    add(record, 3000);
    engineTick = 9000;
    lf_nextSegment(record);
    EXPECT_EQ(record.stream().front().time, 9025);
    for (int i = 0; i < 25; ++i) lf_moveOneTick(record);
    EXPECT_NEAR(record.simLon, record.stream().front().lon, 1e-9);
}

TEST(MoveOneTick, TurnsTheShortWayAndNeverTooFar) {
    struct Case {
        double from, to, rate, got;  ///< degrees
    };
    for (const Case& c : {Case{10, 20, 4, 14}, Case{10, 12, 4, 12}, Case{10, 10.4, 4, 10}, Case{359, 3, 1, 0},
                          Case{3, 359, 1, 2}, Case{350, 370, 5, 355}, Case{0.2, 359.9, 5, 0.2},
                          Case{200, 30, 5, 195}, Case{200, 10, 5, 205}}) {
        LiveAc record;
        record.simHeading = toRad(c.from);
        record.turnRate = toRad(c.rate);
        lf_turnTowards(record, toRad(c.to));
        EXPECT_NEAR(toDeg(angleDiff(record.simHeading, toRad(c.got))), 0, 1e-9) << c.from << " to " << c.to;
    }
}

TEST(MoveOneTick, GroundStagesAndLimits) {
    LiveAc record;
    record.onGround = true;
    record.staticPitch = 0.01;
    record.simBank = 0.3;
    record.turnRate = toRad(1);
    record.targetHeading = toRad(90);
    record.dLat = 0.001;
    record.dHeading = 1;
    const auto moved = [&](FlightStage stage) {
        record.stage = stage;
        record.simLat = 0;
        record.simHeading = 0;
        lf_moveOneTick(record);
        return std::pair{record.simLat != 0, toDeg(record.simHeading)};
    };
    EXPECT_EQ(moved(FlightStage::taxi), (std::pair{true, 0.0}));
    EXPECT_EQ(record.simPitch, 0.01);
    EXPECT_EQ(record.simBank, 0);
    EXPECT_TRUE(moved(FlightStage::parking).first);
    EXPECT_NEAR(toDeg(record.simHeading), 1, 1e-9);
    record.turningOnGround = true;
    EXPECT_FALSE(moved(FlightStage::pushed_back).first);
    EXPECT_NEAR(toDeg(record.simHeading), 1, 1e-9);

    LiveAc air;
    air.stage = FlightStage::flying;
    air.flareState = 2;
    air.simPitch = toRad(-3.9);
    air.dPitch = toRad(-1);
    air.dAlt = -0.1;
    air.simLat = 89.9995;
    air.dLat = 0.001;
    air.simLon = 170;
    air.dLon = 0.5;
    lf_moveOneTick(air);
    EXPECT_NEAR(toDeg(air.simPitch), -4, 1e-9);
    EXPECT_NEAR(air.simLat, 89.9995, 1e-9) << "over the pole";
    EXPECT_NEAR(air.simLon, -9.5, 1e-9);
}

}  // namespace
}  // namespace skl::test
