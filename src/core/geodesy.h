// Positions on the globe. Degrees in, nautical miles, feet or radians out, as each name says.
#pragma once

#include <cmath>
#include <numbers>

namespace skl {

inline constexpr double pi = std::numbers::pi;
inline constexpr double metersPerNm = 1852.0;
inline constexpr double feetPerNm = 6076.11549;
inline constexpr double toRad(double degrees) {
    return degrees * (pi / 180.0);
}
inline constexpr double toDeg(double radians) {
    return radians * (180.0 / pi);
}

struct LaLo {
    double lat = 0;
    double lon = 0;
    bool operator==(const LaLo&) const = default;
};

/// Within 0.0001 of 0 on both axes a position counts as not known.
inline bool positionKnown(LaLo p) {
    return std::abs(p.lat) > 0.0001 || std::abs(p.lon) > 0.0001;
}

/// Great-circle distance in nautical miles (haversine, earth radius 3437.7467707849396 nm).
double gf_distanceNm(LaLo a, LaLo b);
/// Initial great-circle bearing from a to b, radians, 0 to 2 pi.
double bearingRad(LaLo a, LaLo b);
/// The point reached from `a` on `bearing` (radians) after `distanceFt` feet.
LaLo destinationPoint(LaLo a, double bearing, double distanceFt);

/// What lies outside of one turn, for the two below: they are called in every tick, and seldom need it.
double foldRad(double angle);
double foldLon(double degrees);

/// x minus y, radians, brought into -pi to pi by one turn.
inline double angleDiff(double x, double y) {
    const double d = x - y;
    return d > pi ? d - 2 * pi : d < -pi ? d + 2 * pi : d;
}
/// Radians into 0 to 2 pi.
inline double normalizeRad(double angle) {
    return angle >= 0 && angle < 2 * pi ? angle : foldRad(angle);
}
/// A longitude or a difference of two, degrees, into -180 to 180: the short way over the date line.
inline double wrapLon(double degrees) {
    return degrees >= -180 && degrees <= 180 ? degrees : foldLon(degrees);
}

}  // namespace skl
