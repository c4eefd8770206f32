#include "panel/traffic_range.h"

#include <gtest/gtest.h>

#include "core/geodesy.h"
#include "core/parameters.h"
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

TEST(TrafficRange, AutomaticByTheUsersHeight) {
    gf_resetParameters();
    userOnGround = true;
    engineUser.altitude = 0;
    gf_autoRange();
    EXPECT_EQ(rangeNm, 10);
    userOnGround = false;
    engineUser.altitude = 5000;
    gf_autoRange();
    EXPECT_EQ(rangeNm, 40);
    engineUser.altitude = 48001;
    gf_autoRange();
    EXPECT_EQ(rangeNm, 100);
}

}  // namespace
}  // namespace skl
