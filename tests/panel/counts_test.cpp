// What the tables of the worker hold, as it stands on the panel a heartbeat later.
#include <gtest/gtest.h>

#include "core/run_state.h"
#include "panel/paint.h"
#include "panel/panel_state.h"
#include "panel/panel_view.h"
#include "parking/airport_in_sight.h"
#include "parking/learning.h"
#include "parking/park_airport.h"
#include "parking/static_ac.h"
#include "tests/panel/recording_canvas.h"
#include "tests/support/stand_field.h"

namespace skl::test {
namespace {

class CountsTest : public StandTest {
  protected:
    void SetUp() override {
        StandTest::SetUp();
        gf_resetPanel();
        parkAirport = {.code = "EHAM", .lat = standHome.lat, .lon = standHome.lon};
        addStand("A1", standHome);
        g_panel.feedConnected = true;
        g_panel.trafficState = readerRunning;
        gf_storeNow({1, 20});
        heartbeat();
    }
    void TearDown() override {
        staticAcs.clear();
        parkAirport = {};
        gf_resetPanel();
        StandTest::TearDown();
    }
    /// The bands that are to be painted again, one bit each.
    static unsigned heartbeat() {
        gf_takeInvalidated();
        lf_updateCounts();
        return gf_takeInvalidated();
    }
    static unsigned bit(Band band) { return 1u << static_cast<unsigned>(band); }
    /// "-" where nothing stands.
    static std::string shown(int x, int y) {
        RecordingCanvas canvas;
        lf_paint(gf_panelView(), canvas, {0, 0, 880, 476});
        const auto* found = canvas.at(x, y);
        return found ? found->text : "-";
    }
    static std::string updates() { return shown(748, 399); }
};

TEST_F(CountsTest, WhatAVisitTeachesIsCountedUntilTheAirportIsLeft) {
    EXPECT_EQ(updates(), "# updates:    0");
    const LiveAc& record = onGround(FlightStage::parked, standHome);
    for (int halfHour = 10; halfHour < 22; ++halfHour)
        EXPECT_TRUE(lt_addStandOption(1, record, false, {1, halfHour}, false, true));
    EXPECT_TRUE(heartbeat() & bit(Band::parking));
    EXPECT_EQ(updates(), "# updates:   12");
    liveAcs.clear();
    airportFile.learnedPath = "airports/learned/EHAM.xml";
    lf_closeParkAirport();
    heartbeat();
    EXPECT_EQ(shown(5, 399), "-") << "no airport in sight";
    parkAirport = {.code = "EHRD"};
    heartbeat();
    EXPECT_EQ(shown(5, 399) + updates(), "EHRD-") << "its file is not read yet";
    g_apfLoaded = true;
    heartbeat();
    EXPECT_EQ(updates(), "# updates:    0");
}

TEST_F(CountsTest, EachCountInItsBand) {
    EXPECT_EQ(heartbeat(), 0u) << "nothing has changed";
    onGround(FlightStage::taxi, standHome, 0, 1);
    onGround(FlightStage::taxi, standHome, 0, 2).simState = SimObjectState::buffer;
    EXPECT_EQ(heartbeat(), bit(Band::status));
    EXPECT_EQ(shown(642, 91), "live:   1");
    onGround(FlightStage::parked, standHome, 0, 3).parkedAt = {1, 18};
    EXPECT_EQ(heartbeat(), bit(Band::parking)) << "one that is parked counts there alone";
    EXPECT_EQ(shown(642, 91) + shown(111, 427), "live:   1parked live:   1");
    EXPECT_EQ(shown(249, 427), "average fit: 1.5");
    maxParkCount = 25;
    staticAcs.resize(3);
    staticAcs[0].simState = SimObjectState::active;
    staticAcs[1].simState = SimObjectState::removingfromsim;
    staticAcs[2].simState = SimObjectState::adding2sim;
    staticAcs[0].parkedAt = staticAcs[1].parkedAt = {7, 45};
    EXPECT_EQ(heartbeat(), bit(Band::parking));
    EXPECT_EQ(shown(430, 427), "parked static:   2");
    EXPECT_EQ(shown(571, 427), "average fit: 12");
    EXPECT_EQ(shown(5, 427), "# stands:   1");
}

}  // namespace
}  // namespace skl::test
