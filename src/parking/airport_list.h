// The airports that the user wants to see populated from the air, with the stand where the user last stood at
// each: airports/my_park_airports.txt. One node an airport. Worker thread only.
#pragma once

#include <list>
#include <optional>
#include <string>
#include <vector>

#include "core/geodesy.h"

namespace skl {

struct ParkAirportNode {
    std::string code;
    std::string stand;  ///< id of the user's stand, may be empty
    double lat = 0, lon = 0;
    double dist = 0;  ///< nautical miles from the user at the last update; it only sorts
    LaLo pos() const { return {lat, lon}; }
};

extern std::list<ParkAirportNode> parkAirports;  ///< the first one is looked at

/// Fills the list from the file and from my_thirdparty; false when a code is unknown.
bool lf_readMyParkAirports();
/// Adds the airports that have a file in my_thirdparty.
void lf_addThirdPartyAirports();
/// The lines of the file, trimmed; nothing if it cannot be read.
std::optional<std::vector<std::string>> lf_parkAirportLines();
/// Writes the node of this airport to the file, in one step.
void lf_storeParkAirport(const std::string& code);
/// Puts a destination at the front. The file is not touched for an airport that is listed.
void lf_setDestination(const std::string& code, LaLo position);
/// The node of an airport, nullptr if it is not listed.
ParkAirportNode* lf_parkAirportNode(const std::string& code);
/// The node moves to the front, behind the destination while one is set; made when it is not there. `stand`
/// is taken unless empty.
void lf_promoteParkAirport(const std::string& code, const std::string& stand, LaLo position);
/// Distances updated and the list sorted, as far as the user has moved and no destination is set.
void lf_sortParkAirports(LaLo user);
void gf_resetParkAirports();

}  // namespace skl
