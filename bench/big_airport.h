// A big airport: 300 stands, some of which overlap, each with 60 aircraft seen there within a week.
#pragma once

#include <string>
#include <vector>

#include "airports/airport_file.h"
#include "bench/world_data.h"

namespace skl::bench {

inline constexpr int standCount = 300, optionsAStand = 60;

/// An aircraft of those that visit; some are not in the database.
struct Visitor {
    std::string airl, type, reg;
};

/// What was seen on the stands, one after the other. Needs the database.
class Sightings {
  public:
    explicit Sightings(uint32_t seed);
    StandOption next();

  private:
    Choice choice_;
    std::vector<Visitor> visitors_;
    size_t number_ = 0;
};

AirportFile makeAirport(Sightings& sightings);

}  // namespace skl::bench
