// Stands of a stock airport file: out of apt.dat, with a radius by size letter; and what was seen on them.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "airports/airport_file.h"
#include "tools/datakit/apt_dat.h"
#include "tools/datakit/sightings.h"

namespace skl::datakit {

/// Metres by size letter, A to F.
using Radii = std::array<double, 6>;
/// Half of the largest span that each letter stands for.
inline constexpr Radii usualRadii{7.5, 12, 18, 26, 32.5, 40};
/// A place for one helicopter, metres.
inline constexpr double helicopterRadius = 9;

/// The stands of one airport with what a stock file has no room for.
struct StandList {
    AirportFile file;
    std::vector<std::vector<std::string>> airlines;  ///< by stand; of a source that tells none it is empty
    Place place;                                     ///< where the airport begins in its source
};

/// The stand that lies where another would be: no two aircraft stand so close, whatever the stands' names.
const Stand* standOnPlace(const std::vector<Stand>& stands, LaLo place);
/// Hangars are left out unless `withHangars`. Two stands on one place, and names met twice, are told.
StandList standsOfApt(const AptAirport& airport, const Radii& radii, bool withHangars, SourceFile& file);

/// Puts sightings on the stands as options: real ones where the stand was seen, soft ones on a stand that
/// fits where it was not and the reference database is loaded. Sets quality factors and traffic week.
void addSightings(StandList& list, const std::vector<Sighting>& sightings, bool databaseLoaded,
                  Findings& findings);

}  // namespace skl::datakit
