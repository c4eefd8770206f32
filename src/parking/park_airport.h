// The airport in sight, the one that is shown with parked aircraft. Worker thread only.
#pragma once

#include "airports/airport.h"

namespace skl {

extern Airport parkAirport;  ///< its code is empty while none is in sight
inline bool gf_airportInSight() {
    return !parkAirport.code.empty();
}

}  // namespace skl
