// Which reports of the feed reach an aircraft's stream.
#include <gtest/gtest.h>

#include <string>

#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/slack.h"
#include "engine/update_cycle.h"
#include "parking/park_airport.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {
namespace {

constexpr LaLo home{47.5, 8.5};

class DecodeUpdate : public MotionTest {
  protected:
    /// One report `gap` seconds after the first one of an aircraft.
    bool second(const LivePos& first, LivePos next, double gap, int32_t predictLeft = 0) {
        gf_resetEngine();
        LiveAc& record = addFlying(first);
        record.predictLeft = predictLeft;
        record.onGround = !first.airborne;
        TrafficUpdate update;
        update.hexid = flownHexid;
        update.callsign = record.callsign;
        update.pos = next;
        update.pos.time = 3000 + static_cast<int32_t>(gap * 100);
        update.feedTime = record.lastFeedTime + gap;
        lf_decodeUpdate(update);
        return lf_findLive(flownHexid)->stream.size() == 2;
    }
};

TEST_F(DecodeUpdate, Thinning) {
    struct Case {
        const char* what;
        bool airborne;
        double before, now;  ///< knots
        double turn;         ///< degrees
        double gap;          ///< seconds
        bool kept;
    };
    const Case cases[] = {
        {"the same stamp", true, 300, 300, 90, 0, false},
        {"an older stamp", true, 300, 300, 90, -3, false},
        {"exactly a second", true, 300, 300, 90, 1.0, false},
        {"a little more", true, 300, 300, 90, 1.01, true},
        {"4 to 90 knots", false, 4, 90, 90, 5, false},
        {"4 to 79 knots", false, 4, 79, 90, 5, true},
        {"90 to 4 knots", false, 90, 4, 90, 5, false},
        {"6 to 59 knots", false, 6, 59, 90, 5, true},
        {"6 to 60 knots", false, 6, 60, 90, 5, false},
        {"60 to 6 knots", false, 60, 6, 90, 5, false},
        {"steady cruise within 450 m", true, 450, 450, 0, 1.94, false},
        {"steady cruise beyond 450 m", true, 450, 450, 0, 1.95, true},
        {"a turn of a degree is steady", true, 450, 450, 1.0, 1.5, false},
        {"a turn of more is none", true, 450, 450, 1.1, 1.5, true},
        {"slow ones in the air are kept", true, 120, 120, 0, 1.5, true},
        {"straight taxi within 20 m", false, 20, 20, 0, 1.94, false},
        {"straight taxi beyond 20 m", false, 20, 20, 0, 1.95, true},
        {"taxi with a turn of 2 degrees", false, 20, 20, 2.0, 1.5, false},
        {"taxi with a turn of more", false, 20, 20, 2.1, 1.5, true},
        {"fast on the ground", false, 31, 31, 0, 1.1, true},
        {"standing, 15 seconds", false, 0, 0, 0, 15, false},
        {"standing, longer", false, 0, 0, 0, 15.1, true},
        {"creeping is capped at 15 seconds", false, 1, 1, 0, 15.1, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        LivePos first = c.airborne ? airReport(home, c.before, 359.5) : groundReport(home, c.before, 359.5);
        LivePos next =
            c.airborne ? airReport(away(home, 0, 300), c.now, 0) : groundReport(away(home, 0, 100), c.now, 0);
        next.track = wrapLon(359.5 + c.turn);
        EXPECT_EQ(second(first, next, c.gap), c.kept);
    }
}

TEST_F(DecodeUpdate, NothingIsThinnedWhilePredicting) {
    const LivePos first = airReport(home, 450, 0), next = airReport(away(home, 0, 300), 450, 0);
    EXPECT_FALSE(second(first, next, 1.5));
    EXPECT_TRUE(second(first, next, 1.5, 3));
    EXPECT_FALSE(second(first, next, 1.0, 3)) << "the least gap holds all the same";
}

TEST_F(DecodeUpdate, ImplausibleReports) {
    // 450 kn over 5 s and 10 s of slack, twice: 3.75 nm.
    const LivePos first = airReport(home, 450, 0);
    EXPECT_TRUE(second(first, airReport(away(home, 0, 3.7 * metersPerNm), 450, 0), 5));
    EXPECT_FALSE(second(first, airReport(away(home, 0, 3.8 * metersPerNm), 450, 0), 5));
    EXPECT_TRUE(second(first, airReport(away(home, 0, 9 * metersPerNm), 450, 0), 5, 2))
        << "not while predicting";
    // Slow ones count as 60 knots, and half a mile is always believed.
    EXPECT_TRUE(second(groundReport(home, 10), groundReport(away(home, 0, 0.49 * metersPerNm), 10, 90), 2));
    EXPECT_FALSE(second(groundReport(home, 10), groundReport(away(home, 0, 0.51 * metersPerNm), 10, 90), 2));
}

TEST_F(DecodeUpdate, ThreeImplausibleReportsInARowRemove) {
    LiveAc& record = addFlying(airReport(home, 450, 0));
    const auto feed = [&](double meters) {
        engineTick = engineTick + 500;
        return report(airReport(away(home, 0, meters), 450, 0));
    };
    const double far = 300000;
    EXPECT_FALSE(feed(far));
    EXPECT_FALSE(feed(far));
    EXPECT_TRUE(feed(1157.5 * 3));
    EXPECT_EQ(record.implausibleReports, 0);
    EXPECT_FALSE(feed(far));
    EXPECT_FALSE(feed(far));
    EXPECT_EQ(record.simState, SimObjectState::active);
    EXPECT_FALSE(feed(far));
    EXPECT_EQ(record.simState, SimObjectState::removingfromsim);
    EXPECT_FALSE(feed(1157.5 * 7)) << "a record that goes takes no reports";
}

TEST_F(DecodeUpdate, InTheBufferReportsAtAirportHeightAreDropped) {
    parkAirport = {"LSZH", "ZRH", home.lat, home.lon, 1400};
    const auto buffered = [&](double alt) {
        gf_resetEngine();
        LiveAc& record = addFlying(airReport(home, 150, 0, 3000));
        record.simState = SimObjectState::buffer;
        record.stage = FlightStage::birth;
        engineTick = engineTick + 1000;
        return report(airReport(away(home, 0, 770), 150, 0, alt));
    };
    EXPECT_FALSE(buffered(1520));
    EXPECT_TRUE(buffered(1521));
    EXPECT_FALSE(buffered(1280));
    EXPECT_TRUE(buffered(1279));
    parkAirport = {};
    EXPECT_TRUE(buffered(1400));
}

TEST_F(DecodeUpdate, TheSameFlightUnderAnotherIdIsDropped) {
    LiveAc& record = addFlying(airReport(home, 150, 0));
    TrafficUpdate update;
    update.hexid = flownHexid + 1;
    update.callsign = record.callsign;
    update.model = record.model;
    update.pos = airReport(home, 150, 0);
    lf_decodeUpdate(update);
    EXPECT_EQ(liveAcs.size(), 1u);
}

}  // namespace
}  // namespace skl::test
