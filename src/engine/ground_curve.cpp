// See the header.
#include "engine/ground_curve.h"

#include <cmath>

namespace skl {

namespace {

constexpr double metersPerDegree = 111132.95, degreesPerMeter = 1 / metersPerDegree;  // of latitude

struct Slope {
    double north, east;  ///< meters per unit of t
};

Slope slopeAt(const GroundCurve& curve, double t) {
    const double u = (t - curve.t0) * curve.perT, w = 1 - u;
    return {2 * u * (curve.endNorth - curve.ctrlNorth) + 2 * w * curve.ctrlNorth,
            2 * u * (curve.endEast - curve.ctrlEast) + 2 * w * curve.ctrlEast};
}

}  // namespace

void lf_makeCurve(LiveAc& record) {
    if (record.stream().size() < 3) return;
    const LivePos& corner = record.stream()[1];
    LivePos& end = record.stream()[2];
    if (end.speed == 0) end.speed = (record.stream()[0].speed + corner.speed) / 2;

    GroundCurve& curve = record.curve;
    curve.originLat = record.simLat;
    curve.originLon = record.simLon;
    const double metersPerDegreeEast = metersPerDegree * std::cos(toRad(curve.originLat));
    curve.degreesPerMeterEast = 1 / metersPerDegreeEast;
    curve.t0 = 0;
    curve.endNorth = (end.lat - curve.originLat) * metersPerDegree;
    curve.endEast = wrapLon(end.lon - curve.originLon) * metersPerDegreeEast;
    curve.t1 = 1;
    curve.perT = 1 / (curve.t1 - curve.t0);
    curve.ctrlEast = wrapLon(corner.lon - curve.originLon) * metersPerDegreeEast;
    curve.ctrlNorth = (corner.lat - curve.originLat) * metersPerDegree;
    record.stream().erase(record.stream().begin() + 1);
}

bool lf_curvePosition(const GroundCurve& curve, double t, LaLo& position) {
    if (!curve.set() || !(t >= curve.t0 && t <= curve.t1)) return false;
    const double u = (t - curve.t0) * curve.perT, w = 1 - u;
    const double north = 2 * w * u * curve.ctrlNorth + u * u * curve.endNorth;
    const double east = 2 * w * u * curve.ctrlEast + u * u * curve.endEast;
    position.lat = north * degreesPerMeter + curve.originLat;
    position.lon = east * curve.degreesPerMeterEast + curve.originLon;
    return true;
}

bool lf_curveAt(const GroundCurve& curve, double t, LaLo& position, double& course) {
    if (!lf_curvePosition(curve, t, position)) return false;
    const Slope slope = slopeAt(curve, t);
    course = normalizeRad(std::atan2(slope.east, slope.north));
    return true;
}

double lf_courseRate(const GroundCurve& curve, double t) {
    const Slope slope = slopeAt(curve, t);
    const double square = slope.north * slope.north + slope.east * slope.east;
    if (!(square > 0)) return 0;
    const double bendNorth = 2 * (curve.endNorth - 2 * curve.ctrlNorth);
    const double bendEast = 2 * (curve.endEast - 2 * curve.ctrlEast);
    return (slope.north * bendEast - slope.east * bendNorth) / square;
}

}  // namespace skl
