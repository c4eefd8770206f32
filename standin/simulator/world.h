// The simulated world: ground, the user's aircraft and the objects that clients created. Altitudes are those
// of the centre of gravity, in feet; each title has a static height and a static pitch of its own. An object
// whose altitude is not frozen falls to the ground.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "standin/simulator/options.h"

namespace simulator {

constexpr std::uint32_t kUserId = 1;
constexpr std::uint32_t kFirstObjectId = 1000;
constexpr std::uint32_t kAircraftType = 2;

struct SimObject {
    std::uint32_t id = 0;
    int owner = 0;  // connection that created it; 0 for the user's and other programs' aircraft
    std::string title;
    std::string livery;
    std::string tail;
    std::string model;
    double lat = 0;  // degrees
    double lon = 0;
    double alt = 0;    // feet
    double pitch = 0;  // degrees, nose up is negative
    double bank = 0;   // degrees
    double heading = 0;
    double verticalSpeed = 0;  // feet a second
    double airspeed = 0;       // knots, true
    double groundSpeed = 0;    // knots
    double staticHeight = 0;   // feet from the ground to the centre of gravity, on the wheels
    double staticPitch = 0;    // degrees
    bool freezePlace = false;
    bool freezeAltitude = false;
    bool freezeAttitude = false;
    double fallSpeed = 0;      // feet a second
    std::uint32_t lights = 0;  // the bits of LIGHT ON STATES
    double gear = 1;
    double flaps = 0;     // percent
    double spoilers = 0;  // percent
    double parkingBrake = 0;
    double transponder = 0;
    std::array<double, 4> throttles{};  // percent, below 0 reverse
    bool engines = true;
};

// A point of the user's path.
struct PathPoint {
    double seconds, lat, lon, alt, heading, groundSpeed;
};

// Static height (1 to 35 feet) and pitch (-0.5 to 2 degrees) of a title, always the same.
void setStaticData(SimObject& object);

class World {
  public:
    explicit World(const Options& options);

    // Reads the user's path; gives the complaint for the user, or nothing.
    std::string readUserPath(const std::string& file);

    // Ground altitude in feet.
    double ground(double lat, double lon) const;
    // How far the wheels are from the ground, in feet; negative below it.
    double wheelHeight(const SimObject& object) const;
    bool onGround(const SimObject& object) const;

    // 0 and kUserId give the user's aircraft; nullptr for an object that is not there.
    SimObject* find(std::uint32_t id);
    SimObject& add(SimObject object, bool standing);
    bool remove(std::uint32_t id) { return objects.erase(id) > 0; }

    // Lets time pass for what moves by itself.
    void advance(double seconds);
    void teleport(double lat, double lon);

    SimObject user;
    std::map<std::uint32_t, SimObject> objects;
    double utc = 0;  // seconds since 1970

  private:
    void moveUser();
    void settle(SimObject& object) const;

    double startLat_, startLon_, elevation_, slope_;
    std::vector<PathPoint> path_;
    double pathTime_ = 0;
    std::uint32_t nextId_ = kFirstObjectId;
};

}  // namespace simulator
