// No aircraft appears in front of the user: while one would, the points of its stream are passed without an
// object.
#include <cmath>
#include <optional>

#include "core/parameters.h"
#include "engine/spawning.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr double meters(double m) {
    return m / metersPerNm;
}

bool heldOnGround(const LiveAc& record, const LivePos& front, double distance) {
    constexpr double moving = 8;  // knots
    if (record.nearUser) {
        if (engineUser.groundSpeed > moving) return true;
        if (!front.airborne && (front.speed > moving || distance < meters(500))) return true;
    }
    if (front.airborne || !COLLISION_USER_GND.value) return false;
    return distance < meters(150);
}

/// How near the two come: the distance from a line of flight, feet, and how near is too near.
struct Passing {
    double offset, limit;
};

std::optional<Passing> passing(const LivePos& front, double distance) {
    const double bearing = bearingRad(engineUser.pos(), front.pos());
    const double feet = distance * feetPerNm;
    if (front.airborne) {
        if (distance > 6 || std::abs(front.alt - engineUser.altitude) >= 3000) return std::nullopt;
        return Passing{std::abs(std::sin(toRad(front.track) - bearing)) * feet, 4000};
    }
    if (distance > 1.5 || engineUser.agl >= 1000) return std::nullopt;
    return Passing{std::abs(std::sin(engineUser.heading - bearing)) * feet, 500};
}

bool heldInAir(LiveAc& record, const LivePos& front, double distance) {
    if (!COLLISION_USER_AIR.value) return false;
    const auto found = passing(front, distance);
    if (!found) return false;
    if (found->offset <= found->limit) record.nearUser = true;
    return record.nearUser;
}

}  // namespace

bool lf_nearUser(LiveAc& record) {
    const LivePos& front = record.stream().front();
    const double distance = gf_distanceNm(engineUser.pos(), front.pos());
    const bool held =
        userOnGround ? heldOnGround(record, front, distance) : heldInAir(record, front, distance);
    if (held) record.stream().pop_front();
    return held;
}

}  // namespace skl
