// Aircraft that stand or fly in one another, looked for once a second.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <utility>

#include "standin/simulator/world.h"

namespace simulator {

class Overlaps {
  public:
    void look(double t, const World& world);
    nlohmann::json report() const;

  private:
    struct Pair {
        std::string first, second;  // tails
        double t = 0, metres = 0;   // where they were deepest in one another
        double depth = 0;
        std::uint64_t seconds = 0;
    };
    void note(double t, const SimObject& a, const SimObject& b, double metres, double depth);

    std::map<std::pair<std::uint32_t, std::uint32_t>, Pair> pairs_;
    std::uint64_t seconds_ = 0;  // summed over the pairs
};

}  // namespace simulator
