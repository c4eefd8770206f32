// One decoded record of the traffic feed, on its way from the reader to the engine.
#pragma once

#include <cstdint>
#include <string>

#include "engine/live_ac.h"

namespace skl {

struct TrafficUpdate {
    std::string airline;  ///< empty; the engine works it out
    std::string model;    ///< ICAO type
    std::string origin, destination;
    std::string callsign;
    std::string coupledIn, coupledOut;  ///< empty
    std::string regcode;
    bool coupledSearched = false;
    LivePos pos;
    double feedTime = 0;  ///< seconds since 1970, the feed's own stamp
    uint32_t hexid = 0;
};

}  // namespace skl
