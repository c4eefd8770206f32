// Ground, fall and the user's path.
#include "standin/simulator/world.h"

#include <algorithm>
#include <cmath>

#include "standin/common/text.h"
#include "standin/simulator/geo.h"

namespace simulator {

namespace {

constexpr double kOnGroundFeet = 0.5;
constexpr double kSlopeReach = 5 * 1852.0;  // metres; the ground is level beyond
constexpr double kGravity = 32.174;         // feet a second squared
constexpr double kTerminal = 200;           // feet a second
constexpr double kDefaultAltitude = 3000;

}  // namespace

void setStaticData(SimObject& object) {
    std::uint32_t hash = 2166136261U;
    for (const char c : object.title) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    }
    object.staticHeight = 1.0 + (hash >> 4U) % 34001 / 1000.0;
    object.staticPitch = -0.5 + (hash >> 9U) % 2501 / 1000.0;
}

World::World(const Options& options)
    : startLat_(options.lat), startLon_(options.lon), elevation_(0), slope_(options.slope / 100) {
    const double alt = options.alt.value_or(options.onGround ? 0 : kDefaultAltitude);
    elevation_ = options.elevation.value_or(options.onGround ? alt : 0);
    user.id = kUserId;
    user.title = "Airbus A320 Neo Asobo";
    user.model = "A320";
    user.tail = "ASXGS";
    user.lat = options.lat;
    user.lon = options.lon;
    user.heading = compass(options.heading);
    user.lights = 0x3;
    setStaticData(user);
    if (options.onGround) {
        settle(user);
    } else {
        user.alt = std::max(alt, elevation_ + user.staticHeight);
    }
}

std::string World::readUserPath(const std::string& file) {
    const auto complaint = standin::readWords(file, [this](const std::vector<std::string>& fields) {
        std::array<double, 6> values{};
        bool good = fields.size() == values.size();
        for (std::size_t i = 0; good && i < values.size(); ++i) {
            const auto value = standin::numberOf(fields[i]);
            good = value.has_value();
            values[i] = value.value_or(0);
        }
        const PathPoint point{values[0], values[1], values[2], values[3], values[4], values[5]};
        good = good && std::abs(point.lat) <= 89 && (path_.empty() || point.seconds > path_.back().seconds);
        path_.push_back(point);
        return good ? "" : "wanted are seconds lat lon alt heading groundspeed, in rising order";
    });
    moveUser();
    return complaint;
}

double World::ground(double lat, double lon) const {
    const double north = offsetMetres(startLat_, startLon_, lat, lon).north;
    return elevation_ + slope_ * std::clamp(north, -kSlopeReach, kSlopeReach) * kFeetPerMetre;
}

double World::wheelHeight(const SimObject& object) const {
    return object.alt - object.staticHeight - ground(object.lat, object.lon);
}

bool World::onGround(const SimObject& object) const {
    return wheelHeight(object) <= kOnGroundFeet;
}

SimObject* World::find(std::uint32_t id) {
    if (id == 0 || id == kUserId) {
        return &user;
    }
    const auto found = objects.find(id);
    return found == objects.end() ? nullptr : &found->second;
}

SimObject& World::add(SimObject object, bool standing) {
    object.id = nextId_++;
    object.heading = compass(object.heading);
    setStaticData(object);
    // A creation below the ground is one on the ground, as the simulator sets it on its wheels.
    if (standing || wheelHeight(object) < 0) {
        settle(object);
    }
    return objects.emplace(object.id, object).first->second;
}

void World::settle(SimObject& object) const {
    object.alt = ground(object.lat, object.lon) + object.staticHeight;
    object.fallSpeed = 0;
    if (!object.freezeAttitude) {
        object.pitch = object.staticPitch;
        object.bank = 0;
    }
}

void World::advance(double seconds) {
    pathTime_ += seconds;
    moveUser();
    for (auto& [id, object] : objects) {
        if (object.freezeAltitude) {
            object.fallSpeed = 0;
            continue;
        }
        const double before = object.fallSpeed;
        object.fallSpeed = std::min(kTerminal, before + kGravity * seconds);
        object.alt -= (before + object.fallSpeed) / 2 * seconds;
        if (wheelHeight(object) <= 0) {
            settle(object);
        }
    }
}

void World::moveUser() {
    if (path_.empty()) {
        return;
    }
    const auto next = std::find_if(path_.begin(), path_.end(),
                                   [this](const PathPoint& point) { return point.seconds > pathTime_; });
    const auto& to = next == path_.end() ? path_.back() : *next;
    const auto& from = next == path_.begin() || next == path_.end() ? to : *(next - 1);
    const double span = to.seconds - from.seconds;
    const double part = span > 0 ? (pathTime_ - from.seconds) / span : 0;
    user.lat = std::lerp(from.lat, to.lat, part);
    user.lon = from.lon + std::remainder(to.lon - from.lon, 360.0) * part;
    user.alt = std::lerp(from.alt, to.alt, part);
    user.heading = compass(from.heading + angleBetween(from.heading, to.heading) * part);
    user.groundSpeed = std::lerp(from.groundSpeed, to.groundSpeed, part);
    user.airspeed = user.groundSpeed;
    user.verticalSpeed = span > 0 ? (to.alt - from.alt) / span : 0;
    if (wheelHeight(user) < 0) {
        settle(user);
    }
}

void World::teleport(double lat, double lon) {
    const bool standing = onGround(user);
    path_.clear();
    user.lat = lat;
    user.lon = lon;
    user.groundSpeed = user.airspeed = user.verticalSpeed = 0;
    if (standing || wheelHeight(user) < 0) {
        settle(user);
    }
}

}  // namespace simulator
