// What airports, airlines and aircraft are called, and where they may lie.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/geodesy.h"

namespace skl::datakit {

/// The code of an airport in upper case; nothing for a text that is none, or could not be the name of a file.
std::optional<std::string> airportCode(std::string_view text);
/// An airline's ICAO code in upper case: three letters or digits.
std::optional<std::string> airlineCode(std::string_view text);
/// An aircraft type's designator in upper case: two to four letters or digits.
std::optional<std::string> typeCode(std::string_view text);
/// Degrees; nothing for texts that are no numbers, lie outside of the globe, or at 0, 0 where nothing is.
std::optional<LaLo> position(std::string_view lat, std::string_view lon);
/// Feet between the lowest and the highest airport of the world, with room.
bool isElevation(double feet);
/// Metres.
double metresBetween(LaLo a, LaLo b);

}  // namespace skl::datakit
