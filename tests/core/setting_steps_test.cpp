#include "core/setting_steps.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace skl {
namespace {

using Cases = std::vector<std::pair<int32_t, int32_t>>;

TEST(SettingSteps, RangesAndCountsBecomeEntriesOfTheirLists) {
    const Cases ranges{{-1, 2},  {3, 3},   {6, 6},    {7, 8},    {9, 10},  {11, 12}, {13, 14},
                       {16, 16}, {17, 18}, {19, 20},  {22, 20},  {23, 25}, {27, 25}, {32, 30},
                       {33, 35}, {37, 35}, {44, 40},  {45, 50},  {56, 50}, {57, 65}, {72, 65},
                       {73, 80}, {89, 80}, {90, 100}, {400, 100}};
    for (auto [miles, entry] : ranges) EXPECT_EQ(gf_rangeStep(miles), entry) << miles;
    const Cases counts{{-5, 0},  {0, 0},   {1, 10},  {17, 10},  {18, 25},   {37, 25},  {38, 50},
                       {62, 50}, {63, 75}, {87, 75}, {88, 100}, {299, 100}, {300, 500}};
    for (auto [count, entry] : counts) EXPECT_EQ(gf_countStep(count), entry) << count;
}

}  // namespace
}  // namespace skl
