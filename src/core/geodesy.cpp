#include "core/geodesy.h"

namespace skl {

namespace {

constexpr double degree = 0.017453292519943295;
constexpr double earthDiameterNm = 6875.493541569878;
constexpr double radiansPerFoot = 4.787404208238998e-8;

}  // namespace

double gf_distanceNm(LaLo a, LaLo b) {
    const double lat1 = a.lat * degree, lat2 = b.lat * degree;
    const double s1 = std::sin((lat2 - lat1) / 2);
    const double s2 = std::sin((b.lon - a.lon) * degree / 2);
    const double x = std::cos(lat2) * std::cos(lat1) * s2 * s2 + s1 * s1;
    // Rounding can carry x a hair above 1 for antipodes.
    return std::atan2(std::sqrt(x), std::sqrt(x < 1 ? 1 - x : 0)) * earthDiameterNm;
}

double bearingRad(LaLo a, LaLo b) {
    const double lat1 = a.lat * degree, lat2 = b.lat * degree, dLon = (b.lon - a.lon) * degree;
    const double y = std::sin(dLon) * std::cos(lat2);
    const double x = std::cos(lat1) * std::sin(lat2) - std::sin(lat1) * std::cos(lat2) * std::cos(dLon);
    return normalizeRad(std::atan2(y, x));
}

LaLo destinationPoint(LaLo a, double bearing, double distanceFt) {
    const double lat1 = a.lat * degree, d = distanceFt * radiansPerFoot;
    const double lat2 =
        std::asin(std::sin(lat1) * std::cos(d) + std::cos(lat1) * std::sin(d) * std::cos(bearing));
    const double dLon = std::atan2(std::sin(bearing) * std::sin(d) * std::cos(lat1),
                                   std::cos(d) - std::sin(lat1) * std::sin(lat2));
    return {lat2 / degree, wrapLon(a.lon + dLon / degree)};
}

double foldRad(double angle) {
    const double turn = 2 * pi;
    const double rest = std::fmod(angle, turn);
    return rest < 0 ? rest + turn : rest;
}

double foldLon(double degrees) {
    const double rest = std::fmod(degrees + 180, 360);
    return rest < 0 ? rest + 180 : rest - 180;
}

}  // namespace skl
