// The class of an aircraft as far as a title or a type designator tells it, with the size to look for
// overlaps.
#pragma once

#include <string_view>

namespace simulator {

// "Light", "Buzjets", "Large", "Heavy", "HighPerf", "Rotorcraft", or "unknown".
std::string_view classOf(std::string_view titleOrType);

// Metres from the middle to a wing tip that is usual in the class; rather too small than too big.
double halfSpanOf(std::string_view aircraftClass);

}  // namespace simulator
