// See the header.
#include "parking/park_airport.h"

namespace skl {

Airport parkAirport;

}  // namespace skl
