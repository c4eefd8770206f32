// A sky for the measurements of the tick. Half of the aircraft fly, each on a path of its own: straight legs,
// turns, climbs and descents; half taxi round blocks. One of ten in the air flies low, so that the simulator
// reports its height, as that of all on the ground, with every reply about what is in range.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "engine/live_ac.h"

namespace skl::bench {

inline constexpr LaLo skyCenter{51.0, 1.0};
inline constexpr int32_t replayTicks = 3000;
inline constexpr int crowd =
    500;  ///< aircraft, and ticks between two reports of one: one report falls into each tick
inline constexpr double tickSeconds = 0.01;

enum class Scene { mixed, air, curves };

/// Where an aircraft truly is.
class Flight {
  public:
    Flight(int number, Scene scene, std::mt19937& random);
    const LivePos& after(double seconds);
    const LivePos& now() const { return pos_; }
    bool low() const { return low_; }
    uint32_t hexid() const { return 0x400000u + static_cast<uint32_t>(number_); }
    uint32_t objectId() const { return 1000u + static_cast<uint32_t>(number_); }
    std::string callsign() const { return "BAW" + std::to_string(number_); }
    const char* model() const { return low_ && pos_.airborne ? "C172" : number_ % 4 ? "A320" : "B77W"; }

  private:
    void drive(double seconds);
    void fly(double seconds);
    void advance(double course, double seconds);

    int number_;
    bool zigzags_;
    bool low_;
    int legs_ = 0;
    double clock_ = 0;
    LivePos pos_;
};

/// Active aircraft, alone in the engine. Their first points fall due one by one within the pace of the
/// reports.
class Sky {
  public:
    Sky(int count, int32_t firstDue, Scene scene = Scene::mixed);
    ~Sky();
    Sky(const Sky&) = delete;
    Sky& operator=(const Sky&) = delete;

    /// Puts points into each stream for so many reports to come.
    void fillStreams(int points);
    /// What arrives before a tick: the reports from `first` on, and the simulator's reply.
    void arrive(int32_t first, int32_t count);
    /// Ends the measurement if an aircraft was lost or has run out of reports.
    void check() const;

  private:
    std::vector<Flight> flights_;
};

}  // namespace skl::bench
