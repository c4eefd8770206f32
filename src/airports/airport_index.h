// Every airport of the simulator: code, IATA code, position, elevation. Loaded once a process, constant
// afterwards, read from any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "airports/airport.h"
#include "core/fnv.h"

namespace skl {

extern std::vector<Airport> airportIndex;    ///< ascending by code
extern StringMap<std::string> airportNames;  ///< plain names by code, only while scenery is scanned

/// Loads the index from the input folder unless that was done; whether it holds anything. Throws
/// std::runtime_error when the document or its root cannot be read.
bool gf_readAirports(std::string_view fileName);
/// Fills airportNames; a file that cannot be read is logged.
void gf_readAirportNames();
/// The plain name, or empty.
std::string gf_airportName(std::string_view code);
/// The first airport with this code; nullptr if there is none.
const Airport* gf_findAirport(std::string_view code);
/// The closest airport within 5 nm; of two near ones that with the closer stand. nullptr if there is none.
const Airport* gf_closestAirport(LaLo position);
/// "EGLL (LHR)", or the code alone.
std::string gf_airportDisplayId(const Airport& airport);
/// Empties both tables: for tests.
void gf_clearAirports();

}  // namespace skl
