// The settings that a learned file keeps for its airport.
#pragma once

#include <cstdint>
#include <pugixml.hpp>

namespace skl {

/// Applies the rows of a learned file to the settings and their controls, and logs each.
void lf_readAirportSettings(const pugi::xml_document& document);
/// Appends the settings as they are now.
void lf_appendAirportSettings(pugi::xml_node parameters);
/// The share of stands that is filled, percent, bounded.
void lf_setParkingPercentage(int32_t percent);

}  // namespace skl
