// Aircraft that stand or fly in one another, looked for once a second.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <set>
#include <string>
#include <utility>

#include "standin/simulator/world.h"

namespace simulator {

class Overlaps {
  public:
    void look(double t, const World& world);
    nlohmann::json report() const;

  private:
    std::set<std::pair<std::uint32_t, std::uint32_t>> pairs_;
    std::uint64_t seconds_ = 0;  // summed over the pairs
    double deepest_ = 0, t_ = 0, metres_ = 0;
    std::string first_, second_;
};

}  // namespace simulator
