// What aircraft do on the ground: how their wheels stand on it, how they touch down, whether they slide.
#pragma once

#include <array>
#include <cstdint>
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

// What is remembered of a flight: its height in the last half second, and whether it was up.
struct GroundState {
    struct Height {
        double t = 0, feet = 0;
    };
    std::array<Height, 8> heights{};
    std::size_t used = 0;
    bool wasUp = false;
};

class GroundFigures {
  public:
    // Every pose; finds the touch-downs.
    void pose(const Pose& pose, const std::string& tail, GroundState& state);
    // The motion within about a second.
    void window(const Pose& from, const Pose& to, double metresPerSecond, const std::string& tail);
    bool any() const { return windows_ > 0 || touchDowns_.count() > 0; }
    nlohmann::json report() const;

  private:
    struct Place {
        std::string tail;
        double t = 0, value = 0;
    };
    std::uint64_t windows_ = 0, sideways_ = 0, backwards_ = 0, wheelsOff_ = 0, hard_ = 0, soft_ = 0;
    Histogram touchDowns_, wheels_;
    Place worstSideways_, worstWheels_, hardest_, softest_;
    std::vector<Place> outside_;  // the first touch-downs out of bounds
};

}  // namespace simulator
