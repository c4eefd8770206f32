// The figures of motion, worked out from each pose that a client writes: steps, turns, accelerations, the
// distance from the recorded path, and what happens on the ground. Memory does not grow with the time of the
// run.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <unordered_map>

#include "standin/simulator/feed_path.h"
#include "standin/simulator/ground_figures.h"
#include "standin/simulator/histogram.h"
#include "standin/simulator/world.h"

namespace simulator {

// Poses that went beyond a limit, and the one that did so most.
class LimitFigure {
  public:
    void add(double value, double allowed, const std::string& tail, double t);
    std::uint64_t breaches() const { return breaches_; }
    nlohmann::json report() const;

  private:
    std::uint64_t poses_ = 0, breaches_ = 0;
    double excess_ = -1e18, value_ = 0, allowed_ = 0, t_ = 0;
    std::string tail_;
};

// Spread of a value, and its worst with flight and second.
class SpreadFigure {
  public:
    void add(double value, const std::string& tail, double t);
    nlohmann::json report(std::initializer_list<double> quantiles) const;

  private:
    Histogram values_;
    std::string tail_;
    double t_ = 0;
};

class Motion {
  public:
    // Nominal time of a frame and the time between two samples of the path, in seconds.
    Motion(double frame, double sample, const FeedPaths& feed)
        : frame_(frame), sample_(sample), feed_(feed) {}

    void created(const SimObject& object);
    void removed(std::uint32_t id) { flights_.erase(id); }
    void pose(std::uint32_t id, const Pose& pose);
    // The flow of poses stops or goes on: no window reaches over this moment.
    void interrupt();
    nlohmann::json report() const;

  private:
    struct Flight {
        std::string tail;
        std::string_view aircraftClass;
        bool posed = false;
        Pose last;
        bool windowOpen = false;
        Pose windowStart;
        double lastWindowSpeed = -1;  // metres a second
        double lastWindowTime = 0;
        double nextSample = -1e18;
        std::size_t pathHint = 0;
        double feedKnots = 0;
        bool compared = false;
        GroundState ground;
    };
    struct Rates {
        SpreadFigure acceleration, yaw, pitch;  // g, degrees a second
    };

    struct Turns {
        LimitFigure heading, pitch;  // between two poses
    };

    void compareStep(const Flight& flight, const Pose& pose);
    void comparePath(Flight& flight, const Pose& pose);
    void closeWindow(Flight& flight, const Pose& pose);

    double frame_, sample_;
    const FeedPaths& feed_;
    std::unordered_map<std::uint32_t, Flight> flights_;
    std::uint64_t posedFlights_ = 0, comparedFlights_ = 0, samples_ = 0, samplesInGaps_ = 0;
    LimitFigure step_;
    Turns airTurns_, groundTurns_;
    std::map<std::string, Rates, std::less<>> air_, onGround_;  // by class, with "all"
    SpreadFigure cross_;
    GroundFigures groundFigures_;
};

}  // namespace simulator
