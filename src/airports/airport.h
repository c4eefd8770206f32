// One airport of the index.
#pragma once

#include <string>

#include "core/geodesy.h"

namespace skl {

struct Airport {
    std::string code;  ///< ICAO; empty: no airport
    std::string iata;  ///< may be empty
    double lat = 0, lon = 0;
    double alt = 0;  ///< feet
    LaLo pos() const { return {lat, lon}; }
};

}  // namespace skl
