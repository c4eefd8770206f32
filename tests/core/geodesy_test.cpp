#include "core/geodesy.h"

#include <gtest/gtest.h>

namespace skl {
namespace {

TEST(Geodesy, DistanceBearingAndDestinationAgree) {
    const LaLo starts[] = {{51.47, -0.46}, {0.5, 179.99}, {-33.9, 151.2}, {89.0, 10.0}};
    for (const LaLo start : starts)
        for (double bearing = 0.05; bearing < 6.2; bearing += 0.4)
            for (const double nm : {0.01, 1.0, 40.0}) {
                const LaLo end = destinationPoint(start, bearing, nm * feetPerNm);
                EXPECT_NEAR(gf_distanceNm(start, end), nm, 1e-6 * nm + 1e-7);
                // Near a pole a bearing changes within the distance.
                EXPECT_NEAR(angleDiff(bearingRad(start, end), bearing), 0, start.lat < 80 ? 1e-4 : 7);
                EXPECT_LE(std::abs(end.lon), 180);
            }
}

TEST(Geodesy, KnownDistances) {
    EXPECT_NEAR(gf_distanceNm({0, 0}, {0, 1}), 60.0, 0.001);
    EXPECT_NEAR(gf_distanceNm({0, 179.5}, {0, -179.5}), 60.0, 0.001);
    EXPECT_NEAR(gf_distanceNm({90, 0}, {-90, 0}), 180 * 60.0, 0.01);
    EXPECT_EQ(gf_distanceNm({51, 7}, {51, 7}), 0);
}

TEST(Geodesy, AnglesWrapTheShortWay) {
    EXPECT_NEAR(angleDiff(0.1, 2 * pi - 0.1), 0.2, 1e-12);
    EXPECT_NEAR(angleDiff(2 * pi - 0.1, 0.1), -0.2, 1e-12);
    EXPECT_NEAR(normalizeRad(-0.5), 2 * pi - 0.5, 1e-12);
    EXPECT_NEAR(normalizeRad(7 * pi), pi, 1e-9);
    EXPECT_NEAR(wrapLon(359.98), -0.02, 1e-9);
    EXPECT_NEAR(wrapLon(-359.98), 0.02, 1e-9);
    EXPECT_NEAR(wrapLon(181), -179, 1e-9);
    EXPECT_EQ(wrapLon(-180), -180);
}

}  // namespace
}  // namespace skl
