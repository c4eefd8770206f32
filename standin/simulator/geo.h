// Distances on the ground over short ranges.
#pragma once

#include <cmath>

namespace simulator {

constexpr double kPi = 3.14159265358979323846;
constexpr double kEarthMetres = 6371008.8;
constexpr double kFeetPerMetre = 1.0 / 0.3048;
constexpr double kKnotMetresPerSecond = 1852.0 / 3600.0;

constexpr double radians(double degrees) {
    return degrees * kPi / 180.0;
}
constexpr double degrees(double radians) {
    return radians * 180.0 / kPi;
}

struct Offset {
    double east = 0;  // metres
    double north = 0;
};

// From the first place to the second on the plane that touches between them.
inline Offset offsetMetres(double lat0, double lon0, double lat1, double lon1) {
    const double lonDelta = std::remainder(lon1 - lon0, 360.0);
    return {radians(lonDelta) * kEarthMetres * std::cos(radians((lat0 + lat1) / 2)),
            radians(lat1 - lat0) * kEarthMetres};
}

// Great circle.
inline double distanceMetres(double lat0, double lon0, double lat1, double lon1) {
    const double a = std::sin(radians(lat1 - lat0) / 2);
    const double b = std::sin(radians(lon1 - lon0) / 2);
    const double h = a * a + std::cos(radians(lat0)) * std::cos(radians(lat1)) * b * b;
    return 2 * kEarthMetres * std::atan2(std::sqrt(h), std::sqrt(std::fmax(0, 1 - h)));
}

// Smallest difference of two angles, -180 to 180.
inline double angleBetween(double from, double to) {
    return std::remainder(to - from, 360.0);
}

// 0 up to but not including 360.
inline double compass(double angle) {
    const double turned = std::fmod(angle, 360.0);
    return turned < 0 ? turned + 360.0 : turned;
}

}  // namespace simulator
