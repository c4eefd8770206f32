#include "panel/traffic_range.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "core/geodesy.h"
#include "core/parameters.h"
#include "simlink/user_aircraft.h"

namespace skl {
namespace {

TEST(TrafficRange, SnapsToTheList) {
    const std::vector<std::pair<int, int>> cases{{-1, 2},  {2, 2},    {3, 3},    {6, 6},   {7, 8},   {8, 8},
                                                 {9, 10},  {12, 12},  {16, 16},  {18, 18}, {19, 20}, {22, 20},
                                                 {23, 25}, {32, 30},  {37, 35},  {44, 40}, {45, 50}, {57, 65},
                                                 {89, 80}, {90, 100}, {400, 100}};
    for (auto [miles, entry] : cases) EXPECT_EQ(lf_snapRange(miles), entry) << miles;
}

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
