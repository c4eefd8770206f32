#include "panel/traffic_range.h"

#include <gtest/gtest.h>

#include "core/geodesy.h"
#include "core/parameters.h"
#include "parking/airport_list.h"
#include "simlink/user_aircraft.h"

namespace skl {
namespace {

TEST(TrafficRange, InForceAsGivenAndStoredClamped) {
    gf_resetParameters();
    gf_applyRange(400);
    EXPECT_EQ(RANGE.value, 100);
    EXPECT_EQ(rangeNm, 400);
    EXPECT_EQ(rangeMeters, 400 * metersPerNm);
}

TEST(TrafficRange, AutomaticByHeightAndTheFirstAirport) {
    gf_resetParameters();
    struct Case {
        bool onGround;
        double altitude, nm;  ///< below 0: no airport is listed
        int range;
    };
    for (const Case& c : {Case{true, 0, 50, 10},
                          {false, 48001, 1, 100},
                          {false, 48000, 1, 40},
                          {false, 18001, 1, 40},
                          {false, 18000, -1, 40},
                          {false, 9000, 6, 10},
                          {false, 9000, 7, 10},
                          {false, 9000, 8, 12},
                          {false, 9000, 20, 25},
                          {false, 9000, 33.6, 35},
                          {false, 9000, 37.01, 40}}) {
        gf_resetParkAirports();
        engineUser = {};
        engineUser.lat = 50;
        engineUser.lon = 8;
        engineUser.altitude = c.altitude;
        userOnGround = c.onGround;
        if (c.nm >= 0) parkAirports.push_back({.code = "EDDF", .lat = 50 + c.nm / 60, .lon = 8});
        gf_autoRange();
        EXPECT_EQ(rangeNm, c.range) << c.altitude << ' ' << c.nm;
    }
    gf_resetParkAirports();
}

}  // namespace
}  // namespace skl
