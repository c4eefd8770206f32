// What aircraft do on the ground: how their wheels stand on it, how they touch down, whether they slide.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "standin/simulator/histogram.h"

namespace simulator {

// A written pose: seconds, degrees, knots, and feet of the wheels over the ground.
struct Pose {
    double t = 0, lat = 0, lon = 0, pitch = 0, heading = 0, airspeed = 0, height = 0;
    bool onGround() const { return height <= 0.5; }
};

// What is remembered of a flight.
struct GroundState {
    struct Height {
        double t = 0, feet = 0;
    };
    std::array<Height, 8> heights{};  // of the last half second
    std::size_t used = 0;
    bool seen = false;
    bool wasUp = false;  // and has not touched down since
    bool down = false;   // on its wheels, or meant to be
    double lowSince = -1;
    // Poses above the wheels' bound that may yet turn out to be a lift-off.
    std::uint64_t rising = 0;
    double risingSince = 0, highest = 0, highestT = 0;
    // Direction of the motion in the window before; curves count until 3 s after them.
    bool moved = false;
    double course = 0;
    double curveUntil = -1e18;
};

class GroundFigures {
  public:
    // Every pose; finds the touch-downs and looks at the wheels.
    void pose(const Pose& pose, const std::string& tail, GroundState& state);
    // The motion within about a second.
    void window(const Pose& from, const Pose& to, double metresPerSecond, const std::string& tail,
                GroundState& state);
    bool any() const { return wheels_.count() > 0 || touchDowns_.count() > 0; }
    nlohmann::json report() const;

  private:
    struct Place {
        std::string tail;
        double t = 0, value = 0;
    };
    struct Slide {
        double t = 0, degrees = 0;
        std::uint64_t seconds = 0;
    };
    void touchDown(const Pose& pose, const std::string& tail, const GroundState& state);
    void wheels(const Pose& pose, const std::string& tail, GroundState& state);
    void notRisen(const std::string& tail, GroundState& state);
    void wheelsOff(const std::string& tail, double t, double feet, std::uint64_t poses);
    void slide(const std::string& tail, double t, double angle);
    nlohmann::json slides() const;

    std::uint64_t windows_ = 0, sideways_ = 0, inCurves_ = 0, backwards_ = 0, wheelsOff_ = 0;
    std::uint64_t hard_ = 0, soft_ = 0;
    Histogram touchDowns_, floats_, wheels_;
    Place worstSideways_, worstWheels_, hardest_, softest_, longestFloat_;
    std::vector<Place> outside_;  // the first touch-downs out of bounds
    std::map<std::string, Slide> slides_;
};

}  // namespace simulator
